#pragma once

#include "pictures/PictureProtocol.h"

namespace Halvern::UI {

/// Reads a picture with the reader that its file needs. Only plain files are read. The answer has a reason if
/// no reader can.
PictureProtocol::Answer readPicture(const PictureProtocol::Request& request);

} // namespace Halvern::UI
