#pragma once

#include "base/Export.h"
#include "catalogue/FileInfo.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Halvern::UI {

/// Makes and owns entries in contiguous blocks. Entries stay where they are until clear(); blocks are kept
/// for the next entries until the pool is destroyed. For one thread at a time, except for prepare() and the
/// function that trimming() returns.
class HVCOREUI_EXPORT EntryPool
{
public:
    static constexpr std::size_t BlockSize = 1024; ///< Entries in a block.
    static constexpr std::size_t SpareBlocks = 4;  ///< Unused blocks that trimming() leaves alone.
    using Members = std::map<int, FileInfo*>;

    EntryPool();
    EntryPool(const EntryPool&) = delete;
    EntryPool& operator=(const EntryPool&) = delete;
    ~EntryPool();

    /// A new entry, FileInfo(), owned by the pool. Throws `std::bad_alloc`.
    FileInfo* create();
    /// Whether @p entry is one of the pool, alive or given up.
    bool owns(const FileInfo* entry) const;
    /// Gives up all entries and begins again with the first block. What an entry owns is freed when its place
    /// is used again.
    void clear();
    /// Blocks obtained so far; grows only if more entries are alive than ever before.
    std::size_t blockCount() const;

    /// Gets one more block and its memory pages ahead of use, which takes milliseconds. False if @p entries
    /// entries do not fill another block, or there is no memory. Any thread may call it.
    bool prepare(std::size_t entries);

    /// The members of long sequences whose places were used again. Destroying them takes time.
    std::vector<Members> takeOldMembers() { return std::exchange(m_oldMembers, {}); }
    /// A function that destroys what is in unused blocks and gives their memory pages back to the system;
    /// null if there are few. It takes time and may run on any thread, also after the pool is gone. The
    /// blocks stay with the pool. It ends early if the pool needs blocks.
    std::function<void()> trimming();

private:
    struct Block;
    struct Idle;

    Block takeBlock();

    std::vector<Block> m_blocks; // those in use come first
    std::size_t m_used = 0;      // entries
    std::vector<Members> m_oldMembers;
    std::shared_ptr<Idle> m_idle; // the other blocks
};

} // namespace Halvern::UI
