#include "base/SlowCalls.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace Halvern::Base {

namespace {

using Clock = std::chrono::steady_clock;

// What is answered from memory takes a few microseconds, an answer from a server a few hundred.
constexpr auto Slow = std::chrono::microseconds(100);
// By how many the slow calls must outnumber the quick ones. On a busy machine any thread looks slow at times.
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

// What the callers share. A helper that starts late finds no call left; `call` is gone by then.
struct Calls
{
    void makeSome()
    {
        std::size_t made = 0;
        for (std::size_t index = m_next++; index < m_count; index = m_next++, ++made)
            m_call(index);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_left -= made;
        if (m_left == 0)
            m_ended.notify_one();
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ended.wait(lock, [this] { return m_left == 0; });
    }

    const Call& m_call;
    std::atomic<std::size_t> m_next;
    const std::size_t m_count;
    std::size_t m_left; // guarded by m_mutex: calls that have not ended
    std::mutex m_mutex;
    std::condition_variable m_ended;
};

void callAtOnce(std::size_t first, std::size_t count, const Call& call)
{
    const std::shared_ptr<Calls> calls(new Calls{call, {first}, count, count - first, {}, {}});
    for (std::size_t others = 1; others < MostCallsAtOnce; ++others)
        callInBackground([calls] { calls->makeSome(); });
    calls->makeSome();
    calls->wait();
}

/// Threads of one process. They are started when they are needed, and stay.
class Helpers
{
public:
    // A reference, so that the work is still there if it cannot be queued.
    void give(std::function<void()>& work)
    {
        constexpr std::size_t MostWaiting = 64;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            if (m_waiting.size() < MostWaiting && hasThread()) {
                m_waiting.push_back(std::move(work));
                m_arrived.notify_one();
                return;
            }
        }
        work();
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ended.wait(lock, [this] { return m_waiting.empty() && m_idle == m_threads; });
    }
    bool isOfThisProcess() const { return m_process == ::getpid(); }

private:
    // Whether there is a thread that will take the next work. Starts one if none is free.
    bool hasThread()
    {
        if (m_waiting.size() >= m_idle && m_threads < MostCallsAtOnce - 1) {
            try {
                std::thread([this] { run(); }).detach();
                ++m_threads;
                ++m_idle;
            } catch (const std::exception&) {
                // The system has no thread, or no memory for it. The next call tries again.
            }
        }
        return m_threads > 0;
    }
    [[noreturn]] void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            m_arrived.wait(lock, [this] { return !m_waiting.empty(); });
            std::function<void()> work = std::move(m_waiting.front());
            m_waiting.pop_front();
            --m_idle;
            lock.unlock();
            work();
            work = nullptr;
            lock.lock();
            ++m_idle;
            m_ended.notify_all();
        }
    }

    const pid_t m_process = ::getpid();
    std::mutex m_mutex; // guards what follows
    std::condition_variable m_arrived;
    std::condition_variable m_ended;
    std::list<std::function<void()>> m_waiting;
    std::size_t m_threads = 0;
    std::size_t m_idle = 0; // of the threads, those without work
};

// Never destroyed: their threads run until the process ends. A forked process has its own.
Helpers& helpers()
{
    static std::atomic<Helpers*> helpers{nullptr};
    Helpers* present = helpers;
    if (!present || !present->isOfThisProcess()) {
        auto made = std::make_unique<Helpers>();
        if (helpers.compare_exchange_strong(present, made.get()))
            present = made.release();
    }
    return *present;
}

} // namespace

void giveToHelpers(std::function<void()>& work)
{
    helpers().give(work);
}

void waitForHelpers()
{
    helpers().wait();
}

void callEach(std::size_t count, const Call& call)
{
    const std::size_t first = callUntilSlow(count, call);
    if (first < count)
        callAtOnce(first, count, call);
}

} // namespace Halvern::Base
