#pragma once

#include <QStringList>
#include <atomic>

/// Faults of the file system, for programs that are linked with this library: it stands before the system's
/// in the search for a name, as if it were preloaded. All are 0 for none, and any thread may set them.
///
/// The first thread is the one of the user interface. All others are workers.
enum Fault
{
    CallDelay,    ///< Microseconds that each faultyCall of a worker takes.
    CallError,    ///< What faultyCall fails with, on each thread.
    CallPlace,    ///< Which one fails, from 1, and then no other: it is -1 afterwards. 0 for each.
    ShortWrites,  ///< Bytes that each `write` leaves undone; only one of no more bytes can be the faultyCall.
    MostNames,    ///< How many names directories give, from then on, before they fail with EIO.
    NoTypes,      ///< Names come without their type.
    Calls,        ///< Not a fault: how many calls to the file system workers began.
    DelayedCalls, ///< How many of them were delayed.
    NowDelayed,   ///< How many are delayed at this moment.
    MostDelayed,  ///< The most that were at the same time.
    FirstAllocation,  ///< Which allocation of the first thread fails, from 1; 0 for none.
    WorkerAllocation, ///< The same of workers, while they have a directory open: a thread cannot start
                      ///< without.
    FaultCount
};
extern std::atomic<int> faults[FaultCount];
extern std::atomic<const char*> faultyCall; ///< "write" or another call, "*" for any; null for none.
/// Only calls about files below it fail; null for any file. Descriptors are those of plain files.
extern std::atomic<const char*> faultyFolder;
void endFaults();
/// Whether allocations can fail: not with a sanitizer, which has its own.
extern const bool failsAllocations;

/// What the first thread asked the file system for since this was called last, "statx /tmp" and the like. The
/// first time begins it.
QStringList takeCalls();
