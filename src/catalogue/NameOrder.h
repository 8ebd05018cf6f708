#pragma once

#include "base/SortKeys.h"

#include <vector>

namespace Halvern::UI {

class FileInfo;

/// The names of many entries and their order by sort key, kept close together: who filters looks at every
/// name, and who sorts compares each with many others, where the entries are kilobytes apart.
///
/// Entries can be added while they arrive. They are sorted in pieces then, and finish() merges these.
class NameOrder
{
public:
    /// What has no rank: null entries, and those whose names cannot be ordered by their sort keys.
    static constexpr int NoRank = -1;

    enum Places
    {
        ByKey,  ///< By rising sort key, equal ones as they were added.
        AsAdded ///< Also what comes of ByKey where an entry has no rank.
    };

    explicit NameOrder(Places places = ByKey);
    NameOrder(NameOrder&&) = default;
    NameOrder& operator=(NameOrder&&) = default;
    ~NameOrder() = default;
    /// That of @p entries, finished.
    explicit NameOrder(const std::vector<FileInfo*>& entries, Places places = ByKey);

    /// Whether the sort keys of two entries decide their order by name: both names are shorter than 129
    /// bytes.
    static bool isKeyed(const FileInfo& entry);

    /// The next entry, which may be null. Nothing is added once finish() was called.
    void add(const FileInfo* entry);
    /// Merges at most so many names further; true when all are in order. What follows is valid then.
    bool finish(std::size_t most);
    void finish() { finish(size()); }
    bool isFinishing() const { return m_finishing; }

    /// How many were added.
    std::size_t size() const { return m_size; }
    /// The number of each in the sequence of adding.
    const std::vector<int>& places() const { return m_places; }
    /// Of each of places(): the lower comes first, equal keys have equal ranks.
    const std::vector<int>& ranks() const { return m_ranks; }
    /// Of one of places(), as it is displayed, without range and "/"; empty for null.
    const char* name(std::size_t index) const { return m_names[index]; }
    /// Puts @p entries, which stand as they were added, in the order of places().
    void apply(std::vector<FileInfo*>& entries) const;

private:
    struct Piece
    {
        Base::SortKeys keys; // behind each, the name
        std::vector<int> places;
        std::size_t merged = 0;
    };

    static bool comesLater(const Piece* a, const Piece* b);
    void sortLastPiece();
    void beginMerge();
    void takeLeast();

    Places m_order;
    std::size_t m_size = 0;
    std::vector<Piece> m_pieces; // all but the last are sorted
    std::vector<Piece*> m_heads; // a heap of those with something to merge, the least on top
    std::vector<int> m_unranked; // as they were added
    const char* m_lastKey = nullptr;
    int m_lastRank = 0;
    bool m_finishing = false;

    std::vector<const char*> m_names; // in the pieces
    std::vector<int> m_places;
    std::vector<int> m_ranks;
};

} // namespace Halvern::UI
