#include "paths/Glob.h"

#include <algorithm>

namespace {

constexpr std::size_t none = std::string_view::npos;

} // namespace

Glob::Glob(std::string_view pattern)
    : m_pattern(pattern)
    , m_reachedRound(pattern.size() + 1, 0)
{
}

bool Glob::matches(std::string_view name)
{
    reach(0);
    std::vector<std::size_t> places;
    for (const char byte : name) {
        places.clear();
        places.swap(m_reached);
        ++m_round;
        for (const std::size_t at : places)
            read(at, byte);
        if (m_reached.empty())
            return false;
    }
    return m_reachedRound[m_pattern.size()] == m_round;
}

/// Adds @p start and whatever follows from it without reading a byte.
void Glob::reach(std::size_t start)
{
    m_pending.push_back(start);
    while (!m_pending.empty()) {
        const std::size_t at = m_pending.back();
        m_pending.pop_back();
        if (m_reachedRound[at] == m_round)
            continue;
        m_reachedRound[at] = m_round;
        m_reached.push_back(at);
        switch (at < m_pattern.size() ? m_pattern[at] : '\0') {
        case '*':
        case '}':
            m_pending.push_back(at + 1);
            break;
        case '{':
            for (std::size_t next = at + 1; next != none; next = nextAlternative(next))
                m_pending.push_back(next);
            break;
        case ',':
        case '|':
            m_pending.push_back(behindGroup(at + 1));
            break;
        default:
            break;
        }
    }
}

/// Goes on from the place @p at over the byte @p byte of the name, if the pattern allows it.
void Glob::read(std::size_t at, char byte)
{
    if (at == m_pattern.size())
        return;
    switch (m_pattern[at]) {
    case '*':
        reach(at);
        break;
    case '?':
        reach(at + 1);
        break;
    case '[': {
        const Set& set = setAt(at);
        if (set.bytes.test(static_cast<unsigned char>(byte)))
            reach(set.end);
        break;
    }
    case '{':
    case '}':
    case ',':
    case '|':
        break;
    case '\\':
        if (at + 1 < m_pattern.size())
            ++at;
        [[fallthrough]];
    default:
        if (m_pattern[at] == byte)
            reach(at + 1);
        break;
    }
}

/// The set whose "[" stands at @p at.
const Glob::Set& Glob::setAt(std::size_t at)
{
    const auto [entry, isNew] = m_sets.try_emplace(at);
    Set& set = entry->second;
    if (!isNew)
        return set;
    const std::size_t size = m_pattern.size();
    std::size_t i = at + 1;
    const bool negated = i < size && (m_pattern[i] == '!' || m_pattern[i] == '^');
    if (negated)
        ++i;
    const std::size_t first = i;
    while (i < size && (i == first || m_pattern[i] != ']')) {
        const bool range = i > first && m_pattern[i] == '-' && i + 1 < size && m_pattern[i + 1] != ']';
        if (range) {
            const auto low = static_cast<signed char>(m_pattern[i - 1]);
            const auto high = static_cast<signed char>(m_pattern[i + 1]);
            for (int member = -128; member < 128; ++member) {
                if (low <= member && member <= high)
                    set.bytes.set(static_cast<unsigned char>(member));
            }
            i += 2;
        } else {
            set.bytes.set(static_cast<unsigned char>(m_pattern[i]));
            ++i;
        }
    }
    set.end = std::min(i + 1, size);
    if (negated)
        set.bytes.flip();
    return set;
}

/// Where the alternative after the one that begins at @p alternative begins; none after the last.
std::size_t Glob::nextAlternative(std::size_t alternative)
{
    const auto [entry, isNew] = m_nextAlternatives.try_emplace(alternative, none);
    if (isNew) {
        const std::size_t end = find(alternative, true);
        if (end < m_pattern.size() && m_pattern[end] != '}')
            entry->second = end + 1;
    }
    return entry->second;
}

/// The place behind the first unmatched "}" from @p at on, or the end of the pattern.
std::size_t Glob::behindGroup(std::size_t at)
{
    const auto [entry, isNew] = m_behindGroups.try_emplace(at, 0);
    if (isNew)
        entry->second = std::min(find(at, false) + 1, m_pattern.size());
    return entry->second;
}

/// The first unmatched "}" from @p from on or, with @p atSeparators, a separator outside nested braces before
/// it; the end of the pattern where there is none.
std::size_t Glob::find(std::size_t from, bool atSeparators) const
{
    int depth = 0;
    for (std::size_t i = from; i < m_pattern.size(); ++i) {
        switch (m_pattern[i]) {
        case '\\':
            ++i;
            break;
        case '{':
            ++depth;
            break;
        case '}':
            if (depth == 0)
                return i;
            --depth;
            break;
        case ',':
        case '|':
            if (atSeparators && depth == 0)
                return i;
            break;
        default:
            break;
        }
    }
    return m_pattern.size();
}
