// How sets of frames are written and read.

#include "frames/FrameRanges.h"

#include "base/Text.h"
#include "frames/FrameUnion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace Halvern::Base {

namespace {

std::nullopt_t refuse(std::string_view item, const char* reason)
{
    std::printf("Frame range \"%.*s\": %s\n", static_cast<int>(std::min<std::size_t>(item.size(), 80)),
                item.data(), reason);
    return std::nullopt;
}

/// Takes the number that @p text begins with off it.
std::optional<int> takeNumber(std::string_view& text)
{
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return number;
}

/// Reads "7", "1-10" or, with 'x' as @p stepMark, "1-10x2".
std::optional<FrameRange> parseItem(std::string_view item, char stepMark)
{
    constexpr const char* wantsFrame = "a frame is a whole number from -2147483648 to 2147483647";
    std::string_view rest = item;
    const auto first = takeNumber(rest);
    if (!first)
        return refuse(item, wantsFrame);
    FrameRange range{*first, *first, 1};
    if (rest.empty())
        return range;
    if (rest.front() != '-')
        return refuse(item, "a frame, a range or a range with a step was expected");
    rest.remove_prefix(1);
    const auto last = takeNumber(rest);
    if (!last)
        return refuse(item, wantsFrame);
    range.last = *last;
    if (rest.empty())
        return range;
    if (rest.front() != stepMark)
        return refuse(item, "a frame, a range or a range with a step was expected");
    rest.remove_prefix(1);
    const auto step = takeNumber(rest);
    if (!step || *step < 1 || !rest.empty())
        return refuse(item, "a step is a whole number from 1 to 2147483647");
    range.step = *step;
    return range;
}

/// Frames at one distance from each other. It ends at the frame with which the next stretch begins.
struct Stretch
{
    long long first;
    long long step;
    long long count;
};

std::vector<Stretch> stretchesOf(const std::vector<FrameRange>& runs)
{
    std::vector<Stretch> stretches;
    long long at = runs.front().first;
    const auto advance = [&](long long step, long long times) {
        if (!stretches.empty() && stretches.back().step == step)
            stretches.back().count += times;
        else if (times > 0)
            stretches.push_back({at, step, times + 1});
        at += step * times;
    };
    for (const FrameRange& run : runs) {
        if (run.first != at)
            advance(run.first - at, 1);
        advance(run.step, frameCount(run) - 1);
    }
    return stretches;
}

std::string stretchText(const Stretch& stretch)
{
    if (stretch.count == 0)
        return {};
    const auto frame = [&stretch](long long index) {
        return std::to_string(stretch.first + index * stretch.step);
    };
    if (stretch.count == 1)
        return frame(0);
    std::string range = frame(0) + '-' + frame(stretch.count - 1);
    if (stretch.step > 1)
        range += 'x' + std::to_string(stretch.step);
    if (stretch.count > 3)
        return range;
    std::string single = frame(0) + ',' + frame(1);
    if (stretch.count == 3)
        single += ',' + frame(2);
    return single.size() < range.size() ? single : range;
}

/// The frames of the stretch that are its own, where the stretches before and behind may have the frames in
/// which they meet.
Stretch ownPart(Stretch stretch, bool firstIsTaken, bool lastIsLeft)
{
    if (firstIsTaken)
        stretch.first += stretch.step;
    stretch.count -= (firstIsTaken ? 1 : 0) + (lastIsLeft ? 1 : 0);
    return stretch;
}

/// Length first; of equally long texts the one with fewer items, then the one with fewer steps.
std::uint64_t itemCost(const std::string& text)
{
    if (text.empty())
        return 0;
    const auto items = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), ',') + 1);
    const std::uint64_t steps = text.find('x') != std::string::npos ? 1 : 0;
    return (text.size() + 1) << 32 | (2 * items + steps);
}

/// For each stretch, by whether it leaves its last frame to the next: whether its first frame is taken on the
/// shortest way there.
std::vector<std::array<bool, 2>> shortestWay(const std::vector<Stretch>& stretches)
{
    constexpr std::uint64_t unreachable = UINT64_MAX / 2;
    std::array<std::uint64_t, 2> cost{0, unreachable}; // up to here, by whether the next first frame is taken
    std::vector<std::array<bool, 2>> way;
    way.reserve(stretches.size());
    for (const Stretch& stretch : stretches) {
        std::array<std::uint64_t, 2> reached{unreachable, unreachable};
        std::array<bool, 2> choice{false, false};
        for (const bool left : {false, true}) {
            for (const bool taken : {true, false}) {
                const std::uint64_t total =
                    cost[taken ? 1 : 0] + itemCost(stretchText(ownPart(stretch, taken, left)));
                if (total < reached[left ? 0 : 1]) {
                    reached[left ? 0 : 1] = total;
                    choice[left ? 1 : 0] = taken;
                }
            }
        }
        cost = reached;
        way.push_back(choice);
    }
    return way;
}

} // namespace

std::optional<FrameRanges> FrameRanges::parse(std::string_view text)
{
    std::vector<FrameRange> ranges;
    if (trimmed(text).empty())
        return FrameRanges();
    for (const std::string_view item : split(text, ',')) {
        const auto range = parseItem(trimmed(item), 'x');
        if (!range)
            return std::nullopt;
        ranges.push_back(*range);
    }
    return unite(std::move(ranges));
}

std::optional<FrameRanges> FrameRanges::parseDisplayName(std::string_view name)
{
    std::string_view head = trimmed(name);
    std::string_view listed;
    if (!head.empty() && head.back() == ')') {
        const std::size_t bracket = head.rfind('(');
        if (bracket == std::string_view::npos)
            return refuse(name, "there is no \"(\" before the \")\"");
        listed = head.substr(bracket + 1, head.size() - bracket - 2);
        head = trimmed(head.substr(0, bracket));
    }
    const auto whole = parseItem(head.substr(head.rfind(' ') + 1), ',');
    if (!whole)
        return std::nullopt;
    if (trimmed(listed).empty())
        return unite({*whole});
    std::vector<FrameRange> ranges{{whole->first, whole->first, 1}, {whole->last, whole->last, 1}};
    for (const std::string_view item : split(listed, ' ')) {
        if (item.empty())
            continue;
        auto run = parseItem(item, ',');
        if (!run)
            return std::nullopt;
        run->step = whole->step;
        ranges.push_back(*run);
    }
    return unite(std::move(ranges));
}

// A frame in which two stretches meet can go with either, and what is shorter depends on the stretches
// behind.
std::string FrameRanges::text() const
{
    if (m_runs.empty())
        return {};
    const std::vector<Stretch> stretches = stretchesOf(m_runs);
    if (stretches.empty())
        return std::to_string(m_runs.front().first);
    const std::vector<std::array<bool, 2>> way = shortestWay(stretches);
    std::vector<std::string> items;
    bool left = false;
    for (std::size_t i = stretches.size(); i-- > 0;) {
        const bool taken = way[i][left ? 1 : 0];
        std::string item = stretchText(ownPart(stretches[i], taken, left));
        if (!item.empty())
            items.push_back(std::move(item));
        left = !taken;
    }
    std::reverse(items.begin(), items.end());
    return join(items, ",");
}

} // namespace Halvern::Base
