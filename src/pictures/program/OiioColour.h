#pragma once

#include "pictures/program/OiioPart.h"

#include <OpenImageIO/color.h>
#include <OpenImageIO/imagebuf.h>
#include <string>

namespace Halvern::UI {

/// How the colours of a file become those of a display.
struct OiioColour
{
    std::string space; ///< The name of the file's colour space, for people. Empty if it is not known.
    std::string error; ///< Why there is none; empty if there is.
    OIIO::ColorProcessorHandle processor; ///< Null for colours that are shown as they are.
    bool isCineon = false;                ///< Whether they are code values of film, before the processor.
};

/// With the environment variable OCIO, by the rules of that configuration for @p path, to its default display
/// and view. Otherwise by what the file says: linear colours and film's code values to sRGB, all others as
/// they are.
OiioColour findColour(const std::string& path, const OIIO::ImageSpec& spec);

/// The light, from 0 (black) to 1 (white), of a film's printing density as a 10-bit code value divided by
/// 1023. Code value 95 is black and 685 is white.
float lightOfCineon(float density);

/// Makes @p picture, which is RGBA in floats multiplied by alpha, ready for display. What is not a number
/// becomes 0. False on failure, which @p picture explains.
bool applyColour(OIIO::ImageBuf& picture, const OiioColour& colour, bool hasAlpha);

} // namespace Halvern::UI
