#pragma once

#include <QString>

/// Reads file names as frames of image sequences. The frame number is the last run of digits before the
/// extension, or of the whole name if it has no extension or the extension begins with a digit:
/// "shot_010.0042.exr" is frame 42, "render.0001" frame 1; "readme.txt", ".hidden5" and "photo.cr2" are no
/// frames, and neither is a number beyond 2147483647. A "-" before the digits belongs to the text.
namespace Halvern::UI::FrameName {

/// Reads @p name, at most 1023 bytes. On true, @p frame is the frame number, @p pattern (a buffer of at least
/// 1024 bytes) the name with the digits replaced by one "#", @p digits their number, and @p padded tells
/// whether there are several and the first is "0". On false the outputs are unspecified.
/// Example: "img.0042.exr" gives 42, "img.#.exr", 4 and true.
bool read(const char* name, int& frame, char* pattern, int& digits, bool& padded);

/// The same for text. Every Unicode digit counts in the search, and @p pattern has one "#" for each digit:
/// "img.0042.exr" gives "img.####.exr". A zero-padded number lowers smallestPaddedWidth() to its width.
bool read(const QString& name, QString& pattern, int& frame);

/// Whether two patterns with one "#" for each digit belong to one sequence. If they differ in the number of
/// "#", both get a single one: "f.##.exr" and "f.###.exr" give "f.#.exr".
bool reconcilePatterns(QString& a, QString& b);

/// The narrowest zero-padded frame number that was read as text since the last reset, at most 4.
int smallestPaddedWidth();
/// Sets smallestPaddedWidth() back to 4, as every listing does when it begins.
void resetSmallestPaddedWidth();

} // namespace Halvern::UI::FrameName
