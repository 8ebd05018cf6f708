#pragma once

#include "base/FrameRange.h"

namespace Halvern::UI {

/// One run of frames that are present in a sequence with gaps. FileInfo makes ranges of step 1 only.
using Base::FrameRange;

} // namespace Halvern::UI
