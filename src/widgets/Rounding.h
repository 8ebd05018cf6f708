#pragma once

#include <QtGlobal>
#include <algorithm>
#include <cmath>
#include <limits>

/// The roundings of the frame slider, limited so that long views and drags far outside don't overflow.
namespace Rounding {

/// Limited to 32 bits.
inline int frame(qint64 value)
{
    constexpr qint64 least = std::numeric_limits<int>::min();
    constexpr qint64 most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, least, most));
}

/// Rounds down. The result is limited so that sums of several results fit into 64 bits.
inline qint64 floor(double value)
{
    constexpr double limit = 1e15;
    return static_cast<qint64>(std::floor(std::clamp(value, -limit, limit)));
}

/// Rounds to the nearest number, halves up: -2.5 gives -2.
inline qint64 halfUp(double value)
{
    return floor(value + 0.5);
}

/// Rounds towards zero, limited to a billion to either side.
inline int pixel(double value)
{
    constexpr double limit = 1e9;
    return static_cast<int>(std::clamp(value, -limit, limit));
}

} // namespace Rounding
