#include "base/Locale.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace Halvern::Base {

bool isUtf8Locale()
{
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return std::strstr(value, "UTF") || std::strstr(value, "utf");
    }
    return false;
}

} // namespace Halvern::Base
