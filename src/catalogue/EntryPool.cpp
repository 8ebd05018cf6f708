#include "catalogue/EntryPool.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr std::size_t PageSize = 4096;
constexpr std::size_t BlockBytes = EntryPool::BlockSize * sizeof(FileInfo);
constexpr std::size_t MostBlocksAtOnce = 16;
static_assert(BlockBytes % PageSize == 0, "blocks begin with a page");

// Asked for together, pages come sooner than touched one by one. Meanwhile no other thread gets memory from
// the system or gives any back, so that they are not too many.
constexpr std::size_t BytesAtOnce = 64 * PageSize;

// The part of the block that begins there. Returns where the next begins.
std::size_t putInPlace(FileInfo* block, std::size_t begin)
{
    const std::size_t end = std::min(begin + BytesAtOnce, BlockBytes);
    char* const bytes = reinterpret_cast<char*>(block);
#ifdef MADV_POPULATE_WRITE
    if (::madvise(bytes + begin, end - begin, MADV_POPULATE_WRITE) == 0)
        return end;
#endif
    for (std::size_t i = begin; i < end; i += PageSize)
        const_cast<volatile char*>(bytes)[i] = 0;
    return end;
}

} // namespace

EntryPool::~EntryPool()
{
    for (std::size_t i = 0; i < m_constructed; ++i)
        m_blocks[i / BlockSize][i % BlockSize].~FileInfo();
    for (FileInfo* memory : m_memory)
        std::free(memory);
}

FileInfo* EntryPool::create()
{
    const std::size_t block = m_used / BlockSize;
    if (block == m_blocks.size())
        m_blocks.push_back(takeBlock());
    FileInfo* place = m_blocks[block] + m_used % BlockSize;
    if (m_used++ < m_constructed)
        place->~FileInfo();
    else
        ++m_constructed;
    return new (place) FileInfo();
}

void EntryPool::clear()
{
    m_used = 0;
}

std::size_t EntryPool::blockCount() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_blockCount;
}

FileInfo* EntryPool::takeBlock()
{
    FileInfo* block = nullptr;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_prepared.empty()) {
            block = m_prepared.back();
            m_prepared.pop_back();
            return block;
        }
        block = newBlock();
    }
    if (!block)
        throw std::bad_alloc();
    if (m_blocks.empty()) // most directories need only some of the first
        return block;
    for (std::size_t inPlace = 0; inPlace < BlockBytes;)
        inPlace = putInPlace(block, inPlace);
    return block;
}

bool EntryPool::prepare(std::size_t entries)
{
    if (!m_preparing) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if ((m_blockCount + 1) * BlockSize > entries)
            return false;
        m_preparing = newBlock();
        m_inPlace = 0;
    }
    if (!m_preparing)
        return false;
    m_inPlace = putInPlace(m_preparing, m_inPlace);
    if (m_inPlace == BlockBytes) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_prepared.push_back(std::exchange(m_preparing, nullptr));
    }
    return true;
}

// Obtaining memory waits while another thread has pages put in place. Blocks are therefore obtained several
// at once, as many as there are already, within a limit. Null where there is no memory.
FileInfo* EntryPool::newBlock()
{
    if (m_unused == 0) {
        std::size_t blocks = std::min(std::max<std::size_t>(m_blockCount, 1), MostBlocksAtOnce);
        m_memory.reserve(m_memory.size() + 1);
        void* memory = std::aligned_alloc(PageSize, blocks * BlockBytes);
        if (!memory && blocks > 1) {
            blocks = 1;
            memory = std::aligned_alloc(PageSize, BlockBytes);
        }
        if (!memory)
            return nullptr;
        m_next = static_cast<FileInfo*>(memory);
        m_memory.push_back(m_next);
        m_unused = blocks;
    }
    ++m_blockCount;
    --m_unused;
    return std::exchange(m_next, m_next + BlockSize);
}

} // namespace Halvern::UI
