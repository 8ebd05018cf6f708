#include "widgets/TickSpacing.h"

#include <algorithm>

namespace {

constexpr qint64 MostFramesOfOneStep = 100;
constexpr qint64 NarrowestStep = 9; // pixels, exceeded by a step that is wide enough
constexpr qint64 WideStep = 21;     // pixels, from which on every fifth step has a number
constexpr int BesideTick = 1;       // pixels between a tick and the number beside it

} // namespace

TickSpacing::TickSpacing(int width, int viewStart, int viewEnd)
{
    const qint64 frames = qint64(viewEnd) + 1 - viewStart;
    const qint64 scale = width - 2 * EndMargin;
    pixels = viewEnd <= viewStart ? scale : (scale + frames / 2) / frames;
    if (frames > MostFramesOfOneStep && width / frames <= NarrowestStep) {
        do {
            step *= 10;
            pixels = (step * width + frames / 2) / frames;
        } while (step * MostFramesOfOneStep < frames && step * width / frames <= NarrowestStep);
        minorStep = std::max<qint64>(step / 10, 1);
    }
    halfStep = step / 2;
    labelStep = (pixels < WideStep ? 10 : 5) * step;
}

qint64 floorToMultiple(qint64 frame, qint64 step)
{
    const qint64 remainder = frame % step;
    return frame - remainder - (remainder < 0 ? step : 0);
}

QVector<ScaleNumber> scaleNumbers(const TickSpacing& spacing, int width, int viewStart, int viewEnd,
                                  int startX, int endX, const std::function<int(qint64)>& pixelOf,
                                  const std::function<int(qint64)>& widthOf)
{
    QVector<ScaleNumber> numbers;
    const auto centred = [&](qint64 frame, int x) {
        const int wide = widthOf(frame);
        return ScaleNumber{frame, x - wide / 2, x - wide / 2 + wide};
    };
    ScaleNumber last = centred(viewEnd, endX);
    if (last.right > width)
        last = {viewEnd, endX - BesideTick - (last.right - last.left), endX - BesideTick};
    if (viewStart <= viewEnd) {
        ScaleNumber first = centred(viewStart, startX);
        if (first.left < 0)
            first = {viewStart, startX + 1 + BesideTick,
                     startX + 1 + BesideTick + (first.right - first.left)};
        numbers.append(first);
        for (qint64 f = floorToMultiple(viewStart, spacing.labelStep) + spacing.labelStep; f < viewEnd;
             f += spacing.labelStep) {
            const int x = pixelOf(f);
            const ScaleNumber number = centred(f, x);
            const int wide = number.right - number.left;
            const bool crowdsEnds = x <= wide + EndMargin || x >= width - EndMargin - 2 * wide;
            if (!crowdsEnds && number.left > numbers.last().right && number.right < last.left)
                numbers.append(number);
        }
    }
    if (numbers.isEmpty() || last.left > numbers.last().right)
        numbers.append(last);
    return numbers;
}
