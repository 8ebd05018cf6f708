#pragma once

#include "base/Export.h"

#include <QString>
#include <string>

/// Paths as texts: nothing here asks the file system.
namespace Halvern::Base {

/// @p path with single separators, without "." and trailing separators, and with every ".." taken back as far
/// as there is a name before it. An empty text stays empty; what is used up gives ".".
/// Examples: "//shots/./010//" gives "/shots/010", "a/../../b" gives "../b", "/.." gives "/".
HVCOREUI_EXPORT std::string normalisedPath(const std::string& path);

/// @p folder with a separator at its end, for a name to follow: "/shots" gives "/shots/", "/" stays.
HVCOREUI_EXPORT QString withSeparator(const QString& folder);

} // namespace Halvern::Base
