// What is chosen: selection, pick list and the queue actions.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/FilesMenu.h"
#include "browser/ProxyModel.h"
#include "widgets/FilePathEdit.h"

namespace Halvern::UI {

// The selected rows, in selection order, as far as there is an entry to follow.
QModelIndexList FileBrowser::selectedSourceRows() const
{
    QModelIndexList rows;
    for (const QModelIndex& selected : filesList->selectionModel()->selectedRows()) {
        const QModelIndex source = proxyModel->mapToSource(selected);
        if (directoryModel->entry(source.row()))
            rows.append(source);
    }
    return rows;
}

QStringList FileBrowser::selectedFiles() const
{
    QStringList files;
    if (multipleSelections) {
        for (const QModelIndex& row : selectedSourceRows())
            files.append(normalizeFile(directoryModel->getFullFilePath(row)));
    }
    if (!multipleSelections || pickList.isEmpty())
        files.append(normalizeFile(filenameEdit->text()));
    files.append(pickList);
    removeListDuplicates(files);
    return files;
}

void FileBrowser::fileSelectionChanged()
{
    if (filesList->selectionModel()->selectedRows().size() != 1)
        return;
    const QModelIndexList rows = selectedSourceRows();
    if (rows.isEmpty())
        return;
    const int row = rows.first().row();
    filenameEdit->setText(normalizeFile(directoryModel->getFullFilePath(row)));
    // Whoever listens to the field may have gone to another directory by now.
    const FileInfo* entry = directoryModel->entry(row);
    if (!entry)
        return;
    // A copy: a receiver that changes the directory would take the entry from those behind it.
    const FileInfo info = *entry;
    const QSignalBlocker blocker(filenameEdit);
    emit fileSelected(info, currentDirectory);
}

void FileBrowser::fileClicked(QModelIndex index)
{
    const FileInfo* info = directoryModel->entry(proxyModel->mapToSource(index).row());
    if (info && info->isDirSafe(currentDirectory))
        setDirectory(QDir(directoryModel->getFullFilePath(*info)), false, true);
}

void FileBrowser::fileDoubleClicked(QModelIndex index)
{
    const FileInfo* entry = directoryModel->entry(proxyModel->mapToSource(index).row());
    if (!entry)
        return;
    const FileInfo info = *entry;
    const QPointer<FileBrowser> self(this);
    emit fileDoubleClick(info);
    if (self)
        emit fileDoubleClick();
}

void FileBrowser::hoverItem(QModelIndex index)
{
    const int row = proxyModel->mapToSource(index).row();
    if (row == directoryModel->hoveredRow() || !directoryModel->entry(row))
        return;
    directoryModel->setHoveredRow(row);
    directoryModel->refreshModel(directoryModel->index(row, 0),
                                 directoryModel->index(row, DirectoryModel::ColumnCount - 1));
}

void FileBrowser::nextClicked()
{
    const QModelIndexList rows = selectedSourceRows();
    for (const QModelIndex& row : rows)
        pickList.append(normalizeFile(directoryModel->getFullFilePath(row)));
    const bool takesDirectory =
        selectionType == SelectionType::Directories || selectionType == SelectionType::FilesAndDirectories;
    if (rows.isEmpty() && takesDirectory)
        pickList.append(normalizeFile(directory().absolutePath()));
    // The selection stays, so that a second press is about the same rows.
    filesList->keepPlace(FilesList::Keep::Selection, [this] { showQueue(); });
}

void FileBrowser::addItemToQueue()
{
    filesMenu->updateEditData(false);
    QSet<QString> queued = queuedPaths();
    for (const FileInfo* info : filesMenu->items()) {
        const bool wanted = selectionType == SelectionType::Files ||
                            selectionType == SelectionType::FilesAndDirectories ||
                            (selectionType == SelectionType::Directories && info->isDirectory());
        const QString path = directoryModel->getFullFilePath(*info);
        if (!wanted || queued.contains(path))
            continue;
        pickList.append(normalizeFile(path));
        queued.insert(pickList.last());
    }
    finishQueueing();
}

void FileBrowser::removeItemFromQueue()
{
    filesMenu->updateEditData(false);
    for (const FileInfo* info : filesMenu->items())
        pickList.removeOne(normalizeFile(directoryModel->getFullFilePath(*info)));
    finishQueueing();
}

// To be asked for many rows; the list itself would be searched for each.
QSet<QString> FileBrowser::queuedPaths() const
{
    QSet<QString> paths;
    for (const QString& path : pickList)
        paths.insert(path);
    return paths;
}

void FileBrowser::finishQueueing()
{
    filesMenu->finishEditing();
    filesList->keepPlace(FilesList::Keep::CurrentRow, [this] { showQueue(); });
}

// Shows the queued colours as they are now.
void FileBrowser::showQueue()
{
    if (directoryModel->isListReady())
        directoryModel->resetModel();
    filesList->setFocus(Qt::MouseFocusReason);
}

void FileBrowser::fileMenuClosed()
{
    filesMenu->enableActions();
}

void FileBrowser::accept()
{
    emit accepted();
}

void FileBrowser::reject()
{
    emit rejected();
}

} // namespace Halvern::UI
