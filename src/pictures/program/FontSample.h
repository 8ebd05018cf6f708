#pragma once

#include "pictures/PictureProtocol.h"

class QFile;

namespace Halvern::UI {

/// Whether the file begins as a TrueType or OpenType font does.
bool isFont(QFile& file);

/// A line of sample text in the font, light grey on a transparent background, as wide as the request allows.
PictureProtocol::Answer readFont(QFile& file, const PictureProtocol::Request& request);

} // namespace Halvern::UI
