#pragma once

#include <QString>

namespace Halvern::UI {

/// The path of the program that reads pictures. It is the value of the environment variable COREUI_PICTURES
/// if that is set. Otherwise the program is looked up beside this library: "coreui-pictures-oiio" (with
/// OpenImageIO), or else "coreui-pictures" (with what Qt reads), in libexec/hvmirefold-coreui of an installed
/// tree or bin of a build tree. Empty if there is none.
QString pictureProgram();

} // namespace Halvern::UI
