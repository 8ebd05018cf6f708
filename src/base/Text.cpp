#include "base/Text.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace Halvern::Base {

std::size_t copyTruncated(char* to, std::size_t size, const char* from)
{
    if (size == 0)
        return 0;
    const std::size_t length = from ? strnlen(from, size - 1) : 0;
    if (length > 0)
        std::memmove(to, from, length);
    to[length] = '\0';
    return length;
}

std::string_view trimmed(std::string_view text)
{
    constexpr const char* blanks = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    std::size_t end = 0;
    while ((end = text.find(separator)) != std::string_view::npos) {
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string text;
    for (const std::string& part : parts) {
        if (&part != &parts.front())
            text += separator;
        text += part;
    }
    return text;
}

std::optional<long long> toNumber(std::string_view text)
{
    long long number = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return number;
}

std::string zeroPadded(long long number, int width)
{
    std::string text = std::to_string(number);
    const std::size_t sign = number < 0 ? 1 : 0;
    const std::size_t digits = text.size() - sign;
    if (width > 0 && static_cast<std::size_t>(width) > digits)
        text.insert(sign, static_cast<std::size_t>(width) - digits, '0');
    return text;
}

bool isUtf8Locale()
{
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return std::strstr(value, "UTF") || std::strstr(value, "utf");
    }
    return false;
}

} // namespace Halvern::Base
