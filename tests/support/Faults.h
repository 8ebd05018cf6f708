#pragma once

#include <QStringList>
#include <atomic>

/// Faults of the file system, for programs that are linked with this library: it stands before the system's
/// in the search for a name, as if it were preloaded. All are 0 for none, and any thread may set them.
///
/// The first thread is the one of the user interface. All others are workers, and only they are concerned by
/// what is said of questions for attributes.
enum Fault
{
    QuestionDelay, ///< Microseconds that each question for attributes takes.
    QuestionError, ///< What each fails with.
    MostNames,     ///< How many names directories give, from then on, before they fail with EIO.
    NoTypes,       ///< Names come without their type.
    CallError,     ///< What failingCall fails with, on each thread.
    Questions,     ///< Not a fault: how many questions there were.
    FaultCount
};
extern std::atomic<int> faults[FaultCount];
extern std::atomic<const char*> failingCall; ///< "write" or another call; null for none.
void endFaults();

/// What the first thread asked the file system for since this was called last, "statx /tmp" and the like. The
/// first time begins it.
QStringList takeCalls();
