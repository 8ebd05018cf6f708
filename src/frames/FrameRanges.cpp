#include "frames/FrameRanges.h"

#include "base/Text.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>

namespace Halvern::Base {

namespace {

using Frame = long long; // differences of frames exceed int

constexpr Frame MostOverlappingFrames = 1000000;

Frame frameCount(const FrameRange& run)
{
    return (Frame(run.last) - run.first) / run.step + 1;
}

/// The same frames from the first to the last, which is one of them.
FrameRange ascending(const FrameRange& range)
{
    const Frame distance = Frame(range.last) - range.first;
    const auto [first, last] =
        std::minmax({range.first, int(range.first + distance / range.step * range.step)});
    return {first, last, first == last ? 1 : range.step};
}

void appendFrame(std::vector<FrameRange>& runs, int frame)
{
    const auto isSingle = [&runs](std::size_t fromEnd) {
        return runs.size() >= fromEnd &&
               runs[runs.size() - fromEnd].first == runs[runs.size() - fromEnd].last;
    };
    const Frame step = runs.empty() ? 0 : Frame(frame) - runs.back().last;
    if (!runs.empty() && step == runs.back().step) { // a single frame has the step 1
        runs.back().last = frame;
    } else if (isSingle(1) && isSingle(2) && step == Frame(runs.back().last) - runs[runs.size() - 2].last &&
               step <= INT_MAX) {
        runs.pop_back();
        runs.back().last = frame;
        runs.back().step = static_cast<int>(step);
    } else {
        runs.push_back({frame, frame, 1});
    }
}

/// The runs come out the same whether frames are appended one by one or as ranges.
void appendRange(std::vector<FrameRange>& runs, const FrameRange& range)
{
    Frame frame = range.first;
    // The fourth frame has joined a run of this step, whatever stands before the first.
    for (int i = 0; i < 4 && frame <= range.last; ++i, frame += range.step)
        appendFrame(runs, static_cast<int>(frame));
    if (frame <= range.last)
        runs.back().last = range.last;
}

std::nullopt_t refuse(const std::string& reason, std::string* error)
{
    if (error)
        *error = reason;
    else
        std::printf("%s\n", reason.c_str());
    return std::nullopt;
}

std::nullopt_t refuseItem(std::string_view item, std::string* error)
{
    constexpr std::size_t Quoted = 80;
    return refuse("Frame range \"" + std::string(item.substr(0, Quoted)) +
                      "\": expected a frame (7), a range (1-10) or a range with a step, in numbers from "
                      "-2147483648 to 2147483647",
                  error);
}

/// Takes the number that @p text begins with off it.
bool takeNumber(std::string_view& text, int& number)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return result.ec == std::errc();
}

bool take(std::string_view& text, char mark)
{
    const bool found = !text.empty() && text.front() == mark;
    text.remove_prefix(found ? 1 : 0);
    return found;
}

/// Reads "7", "1-10" or, with 'x' as @p stepMark, "1-10x2".
std::optional<FrameRange> parseItem(std::string_view item, char stepMark, std::string* error)
{
    std::string_view rest = item;
    FrameRange range;
    bool isRead = takeNumber(rest, range.first);
    range.last = range.first;
    if (isRead && take(rest, '-')) {
        isRead = takeNumber(rest, range.last);
        if (isRead && take(rest, stepMark))
            isRead = takeNumber(rest, range.step) && range.step > 0;
    }
    if (!isRead || !rest.empty())
        return refuseItem(item, error);
    return range;
}

std::string itemText(const FrameRange& run)
{
    std::string text = std::to_string(run.first);
    if (run.last != run.first)
        text += '-' + std::to_string(run.last);
    if (run.step > 1)
        text += 'x' + std::to_string(run.step);
    return text;
}

} // namespace

FrameRanges::Iterator& FrameRanges::Iterator::operator++()
{
    if (m_frame != m_run->last)
        m_frame += m_run->step;
    else
        *this = Iterator(m_run + 1, m_end);
    return *this;
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

// Ranges that overlap, of which one has a step, are looked at frame by frame.
std::optional<FrameRanges> FrameRanges::unite(std::vector<FrameRange> ranges, std::string* error)
{
    for (const FrameRange& range : ranges) {
        if (range.step < 1) {
            const std::string frames = std::to_string(range.first) + '-' + std::to_string(range.last);
            return refuse("Frame range " + frames + ": the step is " + std::to_string(range.step) +
                              ", and must be 1 or more",
                          error);
        }
    }
    std::transform(ranges.begin(), ranges.end(), ranges.begin(), ascending);
    std::sort(ranges.begin(), ranges.end(),
              [](const FrameRange& a, const FrameRange& b) { return a.first < b.first; });
    std::vector<FrameRange> runs;
    Frame overlapping = 0;
    for (auto begin = ranges.begin(), end = begin; begin != ranges.end(); begin = end) {
        FrameRange whole = *begin;
        for (++end; end != ranges.end() && end->first <= whole.last; ++end)
            whole = {whole.first, std::max(whole.last, end->last), std::max(whole.step, end->step)};
        if (end - begin == 1 || whole.step == 1) {
            appendRange(runs, whole);
            continue;
        }
        std::vector<int> frames;
        for (auto range = begin; range != end; ++range) {
            overlapping += frameCount(*range);
            if (overlapping > MostOverlappingFrames)
                return refuse("Frame ranges: more than " + std::to_string(MostOverlappingFrames) +
                                  " frames in overlapping ranges with steps",
                              error);
            for (Frame frame = range->first; frame <= range->last; frame += range->step)
                frames.push_back(static_cast<int>(frame));
        }
        std::sort(frames.begin(), frames.end());
        frames.erase(std::unique(frames.begin(), frames.end()), frames.end());
        for (const int frame : frames)
            appendFrame(runs, frame);
    }
    return FrameRanges(std::move(runs));
}

std::optional<FrameRanges> FrameRanges::parse(std::string_view text, std::string* error)
{
    std::vector<FrameRange> ranges;
    if (trimmed(text).empty())
        return FrameRanges();
    for (const std::string_view item : split(text, ',')) {
        const auto range = parseItem(trimmed(item), 'x', error);
        if (!range)
            return std::nullopt;
        ranges.push_back(*range);
    }
    return unite(std::move(ranges), error);
}

std::optional<FrameRanges> FrameRanges::parseDisplayName(std::string_view name)
{
    std::string_view head = trimmed(name);
    std::string_view listed;
    if (!head.empty() && head.back() == ')') {
        const std::size_t bracket = head.rfind('(');
        if (bracket == std::string_view::npos)
            return refuseItem(name, nullptr);
        listed = head.substr(bracket + 1, head.size() - bracket - 2);
        head = trimmed(head.substr(0, bracket));
    }
    const auto whole = parseItem(head.substr(head.rfind(' ') + 1), ',', nullptr);
    if (!whole)
        return std::nullopt;
    if (trimmed(listed).empty())
        return unite({*whole});
    std::vector<FrameRange> ranges{{whole->first, whole->first, 1}, {whole->last, whole->last, 1}};
    for (const std::string_view item : split(listed, ' ')) {
        if (item.empty())
            continue;
        auto run = parseItem(item, ',', nullptr);
        if (!run)
            return std::nullopt;
        run->step = whole->step;
        ranges.push_back(*run);
    }
    return unite(std::move(ranges));
}

std::string FrameRanges::text() const
{
    std::vector<std::string> items;
    std::transform(m_runs.begin(), m_runs.end(), std::back_inserter(items), itemText);
    return join(items, ",");
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
