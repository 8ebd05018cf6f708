#pragma once

#include "pictures/program/OiioPart.h"

#include <functional>
#include <string>

namespace Halvern::UI {

/// Takes the row @p y of a scaled picture: four floats for each pixel, red, green, blue and alpha, multiplied
/// by alpha if there is alpha, and with an alpha of 1 otherwise. It may change them. Called once for every
/// row, in no order, from several threads at a time.
using TakeRow = std::function<void(int y, float* rgba)>;

/// Reads @p part from the top and scales its display window to @p width by @p height pixels, which are not
/// more than it has. Each pixel is the mean of the area that it covers; where the file has no pixels it is
/// black and transparent. Only some rows of the file are in memory at a time. Returns why that failed; empty
/// if it did not.
std::string readScaled(OIIO::ImageInput& input, const OiioPart& part, int width, int height,
                       const TakeRow& take);

} // namespace Halvern::UI
