#include "catalogue/EntryPool.h"

#include <cstdlib>
#include <new>

namespace Halvern::UI {

EntryPool::~EntryPool()
{
    clear();
    for (FileInfo* block : m_blocks)
        std::free(block);
}

FileInfo* EntryPool::create()
{
    const std::size_t block = m_used / BlockSize;
    if (block == m_blocks.size()) {
        void* memory = std::malloc(BlockSize * sizeof(FileInfo));
        if (!memory)
            throw std::bad_alloc();
        m_blocks.push_back(static_cast<FileInfo*>(memory));
    }
    return new (m_blocks[block] + m_used++ % BlockSize) FileInfo();
}

void EntryPool::clear()
{
    for (std::size_t i = 0; i < m_used; ++i)
        m_blocks[i / BlockSize][i % BlockSize].~FileInfo();
    m_used = 0;
}

} // namespace Halvern::UI
