#pragma once

#include "base/FileHandle.h"
#include "browser/RowChanges.h"
#include "catalogue/NameOrder.h"

#include <vector>

namespace Halvern::UI {

class FileInfo;
class FileManager;

/// The rows of a directory in the order of the model. Entries are borrowed, and an evaluator's may be null.
struct DirectoryRows
{
    DirectoryRows();
    /// The rows of a list type, by name if names have an order. Throws `std::bad_alloc`.
    DirectoryRows(FileManager& manager, Base::FileHandle::ListType type);
    /// As an evaluator gave them. Their names may change at any time.
    explicit DirectoryRows(std::vector<FileInfo*> evaluated);

    /// The name of a row with an entry, as it is displayed, without range and "/".
    const char* name(std::size_t row) const;
    /// What each row is recognised by. The texts belong to the entries, and to those of @p manager.
    std::vector<RowKey> keys(const FileManager& manager) const;

    /// Whether sorting by name leaves the rows as they are; names with equal keys would change places.
    bool isInNameOrder() const;

    std::vector<FileInfo*> entries;
    NameOrder names;      ///< Of the entries, as they were when the rows were built.
    bool isFixed = true;  ///< Whether names still hold.
    bool isSplit = false; ///< Whether several rows may be runs of one sequence.
    bool isEvaluated = false;
};

} // namespace Halvern::UI
