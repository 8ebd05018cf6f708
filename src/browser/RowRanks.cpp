#include "browser/RowRanks.h"

#include "catalogue/FileInfo.h"
#include "catalogue/NameOrder.h"

#include <algorithm>
#include <tuple>

namespace Halvern::UI::RowRanks {

namespace {

// Keys are pairs of what is ordered and a row.
template <class Key>
std::vector<int> ranksOf(std::vector<std::pair<Key, int>> keys, std::size_t rows)
{
    std::sort(keys.begin(), keys.end());
    std::vector<int> ranks(rows, NameOrder::NoRank);
    int rank = 0;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        rank += i > 0 && keys[i - 1].first < keys[i].first ? 1 : 0;
        ranks[static_cast<std::size_t>(keys[i].second)] = rank;
    }
    return ranks;
}

} // namespace

std::vector<int> bySize(const std::vector<FileInfo*>& rows, const NameOrder& names)
{
    using Key = std::tuple<bool, unsigned long long, int>;
    std::vector<std::pair<Key, int>> keys;
    keys.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (names.ranks()[row] == NameOrder::NoRank)
            continue;
        const bool isFile = !rows[row]->isDirectory();
        keys.emplace_back(Key(isFile, isFile ? rows[row]->size() : 0, names.ranks()[row]),
                          static_cast<int>(row));
    }
    return ranksOf(std::move(keys), rows.size());
}

std::vector<int> byTime(const std::vector<FileInfo*>& rows, const std::vector<int>& places)
{
    using Key = std::pair<long long, int>;
    std::vector<std::pair<Key, int>> keys;
    keys.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (rows[row])
            keys.emplace_back(Key(rows[row]->modificationTime(), places.empty() ? 0 : places[row]),
                              static_cast<int>(row));
    }
    return ranksOf(std::move(keys), rows.size());
}

} // namespace Halvern::UI::RowRanks
