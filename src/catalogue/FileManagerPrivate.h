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

struct FileManager::Private
{
    static constexpr qint64 TurnShare = 8; // milliseconds

    // Qt delivers all posted events before it looks at the mouse or a timer again, and the worker can post as
    // fast as this thread works. So batches get a share of each turn of the event loop. The rest waits for
    // the timer, which becomes due in the turn and fires in the next.
    void beginTurn()
    {
        m_turn.start();
        m_arrivalsTimer.start(1);
    }
    bool turnIsOver() const { return !m_readingSynchronously && m_turn.elapsed() >= TurnShare; }

    // False if there was not enough memory, which ends the read.
    template <class Work>
    bool attempt(Work work)
    {
        try {
            work();
            return true;
        } catch (const std::bad_alloc&) {
            m_gatherer.stop();
            m_nameOrder.reset();
            m_readError = ENOMEM;
            return false;
        }
    }

    void insert(const NameBatch& names);
    void takeNames();
    bool prepareList();
    void trimPool();

    const pid_t m_process = ::getpid();
    QPointer<FileManager> m_self; // copied without an allocation
    std::string m_currentDirectory;
    SequenceIndex m_index;
    FileGatherer m_gatherer{[this](std::size_t names) { return m_index.pool().prepare(names); }};
    QTimer m_arrivalsTimer; // its timeout begins the next turn
    QElapsedTimer m_turn;
    FileGatherer::NameQueue::BatchPointer m_pendingNames;
    std::unique_ptr<NameOrder> m_nameOrder; // of all files; null if it is not wanted
    int m_readError = 0;
    unsigned m_generation = 0;
    bool m_reevaluationEnabled = false;
    bool m_namesOrdered = false;
    bool m_readingSynchronously = false;
};

} // namespace Halvern::UI
