#include "pictures/program/OiioPictures.h"

#include "pictures/program/OiioColour.h"
#include "pictures/program/OiioDescription.h"
#include "pictures/program/OiioScaling.h"
#include "pictures/program/QtPictures.h"

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

// The four channels of a display, of those that were read.
ImageBuf displayChannels(const ImageBuf& scaled, const OiioPart& part)
{
    const float opaque[] = {0, 0, 0, 1};
    ImageBuf picture = ImageBufAlgo::channels(scaled, 4, part.channels, opaque);
    picture.specmod().alpha_channel = part.hasAlpha() ? 3 : -1;
    return picture;
}

// Bytes that are multiplied by alpha and never above it.
void setPixels(Answer& answer, const ImageBuf& picture)
{
    answer.size = {picture.spec().width, picture.spec().height};
    answer.pixels.resize(answer.size.width() * answer.size.height() * 4);
    picture.get_pixels(picture.roi(), TypeDesc::UINT8, answer.pixels.data());
    auto* bytes = reinterpret_cast<uchar*>(answer.pixels.data());
    for (auto alpha = answer.pixels.size() - 1; alpha > 0; alpha -= 4)
        bytes[alpha] = std::max({bytes[alpha - 3], bytes[alpha - 2], bytes[alpha - 1], bytes[alpha]});
}

// Adds the pixels to a description, or the reason why there are none.
void readPixels(Answer& answer, ImageInput& input, OiioPart part, const Request& request,
                const OiioColour& colour)
{
    const int orientation = part.spec.get_int_attribute("Orientation", 1);
    Request room = request;
    if (orientation > 4) // lying on its side
        std::swap(room.width, room.height);
    const QSize size = fittingSize(answer.fullSize, answer.pixelAspect, room);
    chooseLevel(input, part, size.width(), size.height());
    const ImageBuf scaled = readScaled(input, part, size.width(), size.height());
    if (scaled.has_error()) {
        answer.reason = firstLine(scaled.geterror());
        return;
    }
    ImageBuf picture = displayChannels(scaled, part);
    if (!applyColour(picture, colour, part.hasAlpha())) {
        answer.reason = firstLine(picture.geterror());
        return;
    }
    if (orientation > 1) {
        picture.specmod().attribute("Orientation", orientation);
        picture = ImageBufAlgo::reorient(picture);
    }
    setPixels(answer, picture);
}

} // namespace

std::optional<Answer> readWithOiio(const Request& request)
{
    const std::string path = request.path.toStdString();
    ImageSpec wishes;
    wishes.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = ImageInput::open(path, &wishes);
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
    if (!colour.error.empty())
        answer.reason = firstLine(colour.error);
    else if (request.width > 0 && request.height > 0)
        readPixels(answer, *input, part, request, colour);
    if (part.spec.get_int_attribute("Orientation", 1) > 4) {
        answer.fullSize.transpose();
        answer.pixelAspect = 1 / answer.pixelAspect;
    }
    return answer;
}

} // namespace Halvern::UI
