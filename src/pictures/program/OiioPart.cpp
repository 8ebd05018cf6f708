#include "pictures/program/OiioPart.h"

#include <algorithm>
#include <optional>

namespace Halvern::UI {

namespace {

constexpr int MostSubimages = 64;

using Layer = std::array<int, 4>; // red, green, blue, alpha in the order of the file; -1 for no alpha

int channelNamed(const OIIO::ImageSpec& spec, const std::string& layer,
                 std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        const std::string wanted = layer + name;
        const auto isIt = [&](const std::string& other) { return OIIO::Strutil::iequals(other, wanted); };
        const auto found = std::find_if(spec.channelnames.begin(), spec.channelnames.end(), isIt);
        if (found != spec.channelnames.end())
            return int(found - spec.channelnames.begin());
    }
    return -1;
}

std::optional<Layer> layerNamed(const OIIO::ImageSpec& spec, const std::string& layer)
{
    // The colours of a Cineon file that does not name them are called "I", "I2" and "I3".
    const Layer channels{
        channelNamed(spec, layer, {"R", "red", "I"}), channelNamed(spec, layer, {"G", "green", "I2"}),
        channelNamed(spec, layer, {"B", "blue", "I3"}), channelNamed(spec, layer, {"A", "alpha"})};
    if (std::min({channels[0], channels[1], channels[2]}) < 0)
        return {};
    return channels;
}

// "R", "G" and "B" alone come before "diffuse.R" and its like.
std::optional<Layer> firstRgbLayer(const OIIO::ImageSpec& spec)
{
    if (auto channels = layerNamed(spec, {}))
        return channels;
    std::string before;
    for (const std::string& name : spec.channelnames) {
        const size_t dot = name.rfind('.');
        const std::string layer = dot == std::string::npos ? std::string() : name.substr(0, dot + 1);
        if (layer == before)
            continue;
        if (auto channels = layerNamed(spec, layer))
            return channels;
        before = layer;
    }
    return {};
}

Layer greyLayer(const OIIO::ImageSpec& spec)
{
    const int luminance = std::max(0, channelNamed(spec, {}, {"Y"}));
    const int alpha = channelNamed(spec, {}, {"A", "alpha"});
    return {luminance, luminance, luminance, alpha == luminance ? -1 : alpha};
}

void setChannels(OiioPart& part, const Layer& layer)
{
    part.channels = layer;
    const auto lowest = std::min({layer[0], layer[1], layer[2], layer[3] < 0 ? layer[0] : layer[3]});
    const auto highest = std::max({layer[0], layer[1], layer[2], layer[3]});
    part.firstChannel = lowest;
    part.channelCount = highest - lowest + 1;
    for (int& channel : part.channels) {
        if (channel >= 0)
            channel -= lowest;
    }
}

} // namespace

OiioPart findPart(OIIO::ImageInput& input)
{
    OiioPart part;
    for (int subimage = 0; subimage < MostSubimages; ++subimage) {
        const OIIO::ImageSpec spec = input.spec_dimensions(subimage);
        if (spec.undefined())
            break;
        if (const auto layer = firstRgbLayer(input.spec(subimage))) {
            part.subimage = subimage;
            part.spec = input.spec(subimage);
            setChannels(part, *layer);
            return part;
        }
    }
    part.spec = input.spec(0);
    setChannels(part, greyLayer(part.spec));
    return part;
}

void chooseLevel(OIIO::ImageInput& input, OiioPart& part, int width, int height)
{
    // The levels do not know where a data window stands in another display window.
    if (part.spec.roi() != part.spec.roi_full())
        return;
    for (int level = 1;; ++level) {
        const OIIO::ImageSpec spec = input.spec(part.subimage, level);
        if (spec.undefined() || spec.width < width || spec.height < height || spec.width >= part.spec.width)
            break;
        part.level = level;
        part.spec = spec;
        // Every level covers the same display window.
        part.spec.full_x = spec.x;
        part.spec.full_y = spec.y;
        part.spec.full_width = spec.width;
        part.spec.full_height = spec.height;
    }
    input.geterror(); // of the level that is not there
}

} // namespace Halvern::UI
