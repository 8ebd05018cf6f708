#include "frames/FrameUnion.h"

#include <algorithm>
#include <climits>
#include <numeric>
#include <tuple>

namespace Halvern::Base {

namespace {

using Frame = long long; // differences of frames exceed int

constexpr std::size_t MostRuns = 1000000;
constexpr Frame MostWork = 4000000;

FrameRange makeRun(Frame first, Frame last, Frame step)
{
    return {static_cast<int>(first), static_cast<int>(last), static_cast<int>(step)};
}

/// The first frame of the run's raster that is not below @p from.
Frame alignedUp(const FrameRange& run, Frame from)
{
    const Frame distance = from - run.first;
    return distance <= 0 ? run.first : run.first + (distance + run.step - 1) / run.step * run.step;
}

/// Puts frames that come in ascending order into runs. The result is the same whether frames come one by one
/// or as ranges.
class RunBuilder
{
public:
    void append(Frame first, Frame last, Frame step)
    {
        // Three frames settle which run the rest goes on with.
        for (int i = 0; i < 3 && first <= last; ++i, first += step)
            appendFrame(first);
        if (first <= last)
            m_last = last - (last - first) % step;
    }

    bool isTooLong() const { return m_runs.size() > MostRuns; }

    std::vector<FrameRange> take()
    {
        if (m_open)
            close();
        return std::move(m_runs);
    }

private:
    void appendFrame(Frame frame)
    {
        if (m_open && m_first != m_last && frame - m_last != m_step) {
            // Two distant frames are no run: the second may begin one.
            if (m_step > 1 && m_last - m_first == m_step) {
                m_runs.push_back(makeRun(m_first, m_first, 1));
                m_first = m_last;
            } else {
                close();
            }
        }
        if (m_open && m_first == m_last && frame - m_last > INT_MAX)
            close();
        if (!m_open)
            m_first = frame;
        else if (m_first == m_last)
            m_step = frame - m_last;
        m_last = frame;
        m_open = true;
    }

    void close()
    {
        m_open = false;
        if (m_first == m_last) {
            m_runs.push_back(makeRun(m_first, m_first, 1));
        } else if (m_step > 1 && m_last - m_first == m_step) {
            m_runs.push_back(makeRun(m_first, m_first, 1));
            m_runs.push_back(makeRun(m_last, m_last, 1));
        } else {
            m_runs.push_back(makeRun(m_first, m_last, m_step));
        }
    }

    std::vector<FrameRange> m_runs;
    bool m_open = false;
    Frame m_first = 0;
    Frame m_last = 0;
    Frame m_step = 1; // of an open run of two or more
};

/// Walks along the frame axis, from one begin or end of a range to the next.
class Sweep
{
public:
    bool run(std::vector<FrameRange> ranges)
    {
        std::vector<Frame> bounds;
        for (const FrameRange& range : ranges) {
            bounds.push_back(range.first);
            bounds.push_back(Frame(range.last) + 1);
        }
        std::sort(bounds.begin(), bounds.end());
        bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());
        std::sort(ranges.begin(), ranges.end(),
                  [](const FrameRange& a, const FrameRange& b) { return a.first < b.first; });
        auto next = ranges.begin();
        for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
            const Frame from = bounds[i];
            m_active.erase(std::remove_if(m_active.begin(), m_active.end(),
                                          [from](const FrameRange& range) { return range.last < from; }),
                           m_active.end());
            for (; next != ranges.end() && next->first == from; ++next)
                m_active.push_back(*next);
            if (!appendStretch(from, bounds[i + 1] - 1))
                return false;
        }
        return true;
    }

    std::vector<FrameRange> take() { return m_runs.take(); }

private:
    bool spend(Frame work)
    {
        m_work += work;
        return m_work <= MostWork && !m_runs.isTooLong();
    }

    // All active ranges cover the stretch from its first frame to its last.
    bool appendStretch(Frame from, Frame to)
    {
        if (!spend(static_cast<Frame>(m_active.size())))
            return false;
        const auto isDense = [](const FrameRange& range) { return range.step == 1; };
        if (std::any_of(m_active.begin(), m_active.end(), isDense))
            m_runs.append(from, to, 1);
        else if (m_active.size() == 1)
            m_runs.append(alignedUp(m_active.front(), from), to, m_active.front().step);
        else if (!m_active.empty())
            return appendInterleaved(from, to);
        return true;
    }

    // The frames repeat after the least common multiple of the steps.
    bool appendInterleaved(Frame from, Frame to)
    {
        const Frame length = to - from + 1;
        Frame period = 1;
        for (const FrameRange& range : m_active)
            period = std::min(length, std::lcm(period, Frame(range.step)));
        std::vector<Frame> frames;
        for (const FrameRange& range : m_active) {
            if (!spend(period / range.step + 1))
                return false;
            for (Frame frame = alignedUp(range, from); frame < from + period; frame += range.step)
                frames.push_back(frame);
        }
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        if (period < length && appendRegular(frames, period, to))
            return true;
        for (Frame shift = 0; shift < length; shift += period) {
            if (!spend(static_cast<Frame>(frames.size())))
                return false;
            for (const Frame frame : frames) {
                if (frame + shift <= to)
                    m_runs.append(frame + shift, frame + shift, 1);
            }
        }
        return true;
    }

    // Whether the frames are as far from each other within a period as from one period to the next.
    bool appendRegular(const std::vector<Frame>& frames, Frame period, Frame to)
    {
        const Frame step = frames.front() + period - frames.back();
        for (std::size_t i = 1; i < frames.size(); ++i) {
            if (frames[i] - frames[i - 1] != step)
                return false;
        }
        m_runs.append(frames.front(), to, step);
        return true;
    }

    std::vector<FrameRange> m_active;
    RunBuilder m_runs;
    Frame m_work = 0;
};

FrameRange ascending(const FrameRange& range)
{
    const Frame distance = Frame(range.last) - range.first;
    const Frame end = range.first + distance / range.step * range.step;
    const Frame step = end == range.first ? 1 : range.step;
    return makeRun(std::min<Frame>(range.first, end), std::max<Frame>(range.first, end), step);
}

/// Joins ranges of one raster that touch or overlap; those of different rasters stay.
std::vector<FrameRange> joinAligned(std::vector<FrameRange> ranges)
{
    const auto raster = [](const FrameRange& range) {
        const int phase = range.first % range.step;
        return std::make_tuple(range.step, phase < 0 ? phase + range.step : phase);
    };
    std::sort(ranges.begin(), ranges.end(), [&raster](const FrameRange& a, const FrameRange& b) {
        return std::make_tuple(raster(a), a.first) < std::make_tuple(raster(b), b.first);
    });
    std::vector<FrameRange> joined;
    for (const FrameRange& range : ranges) {
        const bool touches = !joined.empty() && raster(joined.back()) == raster(range) &&
                             Frame(range.first) - joined.back().last <= range.step;
        if (touches)
            joined.back().last = std::max(joined.back().last, range.last);
        else
            joined.push_back(range);
    }
    return joined;
}

} // namespace

long long frameCount(const FrameRange& run)
{
    return (Frame(run.last) - run.first) / run.step + 1;
}

std::optional<std::vector<FrameRange>> uniteFrames(std::vector<FrameRange> ranges)
{
    std::transform(ranges.begin(), ranges.end(), ranges.begin(), ascending);
    Sweep sweep;
    if (!sweep.run(joinAligned(std::move(ranges))))
        return std::nullopt;
    return sweep.take();
}

} // namespace Halvern::Base
