#include "browser/DirectoryRows.h"

#include "catalogue/FileManager.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace Halvern::UI {

using Base::FileHandle;

namespace {

constexpr std::size_t TypicalRowCount = 4000;

RowKey keyOf(const FileInfo& entry, const DirectoryRows& rows, const FileManager& manager)
{
    RowKey key;
    key.name = entry.fileName();
    key.kind = entry.isDirectory() ? RowKey::Folder : RowKey::File;
    if (key.kind == RowKey::Folder || !entry.isSequence())
        return key;
    key.kind = RowKey::Sequence;
    const auto& members = entry.sequenceFiles();
    if (!rows.isEvaluated)
        key.frames = &members;
    if (entry.parentSequence()) {
        key.firstFrame = entry.startFrame();
        key.lastFrame = entry.endFrame();
    } else if ((rows.isSplit || rows.isEvaluated) && !members.empty()) {
        key.firstFrame = members.begin()->first;
        key.lastFrame = members.rbegin()->first;
    }
    const FileInfo* first = members.empty() ? nullptr : members.begin()->second;
    if (rows.isEvaluated && first && manager.owns(first))
        key.firstFile = first->fileName();
    return key;
}

} // namespace

DirectoryRows::DirectoryRows()
{
    entries.reserve(TypicalRowCount);
}

DirectoryRows::DirectoryRows(FileManager& manager, FileHandle::ListType type)
    : DirectoryRows()
{
    isSplit = type == FileHandle::SplitSequences || type == FileHandle::RegisteredSplitSequences;
    manager.buildRunningList(&entries, type);
    names = manager.takeNameOrder();
    if (type != FileHandle::AllFiles || names.size() != entries.size())
        names = NameOrder(entries);
    names.apply(entries);
}

DirectoryRows::DirectoryRows(std::vector<FileInfo*> evaluated)
    : entries(std::move(evaluated))
    , names(entries, NameOrder::AsAdded)
    , isFixed(false)
    , isEvaluated(true)
{
}

const char* DirectoryRows::name(std::size_t row) const
{
    return isFixed && row < names.size() ? names.name(row) : entries[row]->displayName();
}

bool DirectoryRows::isInNameOrder() const
{
    const std::vector<int>& ranks = names.ranks();
    return !isEvaluated && (ranks.empty() || ranks.front() != NameOrder::NoRank) &&
           std::adjacent_find(ranks.begin(), ranks.end(), std::greater_equal<>()) == ranks.end();
}

std::vector<RowKey> DirectoryRows::keys(const FileManager& manager) const
{
    std::vector<RowKey> keys;
    keys.reserve(entries.size());
    for (const FileInfo* entry : entries)
        keys.push_back(entry ? keyOf(*entry, *this, manager) : RowKey());
    return keys;
}

} // namespace Halvern::UI
