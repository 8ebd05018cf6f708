#pragma once

#include <QtGlobal>
#include <algorithm>
#include <cmath>
#include <limits>

/// The roundings of the frame slider. Results that do not fit are cut to the range instead of wrapping round,
/// so that views of the whole 32-bit range of frames and drags far outside the widget are safe.
namespace Rounding {

/// Frames beyond 32 bits become the first or the last that there is.
inline int frame(qint64 value)
{
    constexpr qint64 least = std::numeric_limits<int>::min();
    constexpr qint64 most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, least, most));
}

/// The next whole number below, in a range that leaves sums of several of them safe in 64 bits.
inline qint64 floor(double value)
{
    constexpr double limit = 1e15;
    return static_cast<qint64>(std::floor(std::clamp(value, -limit, limit)));
}

/// Halves go up, for negative values too: -2.5 gives -2.
inline qint64 halfUp(double value)
{
    return floor(value + 0.5);
}

/// The whole number next to zero, at most a billion either side.
inline int pixel(double value)
{
    constexpr double limit = 1e9;
    return static_cast<int>(std::clamp(value, -limit, limit));
}

} // namespace Rounding
