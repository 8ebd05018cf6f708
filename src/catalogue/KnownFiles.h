#pragma once

#include "catalogue/FileInfoWrapper.h"
#include "catalogue/NameBatch.h"

#include <atomic>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Halvern::UI {

/// The names of files that were made, removed or changed; nothing if any file may have been.
using ChangedNames = std::optional<std::set<std::string>>;

/// What a read of a directory found, and which of it may have changed since. The next read of the directory
/// asks the disk only for that.
class KnownFiles
{
public:
    struct File
    {
        const FileInfoWrapper* info; ///< As it was read, borrowed.
        bool mayHaveChanged;
    };
    /// The names are borrowed.
    using ByName = std::unordered_map<std::string_view, File>;

    /// The next file in reading order. Throws `std::bad_alloc`.
    void add(const char* name, const FileInfoWrapper& info);
    /// @p names changed since the read began. Changes may have gone unnoticed, so a part of the other files
    /// counts as changed too: another part with each @p round, and each file in one of 16 rounds.
    void setChanged(ChangedNames names, unsigned round);
    /// All files that were read. Takes time in proportion to their number, and ends early if @p keepRunning
    /// becomes false.
    ByName byName(const std::atomic<bool>& keepRunning) const;

private:
    NameBatch m_names;
    std::vector<FileInfoWrapper> m_infos;
    ChangedNames m_changed;
    unsigned m_round = 0;
};

} // namespace Halvern::UI
