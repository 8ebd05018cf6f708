#pragma once

#include <QtGlobal>

/// How densely the scale of a frame slider is ticked: all spacings in frames, all of them powers of ten times
/// 1, 5 or 10.
struct TickSpacing
{
    qint64 step = 1;
    qint64 minorStep = 1; ///< The distance of the frames that can have a tick.
    qint64 halfStep = 0;  ///< 0 where a step is one frame.
    qint64 labelStep = 5; ///< The distance of the frames that have a number.
    /// Pixels per step, rounded; per frame, where a step is one frame.
    qint64 pixels = 0;

    /// The spacing for a slider @p width pixels wide that shows @p viewStart to @p viewEnd. A view that ends
    /// before it starts is treated as one of a single frame.
    TickSpacing(int width, int viewStart, int viewEnd);
};

/// The multiple of @p step at or below @p frame, for negative frames too: -3 and 10 give -10.
qint64 floorToMultiple(qint64 frame, qint64 step);
