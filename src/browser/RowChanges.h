#pragma once

#include <climits>
#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

namespace Halvern::UI {

class FileInfo;

/// What a row is recognised by in a later state of its directory. The texts are borrowed.
struct RowKey
{
    enum Kind
    {
        Nothing, ///< A row without an entry.
        File,
        Folder,
        Sequence
    };
    Kind kind = Nothing;
    std::string_view name; ///< Of a sequence without its range.
    /// Sequences of one name are the same if they have frames in common.
    int firstFrame = INT_MIN;
    int lastFrame = INT_MAX;
    /// Sequences of several names, which an evaluator may give, are the same if they begin with this file.
    std::string_view firstFile = {};
    /// The frames of a sequence. A single file among them is the same row before the others come and after
    /// they are gone. Null if files are not looked for.
    const std::map<int, FileInfo*>* frames = nullptr;
};

/// How the rows of a directory become those of a later state: which stay, which vanish and which are new. A
/// plain value.
class RowChanges
{
public:
    /// Rows from @p first on, @p count of them.
    struct Range
    {
        int first;
        int count;
    };

    RowChanges() = default;
    /// Each row is the same as one other at most. Throws `std::bad_alloc`.
    RowChanges(const std::vector<RowKey>& before, const std::vector<RowKey>& after);

    /// The place of each row before, and then of each new row. Rows that vanish have places after the last
    /// row that stays. Example: "a", "b" become "b", "c": a vanishes, so the places of a, b, c are 2, 0, 1.
    const std::vector<int>& places() const { return m_places; }
    bool vanishes(int row) const { return m_places[static_cast<std::size_t>(row)] >= m_after; }
    /// Whether the rows that stay keep their order.
    bool keepsOrder() const;
    /// Whether every row stays in its place and none is new.
    bool isNone() const;
    /// The rows that vanish, by their rows before, ascending.
    std::vector<Range> vanishing() const;
    /// The new rows, by their rows after, ascending.
    std::vector<Range> added() const;
    int rowsBefore() const { return m_before; }

private:
    int m_before = 0;
    int m_after = 0;
    std::vector<int> m_places;
};

} // namespace Halvern::UI
