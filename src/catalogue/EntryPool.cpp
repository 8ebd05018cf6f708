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

struct EntryPool::Block
{
    void destroyEntries()
    {
        std::destroy_n(entries, constructed);
        constructed = 0;
    }
    // The system gives pages sooner if it is asked for many. Meanwhile no other thread gets memory, so that
    // it is not asked for all of them.
    void putInMemory() const
    {
#ifdef MADV_POPULATE_WRITE
        constexpr std::size_t AtOnce = 8 * PageSize;
        for (std::size_t begin = 0; begin < BlockBytes; begin += AtOnce)
            ::madvise(reinterpret_cast<char*>(entries) + begin, std::min(AtOnce, BlockBytes - begin),
                      MADV_POPULATE_WRITE);
#endif
    }

    FileInfo* entries = nullptr;
    std::size_t constructed = 0; // the first so many
};

/// Blocks that are not in use. Any thread may ask for them.
struct EntryPool::Idle
{
    using Blocks = std::vector<Block>;

    ~Idle()
    {
        for (const Blocks& blocks : {std::ref(m_ready), std::ref(m_bare)}) {
            for (Block block : blocks) {
                block.destroyEntries();
                std::free(block.entries);
            }
        }
    }
    static Block takeFrom(Blocks& blocks)
    {
        if (blocks.empty())
            return {};
        const Block block = blocks.back();
        blocks.pop_back();
        return block;
    }
    // A block without its pages; null if there is no memory.
    Block takeBare()
    {
        Block block = takeFrom(m_bare);
        if (block.entries)
            return block;
        // So that giving blocks back needs no memory.
        m_ready.reserve(m_obtained + 1);
        m_bare.reserve(m_obtained + 1);
        block.entries = static_cast<FileInfo*>(std::aligned_alloc(PageSize, BlockBytes));
        m_obtained += block.entries ? 1 : 0;
        return block;
    }
    void give(Blocks& to, Block block)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        to.push_back(block);
    }

    std::mutex m_mutex;         // guards what follows, and is held in takeFrom() and takeBare()
    Blocks m_ready;             // with their pages
    Blocks m_bare;              // without
    std::size_t m_obtained = 0; // blocks of the pool, here and in use
    bool m_isTrimming = false;
};

EntryPool::EntryPool()
    : m_idle(std::make_shared<Idle>())
{
}

EntryPool::~EntryPool()
{
    for (Block& block : m_blocks) {
        block.destroyEntries();
        std::free(block.entries);
    }
}

FileInfo* EntryPool::create()
{
    if (m_used == m_blocks.size() * BlockSize)
        m_blocks.push_back(takeBlock());
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

bool EntryPool::owns(const FileInfo* entry) const
{
    const std::less<> isBefore; // also for pointers into different blocks
    return std::any_of(m_blocks.begin(), m_blocks.end(), [&](const Block& block) {
        return !isBefore(entry, block.entries) && isBefore(entry, block.entries + BlockSize);
    });
}

void EntryPool::clear()
{
    m_used = 0;
}

std::size_t EntryPool::blockCount() const
{
    const std::lock_guard<std::mutex> lock(m_idle->m_mutex);
    return m_idle->m_obtained;
}

EntryPool::Block EntryPool::takeBlock()
{
    if (m_blocks.size() == m_blocks.capacity())
        m_blocks.reserve(2 * m_blocks.size() + 1);
    std::unique_lock<std::mutex> lock(m_idle->m_mutex);
    m_idle->m_isTrimming = false;
    Block block = Idle::takeFrom(m_idle->m_ready);
    const bool isReady = block.entries;
    if (!isReady)
        block = m_idle->takeBare();
    lock.unlock();
    if (!block.entries)
        throw std::bad_alloc();
    if (!isReady && !m_blocks.empty()) // most directories need only a part of the first
        block.putInMemory();
    return block;
}

bool EntryPool::prepare(std::size_t entries)
{
    std::unique_lock<std::mutex> lock(m_idle->m_mutex);
    m_idle->m_isTrimming = false;
    const std::size_t inMemory = m_idle->m_obtained - m_idle->m_bare.size();
    const Block block = (inMemory + 1) * BlockSize <= entries ? m_idle->takeBare() : Block();
    lock.unlock();
    if (!block.entries)
        return false;
    block.putInMemory();
    m_idle->give(m_idle->m_ready, block);
    return true;
}

std::function<void()> EntryPool::trimming()
{
    const std::size_t kept = (m_used + BlockSize - 1) / BlockSize + SpareBlocks;
    for (; m_blocks.size() > kept; m_blocks.pop_back())
        m_idle->give(m_idle->m_ready, m_blocks.back());
    const std::lock_guard<std::mutex> lock(m_idle->m_mutex);
    m_idle->m_isTrimming = !m_idle->m_ready.empty();
    if (!m_idle->m_isTrimming)
        return nullptr;
    return [idle = m_idle] {
        for (;;) {
            std::unique_lock<std::mutex> idleLock(idle->m_mutex);
            Block block = idle->m_isTrimming ? Idle::takeFrom(idle->m_ready) : Block();
            idleLock.unlock();
            if (!block.entries)
                return;
            block.destroyEntries();
            ::madvise(block.entries, BlockBytes, MADV_DONTNEED);
            idle->give(idle->m_bare, block);
        }
    };
}

} // namespace Halvern::UI
