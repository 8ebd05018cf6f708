#pragma once

#include "base/Export.h"

#include <cctype>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Helpers over byte strings. None of them looks at an encoding.
namespace Halvern::Base {

/// Copies @p from into the buffer @p to of @p size bytes and always terminates it.
///
/// What does not fit is cut off; a null @p from copies as the empty text. With a @p size of 0 nothing is
/// written. Returns the number of bytes copied, without the terminator.
/// Example: a buffer of 4 bytes and "frame" give "fra" and 3.
HVCOREUI_EXPORT std::size_t copyTruncated(char* to, std::size_t size, const char* from);

/// The same for an array, whose size need not be repeated.
template <std::size_t Size>
std::size_t copyTruncated(char (&to)[Size], const char* from)
{
    return copyTruncated(to, Size, from);
}

/// The byte in lower case as the C library's locale has it; in a UTF-8 locale only ASCII letters change.
inline char lowerCase(char byte)
{
    // No locale changes other ASCII characters, and a call for each byte of each name takes long.
    const auto code = static_cast<unsigned char>(byte);
    const bool mayChange = (code >= 'A' && code <= 'Z') || code > 0x7f;
    return mayChange ? static_cast<char>(std::tolower(code)) : byte;
}

/// Whether the byte is an ASCII digit, whatever the locale.
constexpr bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

/// Whether @p text begins with @p start, byte by byte; every text begins with the empty one.
constexpr bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// @p text without the blanks, tabs and line ends around it, as a view into @p text.
HVCOREUI_EXPORT std::string_view trimmed(std::string_view text);

/// The parts of @p text between separators, empty ones included, as views into @p text: always one more than
/// there are separators. Example: "a,,b" at ',' gives "a", "" and "b".
HVCOREUI_EXPORT std::vector<std::string_view> split(std::string_view text, char separator);

/// The parts with @p separator between two of them. Example: "1-3" and "7" with "," give "1-3,7".
HVCOREUI_EXPORT std::string join(const std::vector<std::string>& parts, std::string_view separator);

/// The whole number that all of @p text spells in base 10, with or without a "-" before it. Nothing for any
/// other text, also with blanks or a "+", and for numbers beyond 64 bits.
HVCOREUI_EXPORT std::optional<long long> toNumber(std::string_view text);

/// @p number in base 10 with zeros before its digits until there are @p width of them.
/// Examples: 42 in 4 gives "0042", -7 in 3 gives "-007", 12345 in 4 gives "12345".
HVCOREUI_EXPORT std::string zeroPadded(long long number, int width);

/// Whether the user's locale says that text is UTF-8: the first of the environment variables LC_ALL, LC_CTYPE
/// and LANG that is set and not empty decides; it holds "UTF" or "utf" if it is. Without any it is not.
HVCOREUI_EXPORT bool isUtf8Locale();

} // namespace Halvern::Base
