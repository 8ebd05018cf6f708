#include "base/SlowCalls.h"

#include <atomic>
#include <chrono>
#include <exception>
#include <thread>
#include <vector>

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

void callAtOnce(std::size_t first, std::size_t count, const Call& call)
{
    std::atomic<std::size_t> next{first};
    const auto work = [&] {
        for (std::size_t index = next++; index < count; index = next++)
            call(index);
    };
    std::vector<std::thread> others;
    others.reserve(MostCallsAtOnce - 1);
    try {
        while (others.size() + 1 < MostCallsAtOnce)
            others.emplace_back(work);
    } catch (const std::exception&) {
        // The system has no more threads, or no memory for one: those that are there do all of it.
    }
    work();
    for (std::thread& other : others)
        other.join();
}

} // namespace

void callEach(std::size_t count, const Call& call)
{
    const std::size_t first = callUntilSlow(count, call);
    if (first < count)
        callAtOnce(first, count, call);
}

} // namespace Halvern::Base
