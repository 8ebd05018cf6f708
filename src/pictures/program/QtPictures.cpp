#include "pictures/program/QtPictures.h"

#include <QFile>
#include <QImageReader>
#include <algorithm>
#include <cmath>

namespace Halvern::UI {

using namespace PictureProtocol;

QSize fittingSize(const QSize& full, double pixelAspect, const Request& request)
{
    if (request.width == 0 || request.height == 0)
        return {0, 0};
    const double width = full.width() * std::min(pixelAspect, 1.0);
    const double height = full.height() / std::max(pixelAspect, 1.0);
    const double scale = std::min({1.0, request.width / width, request.height / height});
    const auto side = [scale](double of) { return std::max(1, int(std::lround(of * scale))); };
    return {side(width), side(height)};
}

void setPixels(Answer& answer, const QImage& image)
{
    const QImage converted = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    answer.size = converted.size();
    // Rows of four bytes a pixel have no padding.
    answer.pixels =
        QByteArray(reinterpret_cast<const char*>(converted.constBits()), int(converted.sizeInBytes()));
}

static void describe(Answer& answer, const QSize& full, const QPixelFormat& format)
{
    answer.fullSize = full;
    answer.dataWindow = QRect(QPoint(), full);
    answer.colourSpace = QStringLiteral("sRGB");
    answer.channels = QStringList{QStringLiteral("R"), QStringLiteral("G"), QStringLiteral("B")};
    if (format.colorModel() == QPixelFormat::Grayscale)
        answer.channels = QStringList{QStringLiteral("Y")};
    if (format.alphaUsage() == QPixelFormat::UsesAlpha)
        answer.channels << QStringLiteral("A");
    const int bits = std::max(int(format.redSize()), int(format.blackSize()));
    answer.depth = QStringLiteral("%1 bit").arg(bits > 0 ? bits : 8);
}

Answer readWithQt(QFile& file, const Request& request)
{
    Answer answer;
    QImageReader reader(&file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const bool isTurned = reader.transformation() & QImageIOHandler::TransformationRotate90;
    QSize full = reader.size();
    if (full.isValid()) {
        const QSize turned = isTurned ? full.transposed() : full;
        const QSize fitted = fittingSize(turned, 1, request);
        if (!fitted.isEmpty() && fitted != turned)
            reader.setScaledSize(isTurned ? fitted.transposed() : fitted);
        full = turned;
    }
    if (!reader.canRead()) {
        answer.reason = QStringLiteral("It is not a picture that can be read here.");
        return answer;
    }
    const QImage::Format format = reader.imageFormat();
    const bool wantsPixels = request.width > 0 && request.height > 0;
    if (!wantsPixels && full.isValid() && format != QImage::Format_Invalid) {
        describe(answer, full, QImage::toPixelFormat(format));
        return answer;
    }
    QImage image = reader.read();
    if (image.isNull()) {
        answer.reason = reader.errorString();
        return answer;
    }
    describe(answer, full.isValid() ? full : image.size(), image.pixelFormat());
    if (!wantsPixels)
        return answer;
    const QSize fitted = fittingSize(answer.fullSize, 1, request);
    if (image.size() != fitted)
        image = image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    setPixels(answer, image);
    return answer;
}

bool isReadBestWithQt(QFile& file)
{
    return qEnvironmentVariableIsEmpty("OCIO") && file.peek(3) == "\xff\xd8\xff" &&
           QImageReader::supportedImageFormats().contains("jpeg");
}

} // namespace Halvern::UI
