#pragma once

#include "base/SortKeys.h"

#include <vector>

namespace Halvern::UI {

class FileInfo;

/// The names of many entries and their order by sort key, close together in memory, for filtering and
/// sorting: the entries are kilobytes apart. Entries can be added while they arrive; finish() sorts them.
class NameOrder
{
public:
    /// The rank of null entries, and of those whose names cannot be ordered by their sort keys.
    static constexpr int NoRank = -1;

    enum Places
    {
        ByKey,  ///< By rising sort key, equal ones as they were added.
        AsAdded ///< Also used for ByKey if an entry has no rank.
    };

    explicit NameOrder(Places places = ByKey);
    NameOrder(NameOrder&&) = default;
    NameOrder& operator=(NameOrder&&) = default;
    ~NameOrder() = default;
    /// The order of @p entries, finished.
    explicit NameOrder(const std::vector<FileInfo*>& entries, Places places = ByKey);

    /// Whether the sort keys decide the order of two entries by name: the names are shorter than 129 bytes.
    static bool isKeyed(const FileInfo& entry);

    /// The next entry, which may be null. Nothing is added after finish().
    void add(const FileInfo* entry);
    /// Sorts, once. What follows is valid from now on.
    void finish();
    bool isFinished() const { return m_finished; }

    std::size_t size() const { return m_keys.size(); }
    /// The number of each in the sequence of adding.
    const std::vector<int>& places() const { return m_places; }
    /// Of each of places(): the lower comes first, equal keys have equal ranks.
    const std::vector<int>& ranks() const { return m_ranks; }
    /// Of one of places(), as it is displayed, without range and "/"; empty for null.
    const char* name(std::size_t index) const { return m_names[index]; }
    /// Puts @p entries, which stand as they were added, in the order of places().
    void apply(std::vector<FileInfo*>& entries) const;

private:
    Places m_order;
    Base::SortKeys m_keys;       // each followed by the name; sorted by finish()
    std::vector<int> m_unranked; // as they were added
    bool m_finished = false;

    std::vector<const char*> m_names; // in m_keys
    std::vector<int> m_places;
    std::vector<int> m_ranks;
};

} // namespace Halvern::UI
