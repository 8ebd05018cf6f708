#pragma once

#include "base/Export.h"

namespace Halvern::Base {

/// Whether the user's locale says that text is UTF-8: the first of the environment variables LC_ALL, LC_CTYPE
/// and LANG that is set to a text decides, and holds "UTF" or "utf" where it is. Without any it is not.
HVCOREUI_EXPORT bool isUtf8Locale();

} // namespace Halvern::Base
