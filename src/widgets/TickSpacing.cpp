#include "widgets/TickSpacing.h"

#include <algorithm>

namespace {

constexpr qint64 MostFramesOfOneStep = 100;
constexpr qint64 NarrowestStep = 9; // pixels; steps become wider than this
constexpr qint64 WideStep = 21;     // pixels; from this width on every fifth step has a number
constexpr qint64 WideHalfStep = 11; // pixels; from this width on half steps have a tick
constexpr qint64 WideMinorStep = 31;
constexpr int BesideTick = 1; // pixels between a tick and the number beside it

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

int TickSpacing::tickTop(qint64 frame) const
{
    constexpr int NoTick = 16;
    if (frame % labelStep == 0)
        return 10;
    if (frame % step == 0)
        return 14;
    if (halfStep > 0 && frame % halfStep == 0)
        return pixels >= WideHalfStep ? 13 : NoTick;
    return pixels >= WideMinorStep ? 12 : NoTick;
}

qint64 floorToMultiple(qint64 frame, qint64 step)
{
    const qint64 remainder = frame % step;
    return frame - remainder - (remainder < 0 ? step : 0);
}

QVector<ScaleNumber> scaleNumbers(const TickSpacing& spacing, int width, int viewStart, int viewEnd, int endX,
                                  const std::function<int(qint64)>& pixelOf,
                                  const std::function<int(qint64)>& widthOf)
{
    QVector<ScaleNumber> numbers;
    const auto at = [&](qint64 frame, int left) { return ScaleNumber{frame, left, left + widthOf(frame)}; };
    const auto centred = [&](qint64 frame, int x) { return at(frame, x - widthOf(frame) / 2); };
    ScaleNumber last = centred(viewEnd, endX);
    if (last.right > width)
        last = at(viewEnd, endX - BesideTick - widthOf(viewEnd));
    const int startX = pixelOf(viewStart);
    int occupied = startX; // the right end of what is drawn so far
    if (viewStart <= viewEnd) {
        ScaleNumber first = centred(viewStart, startX);
        if (first.left < 0)
            first = at(viewStart, startX + 1 + BesideTick);
        if (first.right < endX) {
            numbers.append(first);
            occupied = first.right;
        }
        for (qint64 f = floorToMultiple(viewStart, spacing.labelStep) + spacing.labelStep; f < viewEnd;
             f += spacing.labelStep) {
            const int x = pixelOf(f);
            const ScaleNumber number = centred(f, x);
            const int wide = number.right - number.left;
            const bool crowdsEnds = x <= wide + EndMargin || x >= width - EndMargin - 2 * wide;
            if (!crowdsEnds && number.left > occupied && number.right < last.left) {
                numbers.append(number);
                occupied = number.right;
            }
        }
    }
    if (last.left > occupied)
        numbers.append(last);
    return numbers;
}
