#pragma once

#include "pictures/PictureProtocol.h"

class QFile;
class QImage;

namespace Halvern::UI {

/// The size of a picture of @p full pixels, each @p pixelAspect times as wide as high, in the room of @p
/// request: in square pixels, not enlarged in any direction, at least one pixel. Empty if no pixels are
/// wanted.
QSize fittingSize(const QSize& full, double pixelAspect, const PictureProtocol::Request& request);

/// Gives @p answer the pixels of @p image.
void setPixels(PictureProtocol::Answer& answer, const QImage& image);

/// Reads what QImageReader reads.
PictureProtocol::Answer readWithQt(QFile& file, const PictureProtocol::Request& request);

/// Whether Qt reads this file faster than other readers: JPEG, of which it leaves out detail while it
/// decodes. Not if colours follow an OCIO configuration, which is not Qt's business.
bool isReadBestWithQt(QFile& file);

} // namespace Halvern::UI
