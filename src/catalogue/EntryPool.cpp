#include "catalogue/EntryPool.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr std::size_t PageSize = 4096;
constexpr std::size_t BlockBytes = EntryPool::BlockSize * sizeof(FileInfo);
static_assert(BlockBytes % PageSize == 0, "blocks begin with a page");
constexpr std::size_t FewMembers = 16; // are destroyed at once

} // namespace

struct EntryPool::Idle
{
    ~Idle()
    {
        for (const Block& block : blocks)
            free(block);
    }
    static void destroyEntries(const Block& block) { std::destroy_n(block.entries, block.constructed); }
    static void free(const Block& block)
    {
        destroyEntries(block);
        std::free(block.entries);
    }

    std::mutex mutex;
    std::vector<Block> blocks; // guarded by mutex; those that are to be trimmed come last
};

EntryPool::EntryPool()
    : m_idle(std::make_shared<Idle>())
{
}

EntryPool::~EntryPool()
{
    std::for_each(m_blocks.begin(), m_blocks.end(), &Idle::free);
}

FileInfo* EntryPool::create()
{
    if (m_used == m_blocks.size() * BlockSize) {
        m_blocks.reserve(m_used / BlockSize + 1);
        m_blocks.push_back(takeBlock());
    }
    Block& block = m_blocks[m_used / BlockSize];
    const std::size_t index = m_used % BlockSize;
    FileInfo* place = block.entries + index;
    if (index < block.constructed) {
        if (place->sequenceFiles().size() > FewMembers)
            m_oldMembers.push_back(place->takeMembers());
        place->~FileInfo();
    } else {
        ++block.constructed;
    }
    ++m_used;
    return new (place) FileInfo();
}

void EntryPool::clear()
{
    m_used = 0;
}

EntryPool::Block EntryPool::takeBlock()
{
    Block block{nullptr, 0};
    {
        const std::lock_guard<std::mutex> lock(m_idle->mutex);
        if (!m_idle->blocks.empty()) {
            block = m_idle->blocks.back();
            m_idle->blocks.pop_back();
        }
    }
    if (!block.entries) {
        block.entries = static_cast<FileInfo*>(std::aligned_alloc(PageSize, BlockBytes));
        if (!block.entries)
            throw std::bad_alloc();
        ++m_blockCount;
    }
#ifdef MADV_POPULATE_WRITE
    // All pages at once come sooner than one by one. Of the first block most directories need only a part.
    if (block.constructed == 0 && !m_blocks.empty())
        ::madvise(block.entries, BlockBytes, MADV_POPULATE_WRITE);
#endif
    return block;
}

std::function<void()> EntryPool::trimming()
{
    const std::size_t kept = (m_used + BlockSize - 1) / BlockSize + SpareBlocks;
    if (m_blocks.size() <= kept)
        return nullptr;
    {
        const auto surplus = m_blocks.begin() + static_cast<std::ptrdiff_t>(kept);
        const std::lock_guard<std::mutex> lock(m_idle->mutex);
        // What the function puts back later fits without an allocation.
        m_idle->blocks.reserve(m_blockCount);
        m_idle->blocks.insert(m_idle->blocks.end(), surplus, m_blocks.end());
        m_blocks.erase(surplus, m_blocks.end());
    }
    return [idle = m_idle] {
        std::unique_lock<std::mutex> lock(idle->mutex);
        while (!idle->blocks.empty() && idle->blocks.back().constructed > 0) {
            Block block = idle->blocks.back();
            idle->blocks.pop_back();
            lock.unlock();
            Idle::destroyEntries(block);
            ::madvise(block.entries, BlockBytes, MADV_DONTNEED);
            block.constructed = 0;
            lock.lock();
            idle->blocks.insert(idle->blocks.begin(), block);
        }
    };
}

} // namespace Halvern::UI
