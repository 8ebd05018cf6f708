#include "browser/RowRanks.h"

#include "base/TextOrder.h"
#include "catalogue/FileInfo.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace Halvern::UI::RowRanks {

namespace {

// Keys are pairs of what is ordered and a row.
template <class Key>
std::vector<int> ranksOf(std::vector<std::pair<Key, int>> keys, std::size_t rows)
{
    std::sort(keys.begin(), keys.end());
    std::vector<int> ranks(rows, None);
    int rank = 0;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        rank += i > 0 && keys[i - 1].first < keys[i].first ? 1 : 0;
        ranks[static_cast<std::size_t>(keys[i].second)] = rank;
    }
    return ranks;
}

// Tells the processor what will be read of the entry: its key, and the length of its name, its last member.
void fetch(const FileInfo& info)
{
    __builtin_prefetch(info.getStringSortName());
    __builtin_prefetch(reinterpret_cast<const char*>(&info + 1) - 1);
}

} // namespace

bool isKeyed(const FileInfo& info)
{
    constexpr std::size_t KeyedLength = 129;
    return info.getFilenameLength() < KeyedLength;
}

std::vector<int> byName(const std::vector<FileInfo*>& rows)
{
    constexpr std::size_t TypicalLength = 24;
    constexpr std::size_t Ahead = 16; // entries that are fetched from memory meanwhile
    std::vector<char> keys;           // copied, since sorting goes back to them in another order
    std::vector<std::size_t> begins;
    std::vector<std::size_t> named;
    keys.reserve(rows.size() * TypicalLength);
    begins.reserve(rows.size());
    named.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (row + Ahead < rows.size() && rows[row + Ahead])
            fetch(*rows[row + Ahead]);
        if (!rows[row] || !isKeyed(*rows[row]))
            continue;
        const char* key = rows[row]->getStringSortName();
        begins.push_back(keys.size());
        named.push_back(row);
        keys.insert(keys.end(), key, key + std::strlen(key) + 1);
    }
    std::vector<const char*> texts;
    texts.reserve(begins.size());
    for (const std::size_t begin : begins)
        texts.push_back(keys.data() + begin);
    const std::vector<int> places = Base::textRanks(texts);
    std::vector<int> ranks(rows.size(), None);
    for (std::size_t i = 0; i < places.size(); ++i)
        ranks[named[i]] = places[i];
    return ranks;
}

std::vector<int> bySize(const std::vector<FileInfo*>& rows, const std::vector<int>& names)
{
    using Key = std::tuple<bool, unsigned long long, int>;
    std::vector<std::pair<Key, int>> keys;
    keys.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (names[row] == None)
            continue;
        const bool isFile = !rows[row]->isDirectory();
        keys.emplace_back(Key(isFile, isFile ? rows[row]->size() : 0, names[row]), static_cast<int>(row));
    }
    return ranksOf(std::move(keys), rows.size());
}

std::vector<int> byTime(const std::vector<FileInfo*>& rows)
{
    std::vector<std::pair<long long, int>> keys;
    keys.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (rows[row])
            keys.emplace_back(rows[row]->modificationTime(), static_cast<int>(row));
    }
    return ranksOf(std::move(keys), rows.size());
}

} // namespace Halvern::UI::RowRanks
