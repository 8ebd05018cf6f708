#include "pictures/program/OiioDescription.h"

#include <cmath>

namespace Halvern::UI {

using namespace OIIO;

namespace {

QString text(const std::string& of)
{
    return QString::fromUtf8(of.data(), int(of.size()));
}

QString depthOf(const ImageSpec& spec)
{
    const TypeDesc format = spec.channelformats.empty() ? spec.format : spec.channelformat(0);
    if (format == TypeDesc::HALF)
        return QStringLiteral("half float");
    if (format.is_floating_point())
        return format == TypeDesc::DOUBLE ? QStringLiteral("double") : QStringLiteral("float");
    const int bits = spec.get_int_attribute("oiio:BitsPerSample", int(format.size()) * 8);
    return QStringLiteral("%1 bit").arg(bits);
}

double frameRateOf(const ImageSpec& spec)
{
    for (const char* name :
         {"FramesPerSecond", "dpx:FrameRate", "dpx:TemporalFrameRate", "cineon:FrameRate"}) {
        const ParamValue* value = spec.find_attribute(name);
        if (!value)
            continue;
        const auto* parts = static_cast<const int*>(value->data());
        const double rate =
            value->type() == TypeRational ? double(parts[0]) / parts[1] : double(value->get_float());
        if (std::isfinite(rate) && rate > 0 && rate <= 1000)
            return rate;
    }
    return 0;
}

} // namespace

double pixelAspectOf(const ImageSpec& spec)
{
    const double aspect = spec.get_float_attribute("PixelAspectRatio", 1);
    return aspect > 0.01 && aspect < 100 ? aspect : 1;
}

void describe(PictureProtocol::Answer& answer, const ImageSpec& spec)
{
    answer.fullSize = {spec.full_width, spec.full_height};
    answer.dataWindow = QRect(spec.x - spec.full_x, spec.y - spec.full_y, spec.width, spec.height);
    answer.pixelAspect = pixelAspectOf(spec);
    for (const std::string& name : spec.channelnames)
        answer.channels << text(name);
    answer.depth = depthOf(spec);
    answer.compression = text(spec.get_string_attribute("compression"));
    if (const ParamValue* timeCode = spec.find_attribute("smpte:TimeCode"))
        answer.timeCode = text(ImageSpec::metadata_val(*timeCode));
    answer.frameRate = frameRateOf(spec);
}

} // namespace Halvern::UI
