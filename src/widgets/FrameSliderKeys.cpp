// The rows of marks of a frame slider. If frames are denser than pixels, a paint goes from pixel to pixel.

#include "widgets/FrameSlider.h"
#include "widgets/Rounding.h"
#include "widgets/TickSpacing.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr int KeyRow = 17;
constexpr int CacheRow = 20;
constexpr int KeyHeight = 2;

using Set = std::set<int>;
using List = std::vector<int>;

// The first frame at or after @p frame that is not before @p from.
Set::const_iterator seek(const Set& frames, Set::const_iterator from, int frame)
{
    return from == frames.end() || *from >= frame ? from : frames.lower_bound(frame);
}

List::const_iterator seek(const List& frames, List::const_iterator from, int frame)
{
    // No frame is in the list twice, which limits the search.
    const qint64 most = from == frames.end() ? 0 : std::max<qint64>(qint64(frame) - *from, 0);
    return std::lower_bound(from, from + std::min<qint64>(most, frames.end() - from), frame);
}

} // namespace

void FrameSlider::setCacheFrames(const std::set<int>& frames)
{
    List list(frames.cbegin(), frames.cend());
    if (frames == cacheFrames && list == m_cacheList)
        return;
    cacheFrames = frames;
    m_cacheList = std::move(list);
    update();
}

void FrameSlider::SetKeys(const std::set<int>& keys)
{
    _keys = keys;
    s_keyList.assign(keys.cbegin(), keys.cend());
}

void FrameSlider::prepareKeys()
{
    m_setsAreAsSet = true;
}

void FrameSlider::drawKeys(QPainter& painter, const QColor& cacheColour, const QColor& keyColour)
{
    m_setsAreAsSet = false;
    prepareKeys();
    const auto draw = [&](int row, const QColor& colour, const Set& frames, const List& list) {
        if (m_setsAreAsSet && list.size() == frames.size())
            drawMarks(m_viewStart, m_viewEnd, row, painter, colour, list);
        else
            drawKeyframes(m_viewStart, m_viewEnd, row, painter, colour, frames);
    };
    draw(CacheRow, cacheColour, cacheFrames, m_cacheList);
    if (m_showGlobalKeys)
        draw(KeyRow, keyColour, _keys, s_keyList);
}

void FrameSlider::drawKeyframes(int from, int to, int row, QPainter& painter, const QColor& colour,
                                const std::set<int>& frames) const
{
    drawMarks(from, to, row, painter, colour, frames);
}

template <typename Frames>
void FrameSlider::drawMarks(int from, int to, int row, QPainter& painter, const QColor& colour,
                            const Frames& frames) const
{
    const auto mark = [&](int left, int right) {
        left = std::max(left, m_margin + EndMargin);
        right = std::min(right, width() - EndMargin - m_margin);
        if (left < right)
            painter.fillRect(left, row, right - left, KeyHeight, colour);
    };
    if (qint64(m_viewEnd) - m_viewStart < width() - 2 * EndMargin) {
        for (auto frame = seek(frames, frames.cbegin(), from); frame != frames.end() && *frame <= to;) {
            const int first = *frame;
            int last = first;
            while (++frame != frames.end() && *frame - 1 == last && *frame <= to)
                last = *frame;
            const int x = valueToMouse(first);
            const int halfFrame = std::max((valueToMouse(first + 1.0) - x) / 2, 1);
            mark(x - halfFrame, valueToMouse(last) + halfFrame);
        }
        return;
    }

    // The first frame at pixel x or to the right of it. With rounding errors it may be an earlier frame.
    const auto firstAt = [this](int x) {
        constexpr double Inexact = 1e-5;
        return Rounding::frame(static_cast<qint64>(std::ceil(mouseToValue(x) - Inexact)));
    };
    // A frame covers its pixel and the one before it. Marks that touch are drawn as one.
    const QRect band = painter.hasClipping() ? painter.clipBoundingRect().toAlignedRect() : rect();
    const int last = std::min(to, firstAt(band.right() + 3));
    auto frame = seek(frames, frames.cbegin(), std::max(from, firstAt(band.left() - 1)));
    int left = 0;
    int right = std::numeric_limits<int>::min() / 2;
    while (frame != frames.end() && *frame <= last) {
        const int x = valueToMouse(*frame);
        if (x > right + 2) {
            mark(left, right + 1);
            left = x - 1;
        }
        right = x;
        frame = seek(frames, std::next(frame), firstAt(x + 1));
    }
    mark(left, right + 1);
}
