#pragma once

#include "pictures/PictureProtocol.h"

namespace Halvern::UI {

/// Reads what QImageReader reads. The answer says why if it can't.
PictureProtocol::Answer readWithQt(const PictureProtocol::Request& request);

} // namespace Halvern::UI
