#include "base/SlowCalls.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <unistd.h>

namespace Halvern::Base {

namespace {

using Clock = std::chrono::steady_clock;

// What is answered from memory takes a few microseconds, an answer from a server a few hundred.
constexpr auto Slow = std::chrono::microseconds(100);
// By how many the slow calls must outnumber the quick ones: a thread that has to wait for a processor, as on
// a busy machine, looks slow now and then.
constexpr int ManySlow = 8;

using Call = std::function<void(std::size_t index)>;

// Returns the index of the first call that was not made, because those before it were slow.
std::size_t callUntilSlow(std::size_t count, const Call& call)
{
    int slow = 0;
    auto before = Clock::now();
    for (std::size_t index = 0; index < count; ++index) {
        if (slow == ManySlow)
            return index;
        call(index);
        const auto now = Clock::now();
        if (now - before >= Slow)
            ++slow;
        else if (slow > 0)
            --slow;
        before = now;
    }
    return count;
}

// What the callers share. Helpers that start late find it empty and do not touch the call, which is gone by
// then.
struct Calls
{
    void makeSome()
    {
        std::size_t made = 0;
        for (std::size_t index = next++; index < count; index = next++, ++made)
            call(index);
        const std::lock_guard<std::mutex> lock(mutex);
        left -= made;
        if (left == 0)
            ended.notify_one();
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(mutex);
        ended.wait(lock, [this] { return left == 0; });
    }

    const Call& call;
    std::atomic<std::size_t> next;
    const std::size_t count;
    std::size_t left; // guarded by mutex: calls that have not ended
    std::mutex mutex;
    std::condition_variable ended;
};

void callAtOnce(std::size_t first, std::size_t count, const Call& call)
{
    const std::shared_ptr<Calls> calls(new Calls{call, {first}, count, count - first, {}, {}});
    for (std::size_t others = 1; others < MostCallsAtOnce; ++others)
        callInBackground([calls] { calls->makeSome(); });
    calls->makeSome();
    calls->wait();
}

struct Helpers
{
    QThreadPool threads;
    const pid_t process = ::getpid();
};

} // namespace

// Never destroyed: that would wait for the threads.
QThreadPool& helperThreads()
{
    static std::atomic<Helpers*> helpers{nullptr};
    Helpers* present = helpers;
    if (!present || present->process != ::getpid()) {
        auto made = std::make_unique<Helpers>();
        made->threads.setMaxThreadCount(MostCallsAtOnce - 1);
        made->threads.setExpiryTimeout(-1);
        if (helpers.compare_exchange_strong(present, made.get()))
            present = made.release();
    }
    return present->threads;
}

void callEach(std::size_t count, const Call& call)
{
    const std::size_t first = callUntilSlow(count, call);
    if (first < count)
        callAtOnce(first, count, call);
}

} // namespace Halvern::Base
