#pragma once

#include <cstddef>

namespace Halvern::Base {

/// Copies @p from into the buffer @p to of @p size bytes and always terminates it.
///
/// What does not fit is cut off; a null @p from copies as the empty text. With a @p size of 0 nothing is
/// written. Returns the number of bytes copied, without the terminator.
/// Example: a buffer of 4 bytes and "frame" give "fra" and 3.
std::size_t copyTruncated(char* to, std::size_t size, const char* from);

/// The same for an array, whose size need not be repeated.
template <std::size_t Size>
std::size_t copyTruncated(char (&to)[Size], const char* from)
{
    return copyTruncated(to, Size, from);
}

} // namespace Halvern::Base
