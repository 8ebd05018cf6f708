#pragma once

namespace Halvern::Base {

/// One run of frames: `first`, `first + step`, … `last`. A single frame has equal `first` and `last`.
struct FrameRange
{
    int first = 0;
    int last = 0;
    int step = 1;

    bool isSingle() const { return first == last; }
};

} // namespace Halvern::Base

namespace Halvern::UI {

using Base::FrameRange;

} // namespace Halvern::UI
