#pragma once

#include "pictures/PictureProtocol.h"

namespace Halvern::UI {

/// Reads what OpenImageIO reads. Nothing if that is none of its formats.
std::optional<PictureProtocol::Answer> readWithOiio(const PictureProtocol::Request& request);

} // namespace Halvern::UI
