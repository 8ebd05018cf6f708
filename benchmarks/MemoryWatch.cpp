#include "MemoryWatch.h"

#include "Measuring.h"
#include "base/SlowCalls.h"

#include <QFile>
#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr int Lines = 10;
constexpr int LeastWarmUp = 20;

MemoryWatch::Memory memoryInUse()
{
    MemoryWatch::Memory memory;
    Halvern::Base::waitForHelpers(); // they free the memory of the last read
    ::malloc_trim(0);
    const auto info = ::mallinfo2();
    memory.allocated = static_cast<long long>(info.uordblks) + static_cast<long long>(info.hblkhd);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (file.open(QFile::ReadOnly))
        memory.resident = file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
    return memory;
}

} // namespace

MemoryWatch::MemoryWatch(const char* what, int rounds, long long allowed)
    : m_what(what)
    , m_rounds(rounds)
    , m_allowed(allowed)
{
    std::printf("%-12s %12s %12s %12s\n", what, "seconds", "heap, kB", "resident, kB");
    m_timer.start();
}

void MemoryWatch::finishRound(int round)
{
    if (round % std::max(m_rounds / Lines, 1) != 0 && round != warmUp())
        return;
    const Memory memory = memoryInUse();
    std::printf("%-12d %12.1f %12lld %12lld\n", round, Measuring::milliseconds(m_timer) / 1000,
                memory.allocated / 1024, memory.resident / 1024);
    std::fflush(stdout);
    if (round == warmUp())
        m_first = memory;
    m_last = memory;
}

bool MemoryWatch::isSteady() const
{
    const long long grown = m_last.allocated - m_first.allocated;
    const long long residentGrown = m_last.resident - m_first.resident;
#ifdef __SANITIZE_ADDRESS__
    // AddressSanitizer keeps freed memory and has a heap of its own.
    const bool steady = true;
#else
    // Pages with a single block in use cannot be given back.
    constexpr long long AllowedResident = 16 << 20;
    const bool steady = grown < m_allowed && residentGrown < AllowedResident;
#endif
    std::printf("%s: %+lld kB in the heap (of %lld allowed), %+lld kB resident after the first %d: %s\n\n",
                m_what, grown / 1024, m_allowed / 1024, residentGrown / 1024, warmUp(),
                steady ? "steady" : "GROWING");
    return steady;
}

int MemoryWatch::warmUp() const
{
    return std::max({m_rounds / 20, std::min(LeastWarmUp, m_rounds / 2), 1});
}
