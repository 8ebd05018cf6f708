#include "widgets/PackedColour.h"

namespace Halvern::UI {

QColor rgb0toQColor(unsigned int v)
{
    if (v < 256) {
        const int grey = static_cast<int>(v);
        return QColor(grey, grey, grey);
    }
    return QColor(static_cast<int>(v >> 24), static_cast<int>(v >> 16 & 0xff),
                  static_cast<int>(v >> 8 & 0xff));
}

unsigned int QColorToRgb0(const QColor& c)
{
    const auto red = static_cast<unsigned int>(c.red());
    const auto green = static_cast<unsigned int>(c.green());
    const auto blue = static_cast<unsigned int>(c.blue());
    return red << 24 | green << 16 | blue << 8 | 0xff;
}

} // namespace Halvern::UI
