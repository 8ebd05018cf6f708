#pragma once

#include <QString>

/// Reads file names as frames of image sequences. The frame number is the last run of digits before the
/// extension, or of the whole name if it has no extension or the extension begins with a digit:
/// "shot_010.0042.exr" is frame 42, "render.0001" frame 1; "readme.txt", ".hidden5" and "photo.cr2" are no
/// frames, and neither is a number beyond 2147483647. A "-" before the digits belongs to the text.
namespace Halvern::UI::FrameName {

/// See FileManager::isSequence(). @p name has at most 1023 bytes. On false the outputs are unspecified.
bool read(const char* name, int& frame, char* pattern, int& digits, bool& padded);

/// See FileInfoList::toFrameName(). A zero-padded number lowers smallestPaddedWidth() to its width.
bool read(const QString& name, QString& pattern, int& frame);

/// See FileInfoList::makeCommonSequence().
bool reconcilePatterns(QString& a, QString& b);

/// The narrowest zero-padded frame number that was read as text since the last reset, at most 4.
int smallestPaddedWidth();
/// Sets smallestPaddedWidth() back to 4, as every listing does when it begins.
void resetSmallestPaddedWidth();

} // namespace Halvern::UI::FrameName
