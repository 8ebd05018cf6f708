#pragma once

#include <QRunnable>
#include <QThreadPool>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <utility>

namespace Halvern::Base {

/// How many calls callEach() has under way at the same time at most, the caller's own among them.
inline constexpr std::size_t MostCallsAtOnce = 8;

/// Makes @p count calls and returns when all have ended. They begin one after the other on this thread. If
/// most of them are slow, as with a file server far away, the rest is shared with helperThreads(): then @p
/// call is called by several threads at once, and for the indexes in any order. It must not throw.
void callEach(std::size_t count, const std::function<void(std::size_t index)>& call);

/// Threads of the process that know nothing of who asks them. Nobody may wait until they start: if the system
/// has no thread, they do not. A forked process has its own.
QThreadPool& helperThreads();

/// Calls @p work on one of helperThreads() and destroys it there. If there is no memory to do so, it is only
/// destroyed, on this thread. @p work must not throw.
template <class Work>
void callInBackground(Work work) noexcept
{
    struct Task : QRunnable
    {
        explicit Task(Work& from)
            : work(std::move(from))
        {
        }
        void run() override
        {
            given.load(std::memory_order_acquire);
            work();
        }
        Work work;
        // Race detectors do not see Qt's locks, which pass the task to the thread.
        std::atomic<bool> given{false};
    };
    try {
        auto task = std::make_unique<Task>(work);
        task->given.store(true, std::memory_order_release);
        helperThreads().start(task.get());
        static_cast<void>(task.release());
    } catch (const std::bad_alloc&) {
        // The work is destroyed without a call.
    }
}

} // namespace Halvern::Base
