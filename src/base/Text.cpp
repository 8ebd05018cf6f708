#include "base/Text.h"

#include <cstring>

namespace Halvern::Base {

std::size_t copyTruncated(char* to, std::size_t size, const char* from)
{
    if (size == 0)
        return 0;
    const std::size_t length = from ? strnlen(from, size - 1) : 0;
    if (length > 0)
        std::memmove(to, from, length);
    to[length] = '\0';
    return length;
}

} // namespace Halvern::Base
