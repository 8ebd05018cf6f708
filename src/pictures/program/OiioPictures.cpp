#include "pictures/program/OiioPictures.h"

#include "pictures/program/OiioColour.h"
#include "pictures/program/OiioDescription.h"
#include "pictures/program/OiioScaling.h"
#include "pictures/program/QtPictures.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imagebufalgo.h>
#include <algorithm>

namespace Halvern::UI {

using namespace OIIO;
using namespace PictureProtocol;

namespace {

// The largest side that a window of a file may have, and how far from 0 it may stand.
constexpr int LargestWindow = 1 << 20;

QString firstLine(const std::string& error)
{
    const QString line = QString::fromUtf8(error.c_str()).section(QLatin1Char('\n'), 0, 0).trimmed();
    return line.isEmpty() ? QStringLiteral("The file is damaged.") : line;
}

bool isReadable(const ImageSpec& spec)
{
    const auto isNear = [](int place) { return place >= -LargestWindow && place <= LargestWindow; };
    const auto isSide = [](int side) { return side > 0 && side <= LargestWindow; };
    return isSide(spec.width) && isSide(spec.height) && isSide(spec.full_width) && isSide(spec.full_height) &&
           isNear(spec.x) && isNear(spec.y) && isNear(spec.full_x) && isNear(spec.full_y) &&
           spec.nchannels > 0 && spec.tile_depth <= 1;
}

// How a file is to be turned before it is shown, from 1 to 8 as Exif counts. Other values mean nothing.
int orientationOf(const ImageSpec& spec)
{
    const int orientation = spec.get_int_attribute("Orientation", 1);
    return orientation >= 1 && orientation <= 8 ? orientation : 1;
}

// OpenImageIO takes a question mark in a name for the beginning of options. A reader that is known by the
// extension takes the name as it is.
std::unique_ptr<ImageInput> openInput(const std::string& path)
{
    ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    if (path.find('?') == std::string::npos)
        return ImageInput::open(path, &wishes);
    auto input = ImageInput::create(Filesystem::extension(path, false));
    ImageSpec spec;
    return input && input->open(path, spec, wishes) ? std::move(input) : nullptr;
}

// A byte for each channel, and an alpha that is never below a colour.
void copyRow(const float* rgba, uchar* to, int count)
{
    constexpr float Rounding = 0.5F;
    for (int i = 0; i < count; ++i, rgba += 4, to += 4) {
        std::transform(rgba, rgba + 4, to,
                       [](float value) { return uchar(std::clamp(value, 0.0F, 1.0F) * 255 + Rounding); });
        to[3] = *std::max_element(to, to + 4);
    }
}

// Turns the pixels.
void turn(Answer& answer, int orientation)
{
    ImageBuf picture(ImageSpec(answer.size.width(), answer.size.height(), 4, TypeDesc::UINT8),
                     answer.pixels.data());
    picture.specmod().attribute("Orientation", orientation);
    const ImageBuf turned = ImageBufAlgo::reorient(picture);
    answer.size = {turned.spec().width, turned.spec().height};
    QByteArray pixels(answer.pixels.size(), Qt::Uninitialized);
    turned.get_pixels(turned.roi(), TypeDesc::UINT8, pixels.data());
    answer.pixels = pixels;
}

// Adds the pixels to a description, or the reason why there are none.
void readPixels(Answer& answer, ImageInput& input, OiioPart part, const Request& request,
                const OiioColour& colour)
{
    const int orientation = orientationOf(part.spec);
    Request room = request;
    if (orientation > 4) // lying on its side
        std::swap(room.width, room.height);
    const QSize size = fittingSize(answer.fullSize, answer.pixelAspect, room);
    const int width = size.width();
    chooseLevel(input, part, width, size.height());
    QByteArray pixels(width * size.height() * 4, Qt::Uninitialized);
    auto* bytes = reinterpret_cast<uchar*>(pixels.data());
    const std::string error = readScaled(input, part, width, size.height(), [&](int y, float* rgba) {
        applyColour(rgba, width, colour, part.hasAlpha());
        copyRow(rgba, bytes + std::ptrdiff_t(y) * width * 4, width);
    });
    if (!error.empty()) {
        answer.reason = firstLine(error);
        return;
    }
    answer.size = size;
    answer.pixels = pixels;
    if (orientation > 1)
        turn(answer, orientation);
}

} // namespace

std::optional<Answer> readWithOiio(const Request& request)
{
    const std::string path = request.path.toStdString();
    const auto input = openInput(path);
    Answer answer;
    if (!input) {
        geterror();
        return {};
    }
    const OiioPart part = findPart(*input);
    if (!isReadable(part.spec)) {
        answer.reason = QStringLiteral("Its size is damaged, or larger than can be shown.");
        return answer;
    }
    describe(answer, part.spec);
    const OiioColour colour = findColour(path, part.spec);
    answer.colourSpace = QString::fromStdString(colour.space);
    if (part.spec.deep)
        answer.reason = QStringLiteral("Deep pictures are not shown.");
    else if (!colour.error.empty())
        answer.reason = firstLine(colour.error);
    else if (request.width > 0 && request.height > 0)
        readPixels(answer, *input, part, request, colour);
    if (orientationOf(part.spec) > 4) {
        answer.fullSize.transpose();
        answer.pixelAspect = 1 / answer.pixelAspect;
    }
    return answer;
}

} // namespace Halvern::UI
