#pragma once

#include "pictures/program/OiioPart.h"

#include <OpenImageIO/imagebuf.h>

namespace Halvern::UI {

/// Reads @p part from the top and scales its display window to @p width by @p height pixels. Only some of its
/// rows are in memory at a time. The result has the channels of the part as floats, multiplied by alpha if
/// there is alpha. On failure it has an error.
OIIO::ImageBuf readScaled(OIIO::ImageInput& input, const OiioPart& part, int width, int height);

} // namespace Halvern::UI
