#include "pictures/program/QtPictures.h"

#include <QFile>
#include <QImageReader>

namespace Halvern::UI {

using namespace PictureProtocol;

Answer readWithQt(const Request& request)
{
    Answer answer;
    QImageReader reader(QFile::decodeName(request.path));
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    const QSize room(int(request.width), int(request.height));
    if (!room.isEmpty() && full.isValid() && (full.width() > room.width() || full.height() > room.height()))
        reader.setScaledSize(full.scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    QImage image = reader.read();
    if (image.isNull()) {
        answer.reason = reader.errorString();
        return answer;
    }
    answer.fullSize = full.isValid() ? full : image.size();
    answer.dataWindow = QRect(QPoint(), answer.fullSize);
    if (room.isEmpty())
        return answer;
    image = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    answer.size = image.size();
    const int row = image.width() * 4;
    for (int y = 0; y < image.height(); ++y)
        answer.pixels.append(reinterpret_cast<const char*>(image.constScanLine(y)), row);
    return answer;
}

} // namespace Halvern::UI
