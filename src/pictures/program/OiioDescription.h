#pragma once

#include "pictures/PictureProtocol.h"

#include <OpenImageIO/imageio.h>

namespace Halvern::UI {

/// Fills in what @p spec says of a picture, all but its colour space and its pixels. Sides and the data
/// window are as they are stored, before a picture is turned.
void describe(PictureProtocol::Answer& answer, const OIIO::ImageSpec& spec);

/// A pixel's width divided by its height; 1 if the file says none that makes sense.
double pixelAspectOf(const OIIO::ImageSpec& spec);

} // namespace Halvern::UI
