#pragma once

#include <QStringList>
#include <atomic>

/// Faults of the file system, for programs that are linked with this library. Its functions replace those of
/// the C library, as if it were preloaded. All faults are 0 for none, and any thread may set them.
///
/// The first thread is that of the user interface. All others are workers.
enum Fault
{
    CallDelay,        ///< Microseconds that each faultyCall of a worker takes.
    CallError,        ///< What faultyCall fails with, on each thread.
    CallPlace,        ///< The number of the only call that fails, from 1; -1 after it has failed. 0 for each.
    ShortWrites,      ///< Bytes that each `write` leaves out. Only a `write` of no more bytes can be the
                      ///< faultyCall.
    MostNames,        ///< How many names directories give from now on before they fail with EIO.
    NoTypes,          ///< Names come without their type.
    Calls,            ///< Not a fault: how many calls to the file system workers began.
    DelayedCalls,     ///< How many of them were delayed.
    NowDelayed,       ///< How many are delayed at this moment.
    MostDelayed,      ///< The most that were at the same time.
    FirstAllocation,  ///< Which allocation of the first thread fails, from 1; 0 for none.
    WorkerAllocation, ///< The same for workers, while they have a directory open or after they began to
                      ///< watch one: a thread cannot start without memory.
    FaultCount
};
extern std::atomic<int> faults[FaultCount];
extern std::atomic<const char*> faultyCall; ///< "write" or another call, "*" for any; null for none.
/// Only calls about files below it fail; null for any file. Descriptors are those of plain files.
extern std::atomic<const char*> faultyFolder;
void endFaults();
/// Ends the other faults and lets each @p call of a worker take so long.
void delayCalls(const char* call, int microseconds);
/// Ends the other faults and lets each @p call fail with @p error, or only the one of the number @p place
/// from 1.
void failCalls(const char* call, int error, int place = 0);
/// Whether allocations can fail: not with a sanitizer, which has its own.
extern const bool failsAllocations;

/// What the first thread asked the file system for since this was called last, "statx /tmp" and the like. The
/// first time begins it.
QStringList takeCalls();
