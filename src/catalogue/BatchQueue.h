#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace Halvern::UI {

/// Hands records over from one worker thread to the GUI thread in batches of a fixed size.
///
/// The worker fills one batch after the other; the GUI thread takes complete batches only, in order, and may
/// give them back to be filled again. The vector of batches is enlarged a thousand slots at a time, and that,
/// the taking and the giving back exclude each other through the in-use flag. Nothing else is ever moved
/// under a reader.
template <class Record>
class BatchQueue
{
public:
    using Batch = std::vector<Record>;
    using BatchPointer = std::shared_ptr<Batch>;

    static constexpr std::size_t SlotGrowth = 1000;
    static constexpr std::size_t MostSpares = 4; ///< Batches that are kept to be filled again.

    /// @p batchSize is the number of records of a full batch.
    explicit BatchQueue(std::size_t batchSize)
        : m_batchSize(batchSize)
    {
    }

    /// Worker only: adds a record. True when it completed a batch.
    bool append(const Record& record)
    {
        if (!m_filling)
            m_filling = freshBatch();
        m_filling->push_back(record);
        return m_filling->size() == m_batchSize && publish();
    }

    /// Worker only: completes a batch that holds fewer records. False when there is none.
    bool finish() { return m_filling && publish(); }

    /// Any thread: the complete batches that wait to be taken, at this moment.
    std::size_t waiting() const
    {
        const std::size_t taken = m_next.load(std::memory_order_relaxed);
        return m_complete.load(std::memory_order_relaxed) - taken;
    }

    /// GUI thread only: the next complete batch, or null.
    BatchPointer take()
    {
        if (!hasNext())
            return nullptr;
        const InUse guard(m_inUse);
        const std::size_t slot = m_next.load(std::memory_order_relaxed);
        m_next.store(slot + 1, std::memory_order_relaxed);
        return std::move(m_slots[slot]);
    }

    /// GUI thread only: @p batch is not needed any more.
    void giveBack(BatchPointer batch)
    {
        const InUse guard(m_inUse);
        if (m_spares.size() < MostSpares)
            m_spares.push_back(std::move(batch));
    }

    /// Any thread: frees what was given back and not filled again.
    void dropSpares()
    {
        std::vector<BatchPointer> dropped; // freed when the flag is down again
        const InUse guard(m_inUse);
        dropped.swap(m_spares);
    }

    /// GUI thread only: whether a complete batch waits to be taken.
    bool hasNext() const
    {
        return m_next.load(std::memory_order_relaxed) < m_complete.load(std::memory_order_acquire);
    }

    /// GUI thread only, while no worker runs: forgets all batches. They are returned, so that freeing them
    /// can be left to another thread.
    std::vector<BatchPointer> reset()
    {
        m_complete = 0;
        m_next = 0;
        m_filling.reset();
        return std::exchange(m_slots, {});
    }

private:
    class InUse
    {
    public:
        explicit InUse(std::atomic_flag& flag)
            : m_flag(flag)
        {
            while (m_flag.test_and_set(std::memory_order_acquire))
                std::this_thread::yield();
        }
        ~InUse() { m_flag.clear(std::memory_order_release); }
        InUse(const InUse&) = delete;
        InUse& operator=(const InUse&) = delete;

    private:
        std::atomic_flag& m_flag;
    };

    BatchPointer freshBatch()
    {
        BatchPointer batch = spareBatch();
        if (!batch)
            batch = std::make_shared<Batch>();
        batch->clear();
        batch->reserve(m_batchSize);
        return batch;
    }

    BatchPointer spareBatch()
    {
        const InUse guard(m_inUse);
        if (m_spares.empty())
            return nullptr;
        BatchPointer batch = std::move(m_spares.back());
        m_spares.pop_back();
        return batch;
    }

    bool publish()
    {
        const std::size_t slot = m_complete.load(std::memory_order_relaxed);
        if (slot == m_slots.size()) {
            const InUse guard(m_inUse);
            m_slots.resize(slot + SlotGrowth);
        }
        m_slots[slot] = std::exchange(m_filling, nullptr);
        m_complete.store(slot + 1, std::memory_order_release);
        return true;
    }

    const std::size_t m_batchSize;
    BatchPointer m_filling;                 // worker only
    std::vector<BatchPointer> m_slots;      // enlarged by the worker; guarded by m_inUse
    std::vector<BatchPointer> m_spares;     // guarded by m_inUse
    std::atomic<std::size_t> m_complete{0}; // written by the worker, read by both
    std::atomic<std::size_t> m_next{0};     // written by the GUI thread, read by both
    std::atomic_flag m_inUse = ATOMIC_FLAG_INIT;
};

} // namespace Halvern::UI
