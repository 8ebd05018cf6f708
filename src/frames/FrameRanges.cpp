#include "frames/FrameRanges.h"

#include "frames/FrameUnion.h"

#include <algorithm>
#include <cstdio>

namespace Halvern::Base {

FrameRanges::Iterator::Iterator(const FrameRange* run, const FrameRange* end)
    : m_run(run)
    , m_end(end)
    , m_frame(run == end ? 0 : run->first)
{
}

FrameRanges::Iterator& FrameRanges::Iterator::operator++()
{
    if (m_frame != m_run->last)
        m_frame += m_run->step;
    else
        *this = Iterator(m_run + 1, m_end);
    return *this;
}

FrameRanges::Iterator FrameRanges::Iterator::operator++(int)
{
    const Iterator before = *this;
    ++*this;
    return before;
}

FrameRanges::FrameRanges(std::vector<FrameRange> runs)
    : m_runs(std::move(runs))
{
    m_endIndexes.reserve(m_runs.size());
    long long end = 0;
    for (const FrameRange& run : m_runs) {
        end += frameCount(run);
        m_endIndexes.push_back(end);
    }
}

std::optional<FrameRanges> FrameRanges::unite(std::vector<FrameRange> ranges)
{
    const auto bad =
        std::find_if(ranges.begin(), ranges.end(), [](const FrameRange& r) { return r.step < 1; });
    if (bad != ranges.end()) {
        std::printf("Frame range %d-%d: a step of %d leads nowhere\n", bad->first, bad->last, bad->step);
        return std::nullopt;
    }
    auto runs = uniteFrames(std::move(ranges));
    if (!runs) {
        std::printf("Frame ranges: too many ranges with different steps interleave\n");
        return std::nullopt;
    }
    return FrameRanges(std::move(*runs));
}

bool FrameRanges::contains(int frame) const
{
    const auto run = std::lower_bound(m_runs.begin(), m_runs.end(), frame,
                                      [](const FrameRange& r, int wanted) { return r.last < wanted; });
    return run != m_runs.end() && run->first <= frame &&
           (static_cast<long long>(frame) - run->first) % run->step == 0;
}

std::optional<int> FrameRanges::frame(long long index) const
{
    if (index < 0 || index >= count()) {
        std::printf("Frame index %lld: there are %lld frames, counted from 0\n", index, count());
        return std::nullopt;
    }
    const auto end = std::upper_bound(m_endIndexes.begin(), m_endIndexes.end(), index);
    const FrameRange& run = m_runs[static_cast<std::size_t>(end - m_endIndexes.begin())];
    return static_cast<int>(run.last - (*end - 1 - index) * run.step);
}

} // namespace Halvern::Base
