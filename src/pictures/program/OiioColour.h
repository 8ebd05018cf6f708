#pragma once

#include <OpenImageIO/color.h>
#include <OpenImageIO/imageio.h>
#include <string>

namespace Halvern::UI {

/// How the colours of a file become those of a display.
struct OiioColour
{
    enum Transfer
    {
        None,       ///< They are shown as they are.
        Light,      ///< They are linear.
        Film,       ///< They are code values of film.
        Configured, ///< The processor knows.
    };

    std::string space; ///< The name of the file's colour space, for people. Empty if it is not known.
    std::string error; ///< Why there is none; empty if there is.
    Transfer transfer = None;
    OIIO::ColorProcessorHandle processor; ///< Null if they are not configured.
};

/// With the environment variable OCIO, by the rules of that configuration for @p path, to its default display
/// and view. Otherwise by what the file says: linear colours and film's code values to sRGB, all others as
/// they are.
OiioColour findColour(const std::string& path, const OIIO::ImageSpec& spec);

/// Makes @p count pixels, of red, green, blue and alpha, multiplied by alpha, ready for display. What is not
/// a number becomes 0. May be called from several threads at a time.
void applyColour(float* rgba, int count, const OiioColour& colour, bool hasAlpha);

} // namespace Halvern::UI
