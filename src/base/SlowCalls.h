#pragma once

#include <cstddef>
#include <functional>

namespace Halvern::Base {

/// How many calls callEach() has under way at the same time at most, the caller's own among them.
inline constexpr std::size_t MostCallsAtOnce = 8;

/// Makes @p count calls and returns when all have ended. They begin one after the other on this thread. Where
/// most of them take their time, as with a file server far away, the rest is shared with further threads,
/// which end with this function: then @p call is called by several threads at once, and for the indices in
/// any order. It must not throw.
void callEach(std::size_t count, const std::function<void(std::size_t index)>& call);

} // namespace Halvern::Base
