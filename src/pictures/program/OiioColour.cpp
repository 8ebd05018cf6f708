#include "pictures/program/OiioColour.h"

#include <OpenColorIO/OpenColorIO.h>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

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
    const char* name = config->getColorSpaceFromFilepath(path.c_str());
    const auto space = config->getColorSpace(name); // the name may be that of a role
    return space ? space->getName() : name;
}

OiioColour configuredColour(const std::string& path)
{
    OiioColour colour;
    ColorConfig& config = configuration();
    // It has a built-in one if it cannot read that of the environment, and says so once.
    static const std::string error = config.has_error() ? config.geterror() : std::string();
    if (!error.empty()) {
        colour.error = "The OCIO configuration cannot be read: " + error;
        return colour;
    }
    colour.space = spaceByRules(path);
    const char* display = config.getDefaultDisplayName();
    const char* view = display ? config.getDefaultViewName(display) : nullptr;
    if (display && view)
        colour.processor = config.createDisplayTransform(display, view, colour.space);
    colour.transfer = OiioColour::Configured;
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

float srgbOfLight(float light)
{
    return light <= 0.0031308F ? 12.92F * light : 1.055F * std::pow(light, 1 / 2.4F) - 0.055F;
}

std::uint32_t bitsOf(float number)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

// The sRGB of light, from a table with an entry for each half float between 1/8192 and 1.
class LightTable
{
public:
    LightTable()
        : m_entries(((bitsOf(1) - bitsOf(Least)) >> Dropped) + 1)
    {
        for (std::uint32_t i = 0; i < m_entries.size(); ++i) {
            const std::uint32_t bits = bitsOf(Least) + (i << Dropped) + (1U << Dropped) / 2;
            float light = 0;
            std::memcpy(&light, &bits, sizeof light);
            m_entries[i] = srgbOfLight(light);
        }
    }

    float operator()(float light) const
    {
        if (light < Least)
            return std::max(0.0F, srgbOfLight(light));
        return light < 1 ? m_entries[(bitsOf(light) - bitsOf(Least)) >> Dropped] : 1;
    }

private:
    static constexpr float Least = 1.0F / 8192;
    static constexpr int Dropped = 13; // bits of a float's mantissa that a half float does not have
    std::vector<float> m_entries;
};

// The sRGB of a film's printing density, which is a 10-bit code value divided by 1023. Code value 95 is black
// and 685 is white. From a table with an entry for each eighth of a code value.
class FilmTable
{
public:
    FilmTable()
        : m_entries(Last + 1)
    {
        constexpr float black = 95;
        constexpr float white = 685;
        constexpr float exponentOfACode = 0.002F / 0.6F; // density of a code value / gamma of the film
        const auto lightOf = [](float code) { return std::pow(10.0F, (code - white) * exponentOfACode); };
        const float darkest = lightOf(black);
        for (int i = 0; i <= Last; ++i) {
            const float light = (lightOf(float(i) / 8) - darkest) / (1 - darkest);
            m_entries[size_t(i)] = srgbOfLight(std::clamp(light, 0.0F, 1.0F));
        }
    }

    float operator()(float density) const
    {
        return m_entries[size_t(std::clamp(density, 0.0F, 1.0F) * Last + Rounding)];
    }

private:
    static constexpr int Last = 1023 * 8;
    static constexpr float Rounding = 0.5F;
    std::vector<float> m_entries;
};

template <class Table>
void applyTable(float* rgba, int count)
{
    static const Table table;
    for (const float* end = rgba + std::ptrdiff_t(count) * 4; rgba < end; rgba += 4)
        std::transform(rgba, rgba + 3, rgba, [](float value) { return table(value); });
}

} // namespace

OiioColour findColour(const std::string& path, const ImageSpec& spec)
{
    const char* ocio = std::getenv("OCIO");
    if (ocio && *ocio)
        return configuredColour(path);
    OiioColour colour;
    const std::string space = spec.get_string_attribute("oiio:ColorSpace");
    const bool isLinear = space.empty() ? spec.format.is_floating_point()
                                        : iequals(space, "Linear") || iequals(space, "scene_linear");
    if (isFilm(spec, space)) {
        colour.transfer = OiioColour::Film;
        colour.space = "Cineon log";
    } else if (isLinear) {
        colour.transfer = OiioColour::Light;
        colour.space = "linear";
    } else {
        colour.space = space;
    }
    return colour;
}

void applyColour(float* rgba, int count, const OiioColour& colour, bool hasAlpha)
{
    float* end = rgba + std::ptrdiff_t(count) * 4;
    std::transform(rgba, end, rgba, [](float value) {
        return std::isnan(value) ? 0 : std::clamp(value, -LargestHalf, LargestHalf);
    });
    if (colour.transfer == OiioColour::None)
        return;
    // Light without alpha, a glow or a sky, stays.
    for (float* pixel = rgba; hasAlpha && pixel < end; pixel += 4) {
        if (pixel[3] != 0)
            std::for_each(pixel, pixel + 3, [pixel](float& value) { value /= pixel[3]; });
    }
    if (colour.transfer == OiioColour::Film)
        applyTable<FilmTable>(rgba, count);
    else if (colour.transfer == OiioColour::Light)
        applyTable<LightTable>(rgba, count);
    else
        colour.processor->apply(rgba, count, 1, 4, sizeof(float), 4 * sizeof(float),
                                stride_t(count) * 4 * stride_t(sizeof(float)));
    for (float* pixel = rgba; hasAlpha && pixel < end; pixel += 4) {
        std::transform(pixel, pixel + 4, pixel, [](float value) { return std::clamp(value, 0.0F, 1.0F); });
        if (pixel[3] != 0)
            std::for_each(pixel, pixel + 3, [pixel](float& value) { value *= pixel[3]; });
    }
}

} // namespace Halvern::UI
