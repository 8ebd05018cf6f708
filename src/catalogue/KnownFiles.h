#pragma once

#include "catalogue/FileInfoWrapper.h"
#include "catalogue/NameBatch.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Halvern::UI {

/// The names of files that were made, removed or changed; nothing if any file may have been.
using ChangedNames = std::optional<std::set<std::string, std::less<>>>;

/// What a read of a directory found, and which of it may have changed since. The next read of the directory
/// asks the disk only for that.
class KnownFiles
{
public:
    struct File
    {
        const FileInfoWrapper* info = nullptr; ///< As it was read, borrowed; null if nothing is known.
        bool mayHaveChanged = true;
    };
    using Names = std::vector<std::shared_ptr<const NameBatch>>;

    /// The next file in reading order. Throws `std::bad_alloc`.
    void add(const char* name, const FileInfoWrapper& info);
    /// @p names changed since the read began. Changes may have gone unnoticed, so a part of the other files
    /// counts as changed too: another part with each @p round, and each file in one of 16 rounds.
    void setChanged(ChangedNames names, unsigned round);
    /// What is known of each of @p names. Quick if most of them are in the order in which the files were
    /// added. Ends early if @p keepRunning becomes false.
    std::vector<File> find(const Names& names, const std::atomic<bool>& keepRunning) const;
    std::size_t size() const { return m_infos.size(); }

private:
    bool mayHaveChanged(std::size_t index) const;

    NameBatch m_names;
    std::vector<FileInfoWrapper> m_infos;
    ChangedNames m_changed;
    unsigned m_round = 0;
};

} // namespace Halvern::UI
