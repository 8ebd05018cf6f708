// The two rows of marks of a frame slider. A paint follows pixels where frames are denser than these, so that
// neither a long view nor a large set makes it slow.

#include "widgets/FrameSlider.h"
#include "widgets/Rounding.h"
#include "widgets/TickSpacing.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int KeyHeight = 2;
constexpr int NearSteps = 8; // in a set take about as long as a search of it

} // namespace

void FrameSlider::prepareKeys() {}

void FrameSlider::drawKeyframes(int from, int to, int row, QPainter& painter, const QColor& colour,
                                const std::set<int>& frames) const
{
    const int scaleStart = m_margin + EndMargin;
    const int scaleEnd = width() - EndMargin - m_margin;
    const auto mark = [&](int left, int right) {
        left = std::max(left, scaleStart);
        right = std::min(right, scaleEnd);
        if (left < right)
            painter.fillRect(left, row, right - left, KeyHeight, colour);
    };
    const bool dense = qint64(m_viewEnd) - m_viewStart >= width() - 2 * EndMargin;
    auto frame = frames.lower_bound(from);

    while (!dense && frame != frames.end() && *frame <= to) {
        const int first = *frame;
        int last = first;
        while (++frame != frames.end() && *frame - 1 == last && *frame <= to)
            last = *frame;
        const int x = valueToMouse(first);
        const int halfFrame = std::max((valueToMouse(first + 1.0) - x) / 2, 1);
        mark(x - halfFrame, valueToMouse(last) + halfFrame);
    }
    if (!dense)
        return;

    // A frame covers its pixel and the one before it: marks that touch each other are drawn as one.
    const QRect band = painter.hasClipping() ? painter.clipBoundingRect().toAlignedRect() : rect();
    const qint64 last = std::min(to, frameUnderMouse(band.right() + 3));
    frame = frames.lower_bound(std::max(from, frameUnderMouse(band.left() - 2)));
    bool crowded = false; // a pixel had more than NearSteps frames
    int left = 0;
    int right = std::numeric_limits<int>::min() / 2;
    while (frame != frames.end() && *frame <= last) {
        const int x = valueToMouse(*frame);
        if (x > right + 2) {
            mark(left, right + 1);
            left = x - 1;
        }
        right = x;
        if (crowded) {
            // If the pixel after the next has a frame, there is no gap, and the next one need not be
            // searched.
            const auto found = frames.lower_bound(Rounding::frame(firstFrameAfter(x + 1)));
            if (found != frames.end() && valueToMouse(*found) == x + 2) {
                frame = found;
                continue;
            }
        }
        const qint64 next = firstFrameAfter(x);
        if (next > last)
            break;
        for (int steps = 0; steps < NearSteps && frame != frames.end() && *frame < next; ++steps)
            ++frame;
        if (frame != frames.end() && *frame < next) {
            crowded = true;
            frame = frames.lower_bound(static_cast<int>(next));
        }
    }
    mark(left, right + 1);
}

// The first frame whose pixel is to the right of @p x.
qint64 FrameSlider::firstFrameAfter(int x) const
{
    auto frame = static_cast<qint64>(std::ceil(mouseToValue(x + 1)));
    while (valueToMouse(static_cast<double>(frame)) <= x)
        ++frame;
    while (valueToMouse(static_cast<double>(frame - 1)) > x)
        --frame;
    return frame;
}
