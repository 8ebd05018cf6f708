#include "paths/Glob.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// The places of a pattern that the bytes of a name read so far can lead to, each once. All are followed at
/// the same time: to try them in turn would take time exponential in the number of "*" and "{".
struct Places
{
    std::vector<std::size_t> list;
    std::vector<bool> has;
};

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

/// Adds @p place and all that follows from it without a byte of the name.
void reach(std::string_view pattern, const Ends& ends, std::size_t place, Places& reached)
{
    std::vector<std::size_t> pending{place};
    while (!pending.empty()) {
        place = pending.back();
        pending.pop_back();
        if (reached.has[place])
            continue;
        reached.has[place] = true;
        reached.list.push_back(place);
        const char byte = place < pattern.size() ? pattern[place] : '\0';
        if (byte == '*' || byte == '}') {
            pending.push_back(place + 1);
        } else if (byte == '{') {
            for (std::size_t end = place; end < pattern.size() && (end == place || pattern[end] != '}');) {
                pending.push_back(end + 1);
                end = ends.alternative[end];
            }
        } else if (byte == ',' || byte == '|') {
            pending.push_back(std::min(ends.group[place] + 1, pattern.size()));
        }
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

/// Whether the pattern goes on from @p place over @p byte of the name; then @p place becomes the place after
/// it.
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

bool globMatches(std::string_view name, std::string_view pattern)
{
    const Ends ends(pattern);
    const Places none{{}, std::vector<bool>(pattern.size() + 1)};
    Places reached = none;
    reach(pattern, ends, 0, reached);
    for (const char byte : name) {
        const Places before = std::exchange(reached, none);
        for (std::size_t place : before.list) {
            if (takes(pattern, place, byte))
                reach(pattern, ends, place, reached);
        }
        if (reached.list.empty())
            return false;
    }
    return reached.has[pattern.size()];
}
