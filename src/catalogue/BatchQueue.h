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
/// The worker fills one batch after the other; the GUI thread takes complete batches only, in order. The
/// vector of batches is enlarged a thousand slots at a time, and that and the taking exclude each other
/// through the in-use flag. Nothing else is ever moved under a reader.
template <class Record>
class BatchQueue
{
public:
    using Batch = std::vector<Record>;
    using BatchPointer = std::shared_ptr<const Batch>;

    static constexpr std::size_t SlotGrowth = 1000;

    /// @p batchSize is the number of records of a full batch.
    explicit BatchQueue(std::size_t batchSize)
        : m_batchSize(batchSize)
    {
    }

    /// Worker only: adds a record. True when it completed a batch.
    bool append(const Record& record)
    {
        if (!m_filling) {
            m_filling = std::make_shared<Batch>();
            m_filling->reserve(m_batchSize);
        }
        m_filling->push_back(record);
        return m_filling->size() == m_batchSize && publish();
    }

    /// Worker only: completes a batch that holds fewer records. False when there is none.
    bool finish() { return m_filling && publish(); }

    /// Worker only: the complete batches, each of which stays until release() or reset().
    std::size_t completeCount() const { return m_complete.load(std::memory_order_relaxed); }
    const Batch& complete(std::size_t index) const { return *m_slots[index]; }

    /// Worker only: the worker is done with a batch, in order. It goes when the GUI thread has taken it too.
    void release(std::size_t index)
    {
        std::shared_ptr<Batch> dropped; // freed when the flag is down again
        const InUse guard(m_inUse);
        m_released = index + 1;
        if (index < m_next)
            dropped.swap(m_slots[index]);
    }

    /// GUI thread only: the next complete batch, or null. The worker may go on reading it.
    BatchPointer take()
    {
        if (!hasNext())
            return nullptr;
        const InUse guard(m_inUse);
        std::shared_ptr<Batch>& slot = m_slots[m_next++];
        return m_next <= m_released ? std::move(slot) : slot;
    }

    /// GUI thread only: whether a complete batch waits to be taken.
    bool hasNext() const { return m_next < m_complete.load(std::memory_order_acquire); }

    /// GUI thread only, while no worker runs: forgets all batches. They are returned, so that freeing them
    /// can be left to another thread.
    std::vector<std::shared_ptr<Batch>> reset()
    {
        m_complete = 0;
        m_next = 0;
        m_released = 0;
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

    bool publish()
    {
        const std::size_t slot = completeCount();
        if (slot == m_slots.size()) {
            const InUse guard(m_inUse);
            m_slots.resize(slot + SlotGrowth);
        }
        m_slots[slot] = std::exchange(m_filling, nullptr);
        m_complete.store(slot + 1, std::memory_order_release);
        return true;
    }

    const std::size_t m_batchSize;
    std::shared_ptr<Batch> m_filling;            // worker only
    std::vector<std::shared_ptr<Batch>> m_slots; // enlarged by the worker; guarded by m_inUse
    std::atomic<std::size_t> m_complete{0};      // written by the worker, read by both
    std::size_t m_next = 0;                      // changed by the GUI thread; guarded by m_inUse
    std::size_t m_released = 0;                  // changed by the worker; guarded by m_inUse
    std::atomic_flag m_inUse = ATOMIC_FLAG_INIT;
};

} // namespace Halvern::UI
