#pragma once

#include <bitset>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Matches names by following at once every place of the pattern that the bytes read so far can lead to.
/// Trying one way after another would take time exponential in the number of "*" and "{".
class Glob
{
public:
    /// Refers to @p pattern, which must stay; filename_match() tells what it may hold.
    explicit Glob(std::string_view pattern);

    /// Whether all of @p name matches.
    bool matches(std::string_view name);

private:
    struct Set
    {
        std::bitset<256> bytes;
        std::size_t end = 0;
    };

    void reach(std::size_t start);
    void read(std::size_t at, char byte);
    const Set& setAt(std::size_t at);
    std::size_t nextAlternative(std::size_t alternative);
    std::size_t behindGroup(std::size_t at);
    std::size_t find(std::size_t from, bool atSeparators) const;

    std::string_view m_pattern;
    std::size_t m_round = 1;                 ///< Number of the next byte of the name, from 1.
    std::vector<std::size_t> m_reached;      ///< Places reached in this round.
    std::vector<std::size_t> m_reachedRound; ///< By place: the last round in which it was reached.
    std::vector<std::size_t> m_pending;
    std::unordered_map<std::size_t, Set> m_sets;
    std::unordered_map<std::size_t, std::size_t> m_nextAlternatives;
    std::unordered_map<std::size_t, std::size_t> m_behindGroups;
};
