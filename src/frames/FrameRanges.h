#pragma once

#include "base/Export.h"
#include "frames/FrameRange.h"

#include <cstddef>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Halvern::Base {

/// A set of frames, as artists type it: "1-10x2,15,20-30".
///
/// Each frame counts once, and frames are in ascending order however they were given. Frames may be negative
/// and span all of int; a range takes the same memory however long it is. A plain value that does not change
/// after it was made. A line tells what cannot be read or reached: in the caller's text if there is one, else
/// on standard output.
class HVCOREUI_EXPORT FrameRanges
{
public:
    /// Walks over the frames, ascending. Belongs to the set that gave it.
    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = int;
        using difference_type = std::ptrdiff_t;
        using pointer = const int*;
        using reference = int;

        Iterator() = default;
        int operator*() const { return m_frame; }
        Iterator& operator++();
        Iterator operator++(int) { return std::exchange(*this, ++Iterator(*this)); }
        bool operator==(const Iterator& other) const
        {
            return m_run == other.m_run && m_frame == other.m_frame;
        }
        bool operator!=(const Iterator& other) const { return !(*this == other); }

    private:
        friend class FrameRanges;
        Iterator(const FrameRange* run, const FrameRange* end)
            : m_run(run)
            , m_end(end)
            , m_frame(run == end ? 0 : run->first)
        {
        }

        const FrameRange* m_run = nullptr;
        const FrameRange* m_end = nullptr;
        int m_frame = 0; // 0 at the end
    };

    /// No frames.
    FrameRanges() = default;

    /// Reads frames and ranges with commas between them: "7" is a frame, "1-10" a range, "1-10x3" every third
    /// frame of it from its first on, "-10--5" a range of negative frames. Blanks around an item are ignored,
    /// and a blank text is the empty set. A range may run backwards, which matters for its step only:
    /// "10-1x3" is 10, 7, 4 and 1. Ranges may overlap.
    ///
    /// Nothing, and a line in @p error or on standard output that quotes the item, if the text is none of
    /// that, and for what unite() refuses.
    static std::optional<FrameRanges> parse(std::string_view text, std::string* error = nullptr);

    /// Reads the frames from the display name of a sequence, in which a comma stands before a step:
    /// "x.#.exr 1-7,2" is 1, 3, 5 and 7, "x.#.exr 1-9 ( 1-4  6-8 )" the runs in brackets with the first and
    /// the last frame. The pattern may be missing. Nothing, and a line on standard output, as for parse().
    static std::optional<FrameRanges> parseDisplayName(std::string_view name);

    /// The frames that are in any of @p ranges, each of which may run backwards.
    ///
    /// Nothing, and a line in @p error or on standard output, for a step below 1, and if ranges that overlap
    /// and have steps hold more than a million frames.
    static std::optional<FrameRanges> unite(std::vector<FrameRange> ranges, std::string* error = nullptr);

    /// The runs as parse() reads them. Example: the frames 1, 3, 5, 6, 7, 8 give "1-5x2,6-8".
    std::string text() const;

    bool isEmpty() const { return m_runs.empty(); }
    /// Number of frames; up to 2^32, which is more than int holds.
    long long count() const { return m_runs.empty() ? 0 : m_endIndexes.back(); }
    bool contains(int frame) const;
    /// The frame at @p index in ascending order, from 0. Nothing, and a line on standard output, if none.
    std::optional<int> frame(long long index) const;

    Iterator begin() const { return {m_runs.data(), m_runs.data() + m_runs.size()}; }
    Iterator end() const { return {m_runs.data() + m_runs.size(), m_runs.data() + m_runs.size()}; }

    /// The runs, ascending, none of them overlapping: two or more consecutive frames, three or more frames
    /// with a larger step, or one frame. The same frames always give the same runs.
    const std::vector<FrameRange>& runs() const { return m_runs; }

private:
    explicit FrameRanges(std::vector<FrameRange> runs);

    std::vector<FrameRange> m_runs;
    std::vector<long long> m_endIndexes; // for each run: the index after its last frame
};

} // namespace Halvern::Base
