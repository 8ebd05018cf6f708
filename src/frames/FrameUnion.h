#pragma once

#include "frames/FrameRange.h"

#include <optional>
#include <vector>

namespace Halvern::Base {

/// Number of frames of a run that does not run backwards; its `last` need not be one of them.
long long frameCount(const FrameRange& run);

/// The frames that are in any of @p ranges (whose steps are at least 1), as runs in ascending order that do
/// not overlap: at least two consecutive frames, at least three frames with a larger step, or one frame. The
/// runs depend on the set of frames alone. Nothing where they are too many, or too much work to find; time
/// and memory are bounded whatever the ranges are.
std::optional<std::vector<FrameRange>> uniteFrames(std::vector<FrameRange> ranges);

} // namespace Halvern::Base
