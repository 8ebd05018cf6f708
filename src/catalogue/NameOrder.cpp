#include "catalogue/NameOrder.h"

#include "catalogue/FileInfo.h"

#include <cstring>
#include <numeric>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr std::size_t Ahead = 16; // entries that are fetched from memory meanwhile

// Tells the processor what will be read of the entry: its flags, its key and its name.
void fetch(const FileInfo& entry)
{
    __builtin_prefetch(&entry);
    __builtin_prefetch(entry.getStringSortName());
    __builtin_prefetch(entry.fileName());
}

} // namespace

NameOrder::NameOrder(Places places)
    : m_order(places)
{
}

NameOrder::NameOrder(const std::vector<FileInfo*>& entries, Places places)
    : NameOrder(places)
{
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i + Ahead < entries.size() && entries[i + Ahead])
            fetch(*entries[i + Ahead]);
        add(entries[i]);
    }
    finish();
}

bool NameOrder::isKeyed(const FileInfo& entry)
{
    constexpr std::size_t KeyedLength = 129;
    return entry.getFilenameLength() < KeyedLength;
}

void NameOrder::add(const FileInfo* entry)
{
    const bool ranked = entry && isKeyed(*entry);
    if (!ranked)
        m_unranked.push_back(static_cast<int>(size()));
    m_keys.append(ranked ? entry->getStringSortName() : "", entry ? entry->displayName() : "");
}

void NameOrder::finish()
{
    if (std::exchange(m_finished, true))
        return;
    m_places = Base::ordered(m_keys);
    m_keys = m_keys.inOrder(m_places);
    const bool byKey = m_order == ByKey && m_unranked.empty();
    m_names.resize(size());
    m_ranks.resize(size());
    int rank = 0;
    for (std::size_t i = 0; i < size(); ++i) {
        if (i > 0 && std::strcmp(m_keys[i - 1], m_keys[i]) != 0)
            ++rank;
        const std::size_t index = byKey ? i : static_cast<std::size_t>(m_places[i]);
        m_names[index] = m_keys[i] + std::strlen(m_keys[i]) + 1;
        m_ranks[index] = rank;
    }
    if (!byKey)
        std::iota(m_places.begin(), m_places.end(), 0);
    for (const int place : m_unranked)
        m_ranks[static_cast<std::size_t>(place)] = NoRank;
}

void NameOrder::apply(std::vector<FileInfo*>& entries) const
{
    std::vector<FileInfo*> inOrder;
    inOrder.reserve(entries.size());
    for (const int place : m_places)
        inOrder.push_back(entries[static_cast<std::size_t>(place)]);
    entries.swap(inOrder);
}

} // namespace Halvern::UI
