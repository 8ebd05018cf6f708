#include "widgets/TickSpacing.h"

#include <algorithm>

namespace {

constexpr qint64 EndMargins = 20;
constexpr qint64 MostFramesOfOneStep = 100;
constexpr qint64 NarrowestStep = 9; // pixels, exceeded by a step that is wide enough
constexpr qint64 WideStep = 21;     // pixels, from which on every fifth step has a number

} // namespace

TickSpacing::TickSpacing(int width, int viewStart, int viewEnd)
{
    const qint64 frames = qint64(viewEnd) + 1 - viewStart;
    const qint64 scale = width - EndMargins;
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
