#include "catalogue/EntryPool.h"

#include <cstdlib>
#include <new>

namespace Halvern::UI {

namespace {

constexpr std::size_t BlockBytes = EntryPool::BlockSize * sizeof(FileInfo);

FileInfo* newBlock()
{
    void* memory = std::malloc(BlockBytes);
    if (!memory)
        throw std::bad_alloc();
    return static_cast<FileInfo*>(memory);
}

} // namespace

EntryPool::~EntryPool()
{
    for (std::size_t i = 0; i < m_constructed; ++i)
        m_blocks[i / BlockSize][i % BlockSize].~FileInfo();
    for (FileInfo* block : m_blocks)
        std::free(block);
    for (FileInfo* block : m_prepared)
        std::free(block);
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
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_prepared.empty()) {
            FileInfo* block = m_prepared.back();
            m_prepared.pop_back();
            return block;
        }
        ++m_blockCount;
    }
    return newBlock();
}

bool EntryPool::prepareBlock(std::size_t entries)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if ((m_blockCount + 1) * BlockSize > entries)
            return false;
        ++m_blockCount;
    }
    constexpr std::size_t PageSize = 4096;
    FileInfo* block = newBlock();
    auto* const bytes = reinterpret_cast<volatile char*>(block);
    for (std::size_t i = 0; i < BlockBytes; i += PageSize)
        bytes[i] = 0;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_prepared.push_back(block);
    return true;
}

} // namespace Halvern::UI
