#pragma once

#include "base/Export.h"

#include <QColor>

namespace Halvern::UI {

/// Unpacks a colour written as 0xRRGGBBxx.
///
/// The lowest byte is ignored and the colour is always opaque. A value below 256 is a grey level instead,
/// from 0 (black) to 255 (white). Example: 0xff8000ff gives red 255, green 128, blue 0; 128 gives mid grey.
HVCOREUI_EXPORT QColor rgb0toQColor(unsigned int v);

/// Packs @p c as 0xRRGGBBff; its alpha is dropped, and an invalid colour packs as black.
///
/// Black cannot be unpacked again: it packs to 0x000000ff, which rgb0toQColor() reads as the grey level 255.
HVCOREUI_EXPORT unsigned int QColorToRgb0(const QColor& c);

} // namespace Halvern::UI
