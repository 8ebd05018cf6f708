#pragma once

#include "base/Export.h"
#include "catalogue/FileInfo.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace Halvern::UI {

/// Makes and owns entries in contiguous blocks. Entries stay where they are until clear(); the memory of a
/// block is kept for the next entries until the pool goes. One thread at a time, but for prepare().
class HVCOREUI_EXPORT EntryPool
{
public:
    static constexpr std::size_t BlockSize = 1024; ///< Entries in a block.

    EntryPool() = default;
    EntryPool(const EntryPool&) = delete;
    EntryPool& operator=(const EntryPool&) = delete;
    ~EntryPool();

    /// A fresh entry, FileInfo(), owned by the pool.
    FileInfo* create();
    /// Gives up every entry and begins again with the first block. What an entry owns is freed when its place
    /// is used again, or when the pool goes, so that this takes no time however many entries there are.
    void clear();
    /// Blocks in use or prepared so far; grows only where more entries are alive than ever before.
    std::size_t blockCount() const;

    /// Goes on with getting a block ahead of its use, with all its memory in place: the system is slow to
    /// give memory that is touched for the first time. Each call does a little of it, for milliseconds at
    /// most. A block that was begun is completed; false where no other is to be begun: @p entries entries
    /// would not fill it, besides those that the pool has, or there is no memory. May be called by another
    /// thread while the pool lives.
    bool prepare(std::size_t entries);

private:
    FileInfo* takeBlock();
    FileInfo* newBlock();

    std::vector<FileInfo*> m_blocks; // raw memory in use; m_constructed entries of it are constructed
    std::size_t m_used = 0;          // the others are left from before clear()
    std::size_t m_constructed = 0;

    // Of the thread that prepares.
    FileInfo* m_preparing = nullptr; // the block that is not in place as a whole yet
    std::size_t m_inPlace = 0;       // bytes of it that are

    mutable std::mutex m_mutex;        // guards what is below
    std::vector<FileInfo*> m_memory;   // what was obtained: one block or several each
    FileInfo* m_next = nullptr;        // the next unused block of the last memory
    std::size_t m_unused = 0;          // unused blocks from there on
    std::vector<FileInfo*> m_prepared; // blocks that have all their memory in place
    std::size_t m_blockCount = 0;      // blocks in use or prepared
};

} // namespace Halvern::UI
