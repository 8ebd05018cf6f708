#pragma once

#include "catalogue/FileInfo.h"

#include <cstddef>
#include <vector>

namespace Halvern::UI {

/// Makes and owns entries in contiguous blocks. Entries stay where they are until clear(); the memory of a
/// block is kept for the next entries until the pool goes. One thread at a time.
class EntryPool
{
public:
    static constexpr std::size_t BlockSize = 1024; ///< Entries in a block.

    EntryPool() = default;
    EntryPool(const EntryPool&) = delete;
    EntryPool& operator=(const EntryPool&) = delete;
    ~EntryPool();

    /// A fresh entry, FileInfo(), owned by the pool.
    FileInfo* create();
    /// Destroys every entry and begins again with the first block.
    void clear();
    /// Blocks obtained so far; grows only where more entries are alive than ever before.
    std::size_t blockCount() const { return m_blocks.size(); }

private:
    std::vector<FileInfo*> m_blocks; // raw memory; m_used entries of it are constructed
    std::size_t m_used = 0;
};

} // namespace Halvern::UI
