#pragma once

#include "base/Export.h"

#include <QPointer>
#include <memory>
#include <string>
#include <vector>

namespace Halvern::UI {

class EntryPool;
class FileInfo;
class FileManager;

/// Lets a host decide what is a sequence. A browser that holds an evaluator hands it the plain list of files
/// whenever it builds its rows, and shows the list that comes back.
///
/// The host owns the evaluator. It may destroy it at any time, from within evaluateFiles() too: a browser
/// that held it goes on with the built-in rules, and an answer that came with its end is not looked at.
/// Entries that buildFileSequence() makes belong to the manager of the browser that asked last, and die with
/// that manager's next read. While the evaluator has no manager they belong to the evaluator itself.
class HVCOREUI_EXPORT FileSequenceEvaluator
{
public:
    FileSequenceEvaluator();
    /// A copy serves the same manager; entries that the other one owns stay with the other one.
    FileSequenceEvaluator(const FileSequenceEvaluator& other);
    FileSequenceEvaluator& operator=(const FileSequenceEvaluator& other);
    virtual ~FileSequenceEvaluator();

    /// Given every file of a directory in reading order, returns the rows to show. All pointers are borrowed;
    /// null entries are not followed.
    virtual std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) = 0;

    /// Makes a sequence entry that is shown under @p name as it is given, with the k-th of @p files as its
    /// frame @p frames [k]; the longer list is read as far as the shorter one goes. Null files take their
    /// frame and add nothing. Size and time are the members' sum and latest.
    FileInfo* buildFileSequence(const std::string& name, const std::vector<int>& frames,
                                std::vector<FileInfo*> files) const;

    /// Stores the sum of the sizes and the latest of the times of the members of @p sequence in it, and marks
    /// it as neither directory nor writable. @p files is not read.
    void _collapseInfo(FileInfo* sequence, std::vector<FileInfo*> files) const;

    /// Says whose entries are being grouped; the manager may die before the evaluator does.
    void setManager(FileManager* manager);
    /// Expires with the evaluator, for those who hold it without owning it.
    std::weak_ptr<const void> lifetime() const { return m_lifetime; }
    /// Keeps the memory of the entries that buildFileSequence() has made, and of all entries of the present
    /// manager, while it is held. It does not keep them from being used again by the manager's next read.
    std::shared_ptr<const void> entryStorage() const;

private:
    QPointer<FileManager> m_manager;
    std::shared_ptr<EntryPool> m_ownEntries;
    std::shared_ptr<const bool> m_lifetime; // never shared: it lives as long as the evaluator
};

} // namespace Halvern::UI
