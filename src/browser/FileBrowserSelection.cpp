// What is chosen: selection, pick list and the queue actions.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "browser/FilesMenu.h"
#include "browser/PickListLine.h"
#include "browser/ProxyModel.h"
#include "paths/Path.h"
#include "widgets/FilePathEdit.h"

#include <QFileInfo>
#include <algorithm>

namespace Halvern::UI {

QStringList FileBrowser::selectedFiles() const
{
    QStringList files;
    if (d->m_multipleSelections) {
        for (const QModelIndex& row : d->m_filesList->selectedSourceRows())
            files.append(normalizeFile(d->m_model->getFullFilePath(row)));
    }
    if (!d->m_multipleSelections || d->m_pickList.isEmpty())
        files.append(normalizeFile(d->m_controls.filenameEdit->text()));
    files.append(d->m_pickList.paths());
    removeListDuplicates(files);
    return files;
}

const QStringList& FileBrowser::pickedFiles() const
{
    return d->m_pickList.paths();
}

FileBrowser::Acceptance FileBrowser::acceptance() const
{
    if (d->isAwaited())
        return Acceptance::None;
    const bool acceptable = d->isAcceptable();
    if (acceptable && d->m_multipleSelections)
        return Acceptance::OpenAndNext;
    const bool queued = d->m_multipleSelections && !d->m_pickList.isEmpty();
    return acceptable || d->m_mayNotExist || queued ? Acceptance::Open : Acceptance::None;
}

// Whether selectedFiles() would leave out rows that were selected and are being read again.
bool FileBrowser::Private::isAwaited() const
{
    return m_multipleSelections && awaitsSelection();
}

bool FileBrowser::Private::awaitsSelection() const
{
    return m_model->isReading() && !m_awaited.selected.isEmpty();
}

bool FileBrowser::Private::takesFolders() const
{
    return m_selectionType == SelectionType::Directories ||
           m_selectionType == SelectionType::FilesAndDirectories;
}

// Whether what is selected, or without a selection what is typed, can be opened.
bool FileBrowser::Private::isAcceptable() const
{
    const QModelIndexList rows = m_filesList->selectedSourceRows();
    if (rows.isEmpty())
        return takesFolders() && isTypedFolder();
    return (rows.size() == 1 || m_multipleSelections) &&
           std::all_of(rows.begin(), rows.end(),
                       [this](const QModelIndex& row) { return isAcceptable(*m_model->fileInfo(row)); });
}

// The name of a file or folder that the filename field has, if it is one of the present folder.
QString FileBrowser::Private::typedName() const
{
    const QString text = m_controls.filenameEdit->text();
    const QString folder = Base::withSeparator(m_model->directory().absolutePath());
    QString name = text.startsWith(folder) ? text.mid(folder.size()) : QString();
    if (name.endsWith(QLatin1Char('/')))
        name.chop(1);
    return name.contains(QLatin1Char('/')) ? QString() : name;
}

bool FileBrowser::Private::isTypedFolder() const
{
    const bool isListed = m_rowsKnow && !typedName().isEmpty();
    return isListed ? isTypedFolderListed() : QFileInfo(m_controls.filenameEdit->text()).isDir();
}

bool FileBrowser::Private::isTypedFolderListed() const
{
    const QByteArray name = typedName().toUtf8();
    const FileInfo* const info = name.isEmpty() ? nullptr : m_model->entry(m_model->find(name).row());
    return info && info->isDirectory();
}

bool FileBrowser::Private::isAcceptable(const FileInfo& info) const
{
    if (m_selectionType == SelectionType::FilesAndDirectories)
        return true;
    const bool isDirectory = info.isInfoValid() ? info.isDirectory() : info.isDirSafe(m_model->directory());
    return isDirectory == (m_selectionType == SelectionType::Directories);
}

void FileBrowser::fileSelectionChanged()
{
    if (d->m_rowsUpdating) {
        d->m_choiceUpdated = true;
        return;
    }
    const QModelIndexList rows = d->m_filesList->selectedSourceRows();
    if (rows.size() == 1) {
        const int row = rows.first().row();
        QLineEdit& edit = *d->m_controls.filenameEdit;
        const QString path = normalizeFile(d->m_model->getFullFilePath(row));
        const auto sensitivity = d->m_mayNotExist ? Qt::CaseInsensitive : Qt::CaseSensitive;
        if (edit.text().compare(path, sensitivity) != 0)
            edit.setText(path);
        // Whoever listens to the field may have gone to another directory by now.
        if (const FileInfo* entry = d->m_model->entry(row)) {
            // A copy: a receiver that changes the directory would take the entry from those after it.
            const FileInfo info = *entry;
            const QSignalBlocker blocker(edit);
            emit fileSelected(info, d->m_directory);
        }
    }
    emit choiceChanged();
}

void FileBrowser::fileClicked(QModelIndex index)
{
    const FileInfo* info = d->m_model->entry(d->m_proxy->mapToSource(index).row());
    if (info && info->isDirSafe(d->m_model->directory()))
        setDirectory(QDir(d->m_model->getFullFilePath(*info)), false, true);
}

void FileBrowser::fileDoubleClicked(QModelIndex index)
{
    const FileInfo* entry = d->m_model->entry(d->m_proxy->mapToSource(index).row());
    if (!entry)
        return;
    const FileInfo info = *entry;
    emit fileDoubleClick(info);
    emit fileDoubleClick();
}

void FileBrowser::hoverItem(QModelIndex index)
{
    DirectoryModel& model = *d->m_model;
    const int row = d->m_proxy->mapToSource(index).row();
    if (row == model.hoveredRow() || !model.entry(row))
        return;
    model.setHoveredRow(row);
    model.refreshModel(model.index(row, 0), model.index(row, DirectoryModel::ColumnCount - 1));
}

void FileBrowser::nextClicked()
{
    const QModelIndexList rows = d->m_filesList->selectedSourceRows();
    for (const QModelIndex& row : rows)
        d->m_pickList.append(normalizeFile(d->m_model->getFullFilePath(row)));
    // The directory is what is meant only if nothing in it was selected before it was read again.
    const bool addsDirectory = rows.isEmpty() && d->takesFolders() && !d->awaitsSelection();
    if (addsDirectory)
        d->m_pickList.append(normalizeFile(directory().absolutePath()));
    d->showQueue(!rows.isEmpty() || addsDirectory);
}

void FileBrowser::addItemToQueue()
{
    d->m_filesMenu->updateEditData(false);
    for (const FileInfo* info : d->m_filesMenu->items()) {
        const QString path = d->m_model->getFullFilePath(*info);
        const bool wanted = d->m_selectionType == SelectionType::Files || d->takesFolders();
        const bool fits = info->isDirectory() || d->m_selectionType != SelectionType::Directories;
        if (wanted && fits && !d->m_pickList.contains(path))
            d->m_pickList.append(normalizeFile(path));
    }
    d->m_filesMenu->finishEditing();
    d->showQueue(!d->m_filesMenu->items().isEmpty());
}

void FileBrowser::removeItemFromQueue()
{
    d->m_filesMenu->updateEditData(false);
    QStringList paths;
    for (const FileInfo* info : d->m_filesMenu->items())
        paths.append(normalizeFile(d->m_model->getFullFilePath(*info)));
    d->m_pickList.remove(paths);
    d->m_filesMenu->finishEditing();
    d->showQueue(!paths.isEmpty());
}

// Shows the pick list as it is now. An action on nothing leaves the selection alone.
void FileBrowser::Private::showQueue(bool changed)
{
    m_controls.pickListLine->showPaths(m_pickList.paths());
    if (changed && m_model->isListReady()) {
        FilesList::Choice choice;
        choice.current = m_filesList->currentName();
        m_model->resetModel();
        m_filesList->choose(choice);
    } else {
        m_filesList->viewport()->update();
    }
    m_filesList->setFocus(Qt::MouseFocusReason);
    emit q->choiceChanged();
}

void FileBrowser::fileMenuClosed()
{
    d->m_filesMenu->enableActions();
}

void FileBrowser::accept()
{
    if (!d->isAwaited())
        emit accepted();
}

void FileBrowser::reject()
{
    emit rejected();
}

} // namespace Halvern::UI
