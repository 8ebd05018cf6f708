#pragma once

#include <OpenImageIO/imageio.h>
#include <array>

namespace Halvern::UI {

/// The part of a file that is shown: one of its subimages, one of its mip levels, and up to four of its
/// channels.
struct OiioPart
{
    int subimage = 0;
    int level = 0;
    OIIO::ImageSpec spec; ///< Of the subimage and level.
    /// The channels that are read, red, green, blue and alpha, counted from the first one that is read; -1
    /// for an alpha that the file does not have. Grey has one channel three times.
    std::array<int, 4> channels{0, 0, 0, -1};
    int firstChannel = 0;
    int channelCount = 1;

    bool hasAlpha() const { return channels[3] >= 0; }
};

/// The first RGB layer of the first subimage that has one; otherwise the first channel of the first subimage,
/// as grey. Level 0.
OiioPart findPart(OIIO::ImageInput& input);

/// Goes to the smallest level that has at least @p width by @p height pixels.
void chooseLevel(OIIO::ImageInput& input, OiioPart& part, int width, int height);

} // namespace Halvern::UI
