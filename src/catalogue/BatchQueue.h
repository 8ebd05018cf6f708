#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Halvern::UI {

/// Passes records from one worker thread to the GUI thread in batches of a fixed size.
///
/// The worker fills one batch after the other; the GUI thread takes complete batches only, in order, and may
/// give them back to be filled again. Throws `std::bad_alloc` only where records or batches are added.
template <class Record>
class BatchQueue
{
public:
    using Batch = std::vector<Record>;
    using BatchPointer = std::shared_ptr<Batch>;
    using Batches = std::list<BatchPointer>; // empty without an allocation

    static constexpr std::size_t MostSpares = 4; ///< Batches that are kept to be filled again.

    /// @p batchSize is the number of records of a full batch.
    explicit BatchQueue(std::size_t batchSize)
        : m_batchSize(batchSize)
    {
    }

    /// Worker only: adds a record. True if it completed a batch.
    bool append(const Record& record)
    {
        if (!m_filling)
            m_filling = freshBatch();
        m_filling->push_back(record);
        return m_filling->size() == m_batchSize && finish();
    }

    /// Worker only: completes a batch that holds fewer records. False if there is none.
    bool finish()
    {
        if (!m_filling)
            return false;
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_complete.push_back(m_filling);
        m_filling.reset();
        return true;
    }

    /// Any thread: the complete batches that wait to be taken, at this moment.
    std::size_t waiting() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_complete.size();
    }

    /// GUI thread only: the next complete batch, or null.
    BatchPointer take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return takeFrom(m_complete);
    }

    /// GUI thread only: @p batch is not needed any more.
    void giveBack(BatchPointer batch)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_spares.size() < MostSpares)
            m_spares.push_back(std::move(batch));
    }

    /// Any thread: frees what was given back and not filled again.
    void dropSpares()
    {
        Batches dropped; // freed without the lock
        const std::lock_guard<std::mutex> lock(m_mutex);
        dropped.swap(m_spares);
    }

    /// GUI thread only: whether a complete batch waits to be taken.
    bool hasNext() const { return waiting() > 0; }

    /// GUI thread only, while no worker runs: forgets all batches. Those that were complete are returned, so
    /// that another thread can free them.
    Batches reset()
    {
        m_filling.reset();
        return std::exchange(m_complete, {});
    }

private:
    static BatchPointer takeFrom(Batches& batches)
    {
        if (batches.empty())
            return nullptr;
        BatchPointer batch = std::move(batches.front());
        batches.pop_front();
        return batch;
    }

    BatchPointer freshBatch()
    {
        BatchPointer batch;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            batch = takeFrom(m_spares);
        }
        if (!batch)
            batch = std::make_shared<Batch>();
        batch->clear();
        batch->reserve(m_batchSize);
        return batch;
    }

    const std::size_t m_batchSize;
    BatchPointer m_filling; // worker only
    mutable std::mutex m_mutex;
    Batches m_complete; // guarded by m_mutex
    Batches m_spares;   // guarded by m_mutex
};

} // namespace Halvern::UI
