#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

namespace Halvern::UI {

/// Passes complete batches from a worker thread to the GUI thread, in order. Any thread may call anything.
template <class Batch>
class BatchQueue
{
public:
    using BatchPointer = std::shared_ptr<const Batch>;

    /// Adds a batch, which does not change any more. Throws `std::bad_alloc`.
    void put(BatchPointer batch)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_batches.push_back(std::move(batch));
    }

    BatchPointer take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_batches.empty())
            return nullptr;
        BatchPointer batch = std::move(m_batches.front());
        m_batches.pop_front();
        return batch;
    }

    /// How many batches wait to be taken, at this moment.
    std::size_t waiting() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_batches.size();
    }

    void clear()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_batches.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::list<BatchPointer> m_batches; // guarded by m_mutex; empty without an allocation
};

} // namespace Halvern::UI
