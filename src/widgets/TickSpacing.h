#pragma once

#include <QVector>
#include <QtGlobal>
#include <functional>

/// The margins to the left and to the right of the scale of a frame slider, in pixels.
constexpr int EndMargin = 10;

/// The density of the ticks of a frame slider. Spacings are in frames, each a power of ten times 1, 5 or 10.
struct TickSpacing
{
    qint64 step = 1;
    qint64 minorStep = 1; ///< Frames between ticks of the smallest kind.
    qint64 halfStep = 0;  ///< 0 if a step is one frame.
    qint64 labelStep = 5; ///< Frames between numbers.
    /// Pixels per step, rounded.
    qint64 pixels = 0;

    /// The upper end of the tick of @p frame, in pixels from the top of the slider. All ticks end at 16, and
    /// 16 means no tick.
    int tickTop(qint64 frame) const;

    /// The spacing for a slider @p width pixels wide that shows @p viewStart to @p viewEnd. A view that ends
    /// before it starts is treated as one of a single frame.
    TickSpacing(int width, int viewStart, int viewEnd);
};

/// The multiple of @p step at or below @p frame, also for negative frames: -3 and 10 give -10.
qint64 floorToMultiple(qint64 frame, qint64 step);

/// A number below the scale.
struct ScaleNumber
{
    qint64 frame = 0;
    int left = 0;  ///< Its first pixel.
    int right = 0; ///< The pixel after its last.
};

/// The numbers of a scale from left to right: first and last frame in view, and those at the label spacing.
///
/// A number is centred on its tick. A number that would touch its neighbour is left out, also the last one.
/// If the number of an end is too wide for the margin, it stands inside, beside its tick. It is left out if
/// the tick of the other end would cross it. A view that ends before it starts has only its last number.
///
/// @p width is the width of the slider in pixels, @p endX the pixel of the last tick. @p pixelOf returns the
/// pixel of a frame, @p widthOf the width of its number in pixels.
QVector<ScaleNumber> scaleNumbers(const TickSpacing& spacing, int width, int viewStart, int viewEnd, int endX,
                                  const std::function<int(qint64)>& pixelOf,
                                  const std::function<int(qint64)>& widthOf);
