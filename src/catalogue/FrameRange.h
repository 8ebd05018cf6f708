#pragma once

namespace Halvern::UI {

/// One run of frames that are present in a sequence with gaps: `first`, `first + step`, … `last`.
/// A single frame is a range whose `first` equals its `last`. FileInfo makes ranges of step 1 only.
struct FrameRange
{
    int first = 0;
    int last = 0;
    int step = 1;
};

} // namespace Halvern::UI
