#include "paths/Glob.h"

#include <algorithm>
#include <vector>

namespace {

/// The first unmatched "}" from @p from on or, with @p atSeparators, a separator outside nested braces before
/// it. The end of the pattern if there is none.
std::size_t endOfAlternative(std::string_view pattern, std::size_t from, bool atSeparators)
{
    int depth = 0;
    for (std::size_t i = from; i < pattern.size(); ++i) {
        const char byte = pattern[i];
        if (byte == '\\')
            ++i;
        else if (byte == '{')
            ++depth;
        else if ((byte == '}' || ((byte == ',' || byte == '|') && atSeparators)) && depth == 0)
            return i;
        else if (byte == '}')
            --depth;
    }
    return pattern.size();
}

/// For each "{" and separator of a pattern: the end of the alternative after it, and of all alternatives.
struct Ends
{
    explicit Ends(std::string_view pattern)
        : alternative(pattern.size())
        , group(pattern.size())
    {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern[i] == '{' || pattern[i] == ',' || pattern[i] == '|') {
                alternative[i] = endOfAlternative(pattern, i + 1, true);
                group[i] = endOfAlternative(pattern, i + 1, false);
            }
        }
    }

    std::vector<std::size_t> alternative;
    std::vector<std::size_t> group;
};

/// Adds the places that follow from @p place without a byte of the name. All are after it.
void reach(std::string_view pattern, const Ends& ends, std::size_t place, std::vector<bool>& reached)
{
    const char byte = place < pattern.size() ? pattern[place] : '\0';
    if (byte == '*' || byte == '}') {
        reached[place + 1] = true;
    } else if (byte == '{') {
        for (std::size_t end = place; end < pattern.size() && (end == place || pattern[end] != '}');
             end = ends.alternative[end])
            reached[end + 1] = true;
    } else if (byte == ',' || byte == '|') {
        reached[std::min(ends.group[place] + 1, pattern.size())] = true;
    }
}

/// Whether the set whose "[" stands at @p place takes @p byte; then @p place becomes the place after the set.
bool takesFromSet(std::string_view pattern, std::size_t& place, char byte)
{
    std::size_t i = place + 1;
    const bool negated = i < pattern.size() && (pattern[i] == '!' || pattern[i] == '^');
    if (negated)
        ++i;
    const auto value = static_cast<signed char>(byte);
    bool found = false;
    for (const std::size_t first = i; i < pattern.size() && (i == first || pattern[i] != ']'); ++i) {
        if (i > first && pattern[i] == '-' && i + 1 < pattern.size() && pattern[i + 1] != ']') {
            found = found || (static_cast<signed char>(pattern[i - 1]) <= value &&
                              value <= static_cast<signed char>(pattern[i + 1]));
            ++i;
        } else {
            found = found || pattern[i] == byte;
        }
    }
    place = std::min(i + 1, pattern.size());
    return found != negated;
}

/// Whether the pattern goes on over @p byte from @p place, which then becomes the place after it.
bool takes(std::string_view pattern, std::size_t& place, char byte)
{
    switch (place < pattern.size() ? pattern[place] : '}') {
    case '{':
    case '}':
    case ',':
    case '|':
        return false;
    case '*':
        return true;
    case '?':
        ++place;
        return true;
    case '[':
        return takesFromSet(pattern, place, byte);
    case '\\':
        if (place + 1 < pattern.size())
            ++place;
        [[fallthrough]];
    default:
        return pattern[place++] == byte;
    }
}

} // namespace

// The places of the pattern that the bytes read so far can lead to are followed at the same time. To try them
// in turn would take time exponential in the number of "*" and "{".
bool globMatches(std::string_view name, std::string_view pattern)
{
    const Ends ends(pattern);
    std::vector<bool> reached(pattern.size() + 1);
    reached[0] = true;
    for (std::size_t i = 0; i <= name.size(); ++i) {
        std::vector<bool> next(pattern.size() + 1);
        for (std::size_t place = 0; place <= pattern.size(); ++place) {
            if (!reached[place])
                continue;
            reach(pattern, ends, place, reached);
            std::size_t after = place;
            if (i < name.size() && takes(pattern, after, name[i]))
                next[after] = true;
        }
        if (i < name.size())
            reached.swap(next);
    }
    return reached[pattern.size()];
}
