#pragma once

#include "base/Export.h"

#include <cstdint>

/// Path functions over NUL-terminated byte strings, with "/" as the only separator.
///
/// Nothing handed out has to be freed. filename_isdir(), filename_exists(), filename_size() and
/// filename_mtime() share a cache of one entry: they ask the file system only if the name differs from the
/// name asked for last, so that several questions about one file cost one look and a change on disk is seen
/// only after another name was asked for. They follow symbolic links, take names in UTF-8 (and names that are
/// not, as the bytes they are), and are for one thread at a time.

/// The part of @p path after its last "/": a pointer into @p path, to all of it if it has no "/"; null for
/// null. Example: "/shots/a.exr" gives "a.exr", "/shots/" gives "".
HVCOREUI_EXPORT const char* filename_name(const char* path);

/// Writes the absolute form of @p from into the buffer @p to of @p size bytes. Returns the length written.
///
/// What does not fit is cut off silently, always with a terminator; a @p size below 1 or a null @p to writes
/// nothing and gives 0. The path need not exist, and @p to may be the same buffer as @p from. A null @p from
/// is the empty text.
///
/// A @p from that begins with "/" is copied. Anything else is relative to @p cwd or, if that is null, to the
/// environment variable PWD, or to the working directory if PWD is unset. Only if @p cwd is null, a leading
/// "~" has a meaning: "~" and "~/…" stand for HOME, and "~name…" for a sibling of HOME; the text is copied if
/// HOME is unset, and follows a "/" if HOME is empty.
///
/// A leading "./" is dropped, and each leading "../" cuts the base back to its previous "/" until the base is
/// used up. Dots elsewhere, and "." or ".." without a following "/", stay as they are.
///
/// Examples with a cwd of "/x/y": "a/b" gives "/x/y/a/b", "../a" gives "/x/a", "../../../z" gives "/../z".
/// With HOME "/home/ann" and no cwd: "~/a" gives "/home/ann/a", "~" gives "/home/ann/", "~bob/a" gives
/// "/home/bob/a".
HVCOREUI_EXPORT int filename_absolute(char* to, int size, const char* from, const char* cwd);

/// Whether all of @p name matches the glob @p pattern, byte by byte and with regard to case; false if either
/// is null. No pattern makes the time grow faster than with products of the two lengths.
///
/// - "?" is any one byte, "*" any run of bytes, "/" and leading dots included.
/// - "[set]" is one byte of the set, "[!set]" and "[^set]" one byte that is not in it. The first byte is a
///   member even if it is "]". "a-z" is a range in the order of signed bytes; reversed, it adds nothing to
///   its first byte. A "-" that begins or ends the set is itself. Without "]" the set reaches to the end of
///   the pattern.
/// - "{one,two|three}" is one of the alternatives, which may nest. Without "}" it reaches to the end of the
///   pattern.
/// - "\" makes the next byte literal, though not in a set; at the end of the pattern it is itself.
/// - A "," or "|" outside braces ends the pattern, or skips to the place after the next unmatched "}". Any
///   other unmatched "}" is ignored.
///
/// Examples: "*.{cxx,h}" matches "a.cxx" and "a.h" but not "a.c"; "[!a-c]x" matches "dx" but not "bx"; "a,b"
/// matches "a" but not "b".
HVCOREUI_EXPORT bool filename_match(const char* name, const char* pattern);

/// Whether @p name is a directory; false if it can't be examined, and for null.
HVCOREUI_EXPORT bool filename_isdir(const char* name);

/// Whether @p name can be examined; false for null and for the empty text, neither of which enters the cache.
HVCOREUI_EXPORT bool filename_exists(const char* name);

/// Size of @p name in bytes; 0 if it can't be examined, and for null.
HVCOREUI_EXPORT std::int64_t filename_size(const char* name);

/// When @p name was modified, in seconds since the epoch; its time of access if that is 0, its time of change
/// if both are 0. 0 if it can't be examined, and for null.
HVCOREUI_EXPORT std::int64_t filename_mtime(const char* name);
