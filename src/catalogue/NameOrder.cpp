#include "catalogue/NameOrder.h"

#include "catalogue/FileInfo.h"

#include <algorithm>
#include <cstring>

namespace Halvern::UI {

namespace {

constexpr std::size_t PieceSize = 32768; // sorted in a few milliseconds
constexpr std::size_t TypicalLength = 24;
constexpr std::size_t Ahead = 16; // entries that are fetched from memory meanwhile

// Tells the processor what will be read of the entry: its name, its key and its last member.
void fetch(const FileInfo& entry)
{
    __builtin_prefetch(entry.fileName());
    __builtin_prefetch(entry.getStringSortName());
    __builtin_prefetch(reinterpret_cast<const char*>(&entry + 1) - 1);
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
    if (m_size % PieceSize == 0) {
        const bool isLong = !m_pieces.empty();
        if (isLong)
            sortLastPiece();
        m_pieces.emplace_back();
        if (isLong)
            m_pieces.back().keys.reserve(PieceSize, 2 * TypicalLength);
    }
    const bool ranked = entry && isKeyed(*entry);
    if (!ranked)
        m_unranked.push_back(static_cast<int>(m_size));
    m_pieces.back().keys.append(ranked ? entry->getStringSortName() : "", entry ? entry->displayName() : "");
    ++m_size;
}

void NameOrder::sortLastPiece()
{
    Piece& piece = m_pieces.back();
    piece.places = Base::ordered(piece.keys);
    piece.keys = piece.keys.inOrder(piece.places);
    const int first = static_cast<int>((m_pieces.size() - 1) * PieceSize);
    for (int& place : piece.places)
        place += first;
}

bool NameOrder::finish(std::size_t most)
{
    if (!m_finishing)
        beginMerge();
    for (; most > 0 && !m_heads.empty(); --most)
        takeLeast();
    if (!m_heads.empty())
        return false;
    for (const int place : m_unranked)
        m_ranks[static_cast<std::size_t>(place)] = NoRank;
    m_unranked.clear();
    return true;
}

void NameOrder::beginMerge()
{
    m_finishing = true;
    if (m_pieces.empty())
        return;
    sortLastPiece();
    for (Piece& piece : m_pieces)
        m_heads.push_back(&piece);
    std::make_heap(m_heads.begin(), m_heads.end(), comesLater);
    if (!m_unranked.empty())
        m_order = AsAdded;
    m_names.reserve(m_size);
    m_places.reserve(m_size);
    m_ranks.reserve(m_size);
    if (m_order == ByKey)
        return;
    m_names.resize(m_size);
    m_places.resize(m_size);
    m_ranks.resize(m_size);
}

bool NameOrder::comesLater(const Piece* a, const Piece* b)
{
    const int order = std::strcmp(a->keys[a->merged], b->keys[b->merged]);
    return order != 0 ? order > 0 : a > b;
}

void NameOrder::takeLeast()
{
    std::pop_heap(m_heads.begin(), m_heads.end(), comesLater);
    Piece& piece = *m_heads.back();
    const char* key = piece.keys[piece.merged];
    const int place = piece.places[piece.merged];
    if (m_lastKey && std::strcmp(m_lastKey, key) != 0)
        ++m_lastRank;
    m_lastKey = key;
    const char* name = key + std::strlen(key) + 1;
    if (m_order == ByKey) {
        m_names.push_back(name);
        m_places.push_back(place);
        m_ranks.push_back(m_lastRank);
    } else {
        const auto index = static_cast<std::size_t>(place);
        m_names[index] = name;
        m_places[index] = place;
        m_ranks[index] = m_lastRank;
    }
    if (++piece.merged < piece.places.size()) {
        std::push_heap(m_heads.begin(), m_heads.end(), comesLater);
    } else {
        piece.places = std::vector<int>();
        m_heads.pop_back();
    }
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
