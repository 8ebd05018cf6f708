#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <utility>

namespace Halvern::Base {

/// How many calls callEach() makes at the same time at most, including those of the calling thread.
inline constexpr std::size_t MostCallsAtOnce = 8;

/// Makes @p count calls and returns when all have ended. They begin one after the other on this thread. If
/// most of them are slow, as with a file server far away, helper threads share the rest: then @p call is
/// called by several threads at once, and for the indexes in any order. It must not throw.
void callEach(std::size_t count, const std::function<void(std::size_t index)>& call);

/// Gives @p work to the helper threads of the process. If the system has no thread for it, or if they are far
/// behind, it is done on this thread. Throws `std::bad_alloc`, which leaves @p work as it was.
void giveToHelpers(std::function<void()>& work);

/// Waits until the helper threads have done all that they were given. For tests and measurements.
void waitForHelpers();

/// Calls @p work on a helper thread and destroys it there, or on this thread as giveToHelpers() tells. If
/// there is no memory to pass it on, it is destroyed without a call. @p work must not throw.
template <class Work>
void callInBackground(Work work) noexcept
{
    try {
        std::function<void()> given = std::move(work);
        giveToHelpers(given);
    } catch (const std::bad_alloc&) {
        // The work is destroyed without a call.
    }
}

} // namespace Halvern::Base
