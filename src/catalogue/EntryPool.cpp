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
    // Asked for together, pages come sooner than touched one by one. Meanwhile no other thread gets memory
    // from the system or gives any back, so that they are not too many.
    void putInMemory()
    {
#ifdef MADV_POPULATE_WRITE
        constexpr std::size_t AtOnce = 64 * PageSize;
        for (std::size_t begin = 0; begin < BlockBytes && !inMemory; begin += AtOnce)
            ::madvise(reinterpret_cast<char*>(entries) + begin, std::min(AtOnce, BlockBytes - begin),
                      MADV_POPULATE_WRITE);
#endif
        inMemory = true;
    }

    FileInfo* entries = nullptr;
    std::size_t constructed = 0; // the first so many
    bool inMemory = false;       // whether it has its pages
    bool surplus = false;        // whether it is to be trimmed
};

/// Blocks that are not in use. Any thread may ask for them.
struct EntryPool::Idle
{
    ~Idle()
    {
        for (Block& block : blocks)
            block.destroyEntries();
        for (FileInfo* obtainedMemory : memory)
            std::free(obtainedMemory);
    }
    // The last idle block that is wanted; null if there is none.
    template <class Wanted>
    Block take(Wanted isWanted)
    {
        const auto found = std::find_if(blocks.rbegin(), blocks.rend(), isWanted);
        if (found == blocks.rend())
            return {};
        const Block block = *found;
        blocks.erase(std::next(found).base());
        return block;
    }
    // The system is slow to answer while another thread has pages put in place. So several blocks are asked
    // for at once, as many as there are already, within a limit.
    void obtainMemory()
    {
        memory.reserve(memory.size() + 1);
        for (unused = std::min<std::size_t>(std::max<std::size_t>(obtained, 1), 16); unused > 0;
             unused /= 2) {
            next = static_cast<FileInfo*>(std::aligned_alloc(PageSize, unused * BlockBytes));
            if (next) {
                memory.push_back(next);
                return;
            }
        }
    }
    // A block without its pages; null if there is no memory.
    Block takeOrObtain()
    {
        Block block = take([](const Block& idle) { return !idle.inMemory; });
        if (block.entries)
            return block;
        blocks.reserve(obtained + 1); // so that giving blocks back needs no memory
        if (unused == 0)
            obtainMemory();
        if (unused == 0)
            return block;
        --unused;
        ++obtained;
        block.entries = std::exchange(next, next + BlockSize);
        return block;
    }
    void give(Block block)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        blocks.push_back(block);
    }

    std::mutex mutex; // guards what follows, and is held in take() and takeOrObtain()
    std::vector<Block> blocks;
    std::size_t obtained = 0;      // blocks of the pool, here and in use
    std::vector<FileInfo*> memory; // one block or several each
    FileInfo* next = nullptr;      // the first unused block of the last memory
    std::size_t unused = 0;        // blocks from there on
};

EntryPool::EntryPool()
    : m_idle(std::make_shared<Idle>())
{
}

EntryPool::~EntryPool()
{
    for (Block& block : m_blocks)
        block.destroyEntries();
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

void EntryPool::clear()
{
    m_used = 0;
}

std::size_t EntryPool::blockCount() const
{
    const std::lock_guard<std::mutex> lock(m_idle->mutex);
    return m_idle->obtained;
}

EntryPool::Block EntryPool::takeBlock()
{
    if (m_blocks.size() == m_blocks.capacity())
        m_blocks.reserve(2 * m_blocks.size() + 1);
    std::unique_lock<std::mutex> lock(m_idle->mutex);
    Block block = m_idle->take([](const Block& idle) { return idle.inMemory; });
    if (!block.entries)
        block = m_idle->takeOrObtain();
    lock.unlock();
    if (!block.entries)
        throw std::bad_alloc();
    block.surplus = false;
    if (!m_blocks.empty()) // most directories need only a part of the first
        block.putInMemory();
    return block;
}

bool EntryPool::prepare(std::size_t entries)
{
    std::unique_lock<std::mutex> lock(m_idle->mutex);
    const auto& idle = m_idle->blocks;
    const auto inMemory = m_idle->obtained -
                          static_cast<std::size_t>(std::count_if(idle.begin(), idle.end(),
                                                                 [](const Block& b) { return !b.inMemory; }));
    Block block = (inMemory + 1) * BlockSize <= entries ? m_idle->takeOrObtain() : Block();
    lock.unlock();
    if (!block.entries)
        return false;
    block.putInMemory();
    m_idle->give(block);
    return true;
}

std::function<void()> EntryPool::trimming()
{
    const std::size_t kept = (m_used + BlockSize - 1) / BlockSize + SpareBlocks;
    for (; m_blocks.size() > kept; m_blocks.pop_back())
        m_idle->give(m_blocks.back());
    const std::lock_guard<std::mutex> lock(m_idle->mutex);
    bool any = false;
    for (Block& block : m_idle->blocks)
        any |= block.surplus = block.inMemory;
    if (!any)
        return nullptr;
    return [idle = m_idle] {
        while (true) {
            std::unique_lock<std::mutex> idleLock(idle->mutex);
            Block block = idle->take([](const Block& other) { return other.surplus; });
            idleLock.unlock();
            if (!block.entries)
                return;
            block.destroyEntries();
            ::madvise(block.entries, BlockBytes, MADV_DONTNEED);
            block.inMemory = block.surplus = false;
            idle->give(block);
        }
    };
}

} // namespace Halvern::UI
