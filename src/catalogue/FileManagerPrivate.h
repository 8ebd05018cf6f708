#pragma once

#include "catalogue/FileGatherer.h"
#include "catalogue/FileManager.h"
#include "catalogue/NameOrder.h"
#include "catalogue/SequenceIndex.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <new>
#include <unistd.h>

namespace Halvern::UI {

/// What a manager reads with, and what it has read.
struct FileManager::Private
{
    static constexpr qint64 TurnShare = 8; // milliseconds

    // Qt delivers all that was posted before it looks at the mouse or a timer again, and the worker can post
    // as fast as this thread takes it. So there is a share for each turn of the event loop; what is beyond it
    // waits for the timer, which becomes due in the turn and is served in the next.
    void beginTurn()
    {
        turn.start();
        arrivalsTimer.start(1);
    }
    bool turnIsOver() const { return !readingSynchronously && turn.elapsed() >= TurnShare; }

    // False if memory for it could not be had, which ends the read.
    template <class Work>
    bool attempt(Work work)
    {
        try {
            work();
            return true;
        } catch (const std::bad_alloc&) {
            gatherer.stop();
            nameOrder.reset();
            readError = ENOMEM;
            return false;
        }
    }

    void insert(const NameBatch& names);
    void takeNames();
    bool prepareList();
    void trimPool();

    const pid_t process = ::getpid();
    QPointer<FileManager> self; // copied without an allocation
    std::string currentDirectory;
    SequenceIndex index;
    FileGatherer gatherer{[this](std::size_t names) { return index.pool().prepare(names); }};
    QTimer arrivalsTimer; // its timeout begins the next turn
    QElapsedTimer turn;
    FileGatherer::NameQueue::BatchPointer pendingNames;
    std::unique_ptr<NameOrder> nameOrder; // of all files; null if it is not wanted
    int readError = 0;
    unsigned generation = 0;
    bool reevaluationEnabled = false;
    bool namesOrdered = false;
    bool readingSynchronously = false;
};

} // namespace Halvern::UI
