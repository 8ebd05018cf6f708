// Writes pictures to try the browser and its preview on: colour bars with the number of the frame.
//
// sample-pictures WIDTHxHEIGHT PATTERN FIRST LAST, for example 960x540 "shot.%04d.exr" 1 100. The extension
// decides: exr (half floats, zip), dpx (10 bit, Cineon log) and tif need OpenImageIO; png, which is
// translucent at the bottom, and jpg do not. Exit status: 0, or 1 if a picture was not written.

#include <QImage>
#include <QPainter>
#include <array>
#include <cmath>
#include <cstdio>
#ifdef COREUI_WITH_OPENIMAGEIO
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#endif

namespace {

// The seven segments of a digit from 0 to 9: top, top left, top right, middle, bottom left, bottom right,
// bottom.
constexpr std::array<const char*, 10> Segments{"1110111", "0010010", "1011101", "1011011", "0111010",
                                               "1101011", "1101111", "1010010", "1111111", "1111011"};

void drawDigit(QPainter& painter, int digit, const QRect& in)
{
    const int thick = std::max(1, in.width() / 5);
    const int half = in.height() / 2;
    const std::array<QRect, 7> places{QRect(in.x(), in.y(), in.width(), thick),
                                      QRect(in.x(), in.y(), thick, half),
                                      QRect(in.right() + 1 - thick, in.y(), thick, half),
                                      QRect(in.x(), in.y() + half - thick / 2, in.width(), thick),
                                      QRect(in.x(), in.y() + half, thick, in.height() - half),
                                      QRect(in.right() + 1 - thick, in.y() + half, thick, in.height() - half),
                                      QRect(in.x(), in.bottom() + 1 - thick, in.width(), thick)};
    for (size_t i = 0; i < places.size(); ++i) {
        if (Segments[size_t(digit)][i] == '1')
            painter.fillRect(places[i], Qt::white);
    }
}

QImage colourBars(const QSize& size, int frame)
{
    const std::array<QColor, 7> bars{QColor(192, 192, 192), QColor(192, 192, 0), QColor(0, 192, 192),
                                     QColor(0, 192, 0),     QColor(192, 0, 192), QColor(192, 0, 0),
                                     QColor(0, 0, 192)};
    QImage image(size, QImage::Format_RGBA8888);
    QPainter painter(&image);
    const int width = size.width();
    const int height = size.height();
    const int barsEnd = height * 3 / 4;
    for (int i = 0; i < 7; ++i)
        painter.fillRect(QRect(width * i / 7, 0, width / 7 + 1, barsEnd), bars[size_t(i)]);
    for (int x = 0; x < width; ++x) {
        const int grey = 255 * x / std::max(1, width - 1);
        painter.fillRect(x, barsEnd, 1, height - barsEnd, QColor(grey, grey, grey));
    }
    const QByteArray number = QByteArray::number(frame).rightJustified(4, '0');
    const int digitHeight = height / 4;
    const int digitWidth = digitHeight / 2;
    const int step = digitWidth * 3 / 2;
    const auto digits = static_cast<int>(number.size());
    QRect digit((width - step * digits) / 2, (barsEnd - digitHeight) / 2, digitWidth, digitHeight);
    painter.fillRect(digit.adjusted(-digitWidth / 2, -digitWidth / 2, step * (digits - 1) + digitWidth / 2,
                                    digitWidth / 2),
                     Qt::black);
    for (const char of : number) {
        drawDigit(painter, of - '0', digit);
        digit.translate(step, 0);
    }
    return image;
}

bool writeWithQt(QImage image, const QString& name)
{
    if (name.endsWith(QLatin1String(".png"))) {
        for (int y = image.height() * 7 / 8; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                image.scanLine(y)[x * 4 + 3] = 96;
        }
        return image.save(name);
    }
    return image.convertToFormat(QImage::Format_RGB888).save(name, nullptr, 90);
}

#ifdef COREUI_WITH_OPENIMAGEIO
// The code values of film, as fractions of 1023, that show the light as it is.
void toCineon(OIIO::ImageBuf& picture)
{
    const double darkest = std::pow(10, (95 - 685) * 0.002 / 0.6);
    for (OIIO::ImageBuf::Iterator<float> pixel(picture); !pixel.done(); ++pixel) {
        for (int c = 0; c < 3; ++c)
            pixel[c] = float((std::log10(pixel[c] * (1 - darkest) + darkest) * 0.6 / 0.002 + 685) / 1023);
    }
}

bool writeWithOiio(const QImage& image, const QString& name, int frame)
{
    using namespace OIIO;
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888);
    ImageBuf bytes(ImageSpec(image.width(), image.height(), 4, TypeDesc::UINT8),
                   const_cast<uchar*>(pixels.constBits()));
    const bool isExr = name.endsWith(QLatin1String(".exr"));
    const bool isDpx = name.endsWith(QLatin1String(".dpx"));
    ImageBuf picture = ImageBufAlgo::channels(bytes.copy(TypeDesc::FLOAT), isExr ? 4 : 3, {});
    if (isExr || isDpx)
        picture = ImageBufAlgo::colorconvert(picture, "sRGB", "linear");
    TypeDesc type = TypeDesc::UINT8;
    if (isExr) {
        // The first bar is brighter than white.
        ImageBufAlgo::mul(picture, picture, {4.0F, 4.0F, 4.0F, 1.0F},
                          ROI(0, image.width() / 7, 0, image.height() / 2, 0, 1, 0, 4));
        type = TypeDesc::HALF;
        picture.specmod().attribute("compression", "zip");
        const std::array<int, 2> rate{24, 1};
        picture.specmod().attribute("FramesPerSecond", TypeRational, rate.data());
        // Two decimal digits in each byte: hours, minutes, seconds, frames.
        const auto digits = [](int of) { return unsigned(of / 10 % 10 << 4 | of % 10); };
        const std::array<unsigned, 2> code{digits(1) << 24 | digits(frame / 24 / 60) << 16 |
                                               digits(frame / 24 % 60) << 8 | digits(frame % 24),
                                           0};
        picture.specmod().attribute("smpte:TimeCode", TypeTimeCode, code.data());
    } else if (isDpx) {
        toCineon(picture);
        type = TypeDesc::UINT16;
        picture.specmod().attribute("oiio:BitsPerSample", 10);
        picture.specmod().attribute("oiio:ColorSpace", "KodakLog");
    }
    return picture.write(name.toStdString(), type);
}
#endif

bool write(const QImage& image, const QString& name, int frame)
{
    if (name.endsWith(QLatin1String(".png")) || name.endsWith(QLatin1String(".jpg")))
        return writeWithQt(image, name);
#ifdef COREUI_WITH_OPENIMAGEIO
    return writeWithOiio(image, name, frame);
#else
    Q_UNUSED(frame)
    return false;
#endif
}

} // namespace

int main(int argc, char** argv)
{
    int width = 0;
    int height = 0;
    if (argc != 5 || std::sscanf(argv[1], "%dx%d", &width, &height) != 2 || width < 8 || height < 8) {
        std::fputs("usage: sample-pictures WIDTHxHEIGHT PATTERN FIRST LAST\n", stderr);
        return 1;
    }
    for (int frame = QByteArray(argv[3]).toInt(); frame <= QByteArray(argv[4]).toInt(); ++frame) {
        const QString name = QString::asprintf(argv[2], frame);
        if (!write(colourBars(QSize(width, height), frame), name, frame)) {
            std::fprintf(stderr, "%s was not written.\n", qPrintable(name));
            return 1;
        }
    }
    return 0;
}
