#pragma once

#include <QVector>
#include <QtGlobal>
#include <functional>

/// The pixels to the left and to the right of the scale of a frame slider.
constexpr int EndMargin = 10;

/// How densely the scale of a frame slider is ticked. Spacings are in frames, each a power of ten times 1, 5
/// or 10.
struct TickSpacing
{
    qint64 step = 1;
    qint64 minorStep = 1; ///< The distance of the frames that can have a tick.
    qint64 halfStep = 0;  ///< 0 if a step is one frame.
    qint64 labelStep = 5; ///< The distance of the frames that have a number.
    /// Pixels per step, rounded.
    qint64 pixels = 0;

    /// The upper end of the tick of @p frame, in pixels from the top of the slider. 16, where all ticks end,
    /// stands for no tick.
    int tickTop(qint64 frame) const;

    /// The spacing for a slider @p width pixels wide that shows @p viewStart to @p viewEnd. A view that ends
    /// before it starts is treated as one of a single frame.
    TickSpacing(int width, int viewStart, int viewEnd);
};

/// The multiple of @p step at or below @p frame, for negative frames too: -3 and 10 give -10.
qint64 floorToMultiple(qint64 frame, qint64 step);

/// A number below the scale.
struct ScaleNumber
{
    qint64 frame = 0;
    int left = 0;  ///< Its first pixel.
    int right = 0; ///< The pixel after its last.
};

/// The numbers of a scale, from left to right: those of the first and the last frame in view, and between
/// them those of the frames at the label spacing.
///
/// A number is centred on its tick. One that would touch its neighbour is left out, the last one too. The
/// numbers of the two ends stand inside, beside their tick, if they are too wide for the margins, and are
/// left out if the tick of the other end would cross them.
/// @p pixelOf gives the pixel of a frame, @p widthOf the width of its number in pixels; @p width is that of
/// the slider, and @p endX the pixel of the tick at the end. A view that ends before it starts has its last
/// number only.
QVector<ScaleNumber> scaleNumbers(const TickSpacing& spacing, int width, int viewStart, int viewEnd, int endX,
                                  const std::function<int(qint64)>& pixelOf,
                                  const std::function<int(qint64)>& widthOf);
