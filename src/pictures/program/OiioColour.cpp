#include "pictures/program/OiioColour.h"

#include <OpenColorIO/OpenColorIO.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imagebufalgo_util.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Halvern::UI {

using namespace OIIO;
using Strutil::iequals;

namespace {

constexpr float LargestHalf = 65504;

ColorConfig& configuration()
{
    static ColorConfig config;
    return config;
}

// OpenImageIO's own function leaves out the default rule.
std::string spaceByRules(const std::string& path)
{
    static const OCIO_NAMESPACE::ConstConfigRcPtr config = OCIO_NAMESPACE::GetCurrentConfig();
    return config->getColorSpaceFromFilepath(path.c_str());
}

OiioColour configuredColour(const std::string& path)
{
    OiioColour colour;
    ColorConfig& config = configuration();
    // It has a built-in one where it cannot read that of the environment.
    if (config.has_error()) {
        colour.error = "The OCIO configuration cannot be read: " + config.geterror();
        return colour;
    }
    colour.space = spaceByRules(path);
    const char* display = config.getDefaultDisplayName();
    const char* view = display ? config.getDefaultViewName(display) : nullptr;
    if (display && view)
        colour.processor = config.createDisplayTransform(display, view, colour.space);
    if (!colour.processor)
        colour.error =
            "The OCIO configuration does not show \"" + colour.space + "\" on its default display.";
    return colour;
}

bool isFilm(const ImageSpec& spec, const std::string& space)
{
    if (iequals(space, "KodakLog"))
        return true;
    // Ten bits of which the file does not say what they are.
    return space.empty() && spec.get_int_attribute("oiio:BitsPerSample") == 10 &&
           (spec.find_attribute("dpx:Version") || spec.find_attribute("cineon:Version"));
}

// Calls change(first float of a pixel) for every pixel, on several threads.
template <class Change>
void forEachPixel(ImageBuf& picture, Change change)
{
    const int channels = picture.nchannels();
    ImageBufAlgo::parallel_image(picture.roi(), [&](ROI roi) {
        for (int y = roi.ybegin; y < roi.yend; ++y) {
            auto* pixel = static_cast<float*>(picture.pixeladdr(roi.xbegin, y));
            for (int x = roi.xbegin; x < roi.xend; ++x, pixel += channels)
                change(pixel);
        }
    });
}

} // namespace

OiioColour findColour(const std::string& path, const ImageSpec& spec)
{
    const char* ocio = std::getenv("OCIO");
    if (ocio && *ocio)
        return configuredColour(path);
    OiioColour colour;
    const std::string space = spec.get_string_attribute("oiio:ColorSpace");
    colour.isCineon = isFilm(spec, space);
    const bool isLinear = space.empty() ? spec.format.is_floating_point()
                                        : iequals(space, "Linear") || iequals(space, "scene_linear");
    if (isLinear || colour.isCineon)
        colour.processor = configuration().createColorProcessor("linear", "sRGB");
    if (colour.isCineon)
        colour.space = "Cineon log";
    else if (isLinear)
        colour.space = "linear";
    else
        colour.space = space;
    return colour;
}

float lightOfCineon(float density)
{
    constexpr float black = 95;
    constexpr float white = 685;
    constexpr float exponentOfACode = 0.002F / 0.6F; // density of a code value / gamma of the film
    const auto light = [](float code) { return std::pow(10.0F, (code - white) * exponentOfACode); };
    static const float darkest = light(black);
    return std::max(0.0F, (light(density * 1023) - darkest) / (1 - darkest));
}

bool applyColour(ImageBuf& picture, const OiioColour& colour, bool hasAlpha)
{
    forEachPixel(picture, [](float* pixel) {
        for (int i = 0; i < 4; ++i)
            pixel[i] = std::isnan(pixel[i]) ? 0 : std::clamp(pixel[i], -LargestHalf, LargestHalf);
    });
    if (!colour.processor)
        return true;
    if (hasAlpha && !ImageBufAlgo::unpremult(picture, picture))
        return false;
    if (colour.isCineon) {
        forEachPixel(picture, [](float* pixel) { std::transform(pixel, pixel + 3, pixel, lightOfCineon); });
    }
    if (!ImageBufAlgo::colorconvert(picture, picture, colour.processor.get(), false))
        return false;
    if (!hasAlpha)
        return true;
    forEachPixel(picture, [](float* pixel) {
        for (int i = 0; i < 4; ++i)
            pixel[i] = std::clamp(pixel[i], 0.0F, 1.0F);
    });
    // Light without alpha, a glow or a sky, stays.
    return ImageBufAlgo::repremult(picture, picture);
}

} // namespace Halvern::UI
