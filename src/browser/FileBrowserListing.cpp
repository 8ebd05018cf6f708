// What the list shows: reading, filters, sequences, and attributes as they arrive.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/ProxyModel.h"
#include "frames/Placeholder.h"
#include "widgets/AppSettings.h"
#include "widgets/FilePathEdit.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

namespace Halvern::UI {

// The part of the filename field behind its last separator, which narrows the listing.
QString FileBrowser::typedNamePrefix() const
{
    const QString text = filenameEdit->text();
    int separator = text.lastIndexOf(QLatin1Char('/'));
    if (separator < 0 || text.endsWith(QLatin1Char('\\')))
        separator = text.lastIndexOf(QLatin1Char('\\'));
    return text.mid(separator + 1);
}

void FileBrowser::refresh()
{
    listed = true;
    proxyModel->setNamePrefix(QString());
    directoryModel->setDirectory(currentDirectory, getSequenceMode(), false);
    proxyModel->setFilterBlocked(filterBlock);
    proxyModel->setNamePrefix(typedNamePrefix());
    proxyModel->setFilterPattern(filterCombo->currentText());
    proxyModel->apply();
    filesList->clearSelection();
    if (proxyModel->rowCount() != 1)
        return;
    const QModelIndex only = proxyModel->index(0, 0);
    const FileInfo* info = directoryModel->entry(proxyModel->mapToSource(only).row());
    if (info &&
        directoryModel->getFullFilePath(*info).compare(filenameEdit->text(), Qt::CaseInsensitive) == 0)
        filesList->setCurrentIndex(only);
}

void FileBrowser::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!listed)
        refresh();
}

void FileBrowser::refreshDirectory()
{
    directoryModel->refreshList();
}

void FileBrowser::setFilters(QStringList& filters, bool doRefresh)
{
    {
        const QSignalBlocker blocker(filterCombo);
        filterCombo->addItems(filters);
    }
    if (doRefresh)
        refresh();
}

void FileBrowser::filterChanged(QString /*text*/)
{
    clearFilterBlock();
    refresh();
}

void FileBrowser::showSequences(bool state)
{
    splitCheck->setEnabled(state);
    const SequenceMode mode = state ? SequenceMode::Collapsed : SequenceMode::Expanded;
    if (sequencesEnabled)
        AppSettings::Store({{_sequencesIdentifier, static_cast<int>(mode)}});
    directoryModel->setSequenceMode(mode);
    buildRowsAfterClick();
}

void FileBrowser::setSequencesEnabled(bool enabled)
{
    sequencesCheck->setVisible(enabled);
    directoryModel->setSequenceMode(enabled ? SequenceMode::Collapsed : SequenceMode::Expanded);
    if (!buildRows())
        return;
    sequencesEnabled = enabled;
    _updateSplitSequencesButton();
}

void FileBrowser::splitIncompleteSequences(bool state)
{
    if (sequencesEnabled)
        AppSettings::Store({{_splitSequencesIdentifier, state}});
    directoryModel->setSplitSequences(state);
    buildRowsAfterClick();
}

void FileBrowser::_updateSplitSequencesButton()
{
    splitCheck->setVisible(sequencesEnabled && !directoryModel->hasEvaluator());
}

void FileBrowser::setFileSequenceEvaluator(FileSequenceEvaluator* evaluator)
{
    directoryModel->setEvaluator(evaluator);
    if (buildRows())
        _updateSplitSequencesButton();
}

// False where a host destroyed the browser while its evaluator was asked.
bool FileBrowser::buildRows()
{
    const QPointer<FileBrowser> self(this);
    directoryModel->buildRunningList();
    return self;
}

// The same in answer to a check box, which goes on with itself afterwards.
void FileBrowser::buildRowsAfterClick()
{
    if (!directoryModel->hasEvaluator()) {
        directoryModel->buildRunningList();
        return;
    }
    QTimer::singleShot(0, directoryModel, [this] {
        // A read that has begun in the meantime builds them at its end.
        if (directoryModel->isListReady())
            directoryModel->buildRunningList();
    });
}

FileBrowser::SequenceMode FileBrowser::getSequenceMode() const
{
    return sequencesCheck->isChecked() ? SequenceMode::Collapsed : SequenceMode::Expanded;
}

void FileBrowser::managerRefreshList()
{
    attributesTimer->setInterval(0);
    if (!buildRows())
        return;
    _updateSplitSequencesButton(); // the evaluator may be gone
    const FileInfo folder{QFileInfo(currentDirectory.path())};
    newFolderButton->setEnabled(folder.isWritable());
}

void FileBrowser::managerFilesUpdated(int /*start*/, int /*end*/)
{
    if (directoryModel->hasAllAttributes())
        attributesTimer->setInterval(0);
    if (!attributesTimer->isActive())
        attributesTimer->start();
}

void FileBrowser::showArrivedAttributes()
{
    if (!directoryModel->isListReady())
        return;
    // A row that goes between press and release takes the click with it.
    constexpr int ClickTime = 50; // milliseconds
    if (QApplication::mouseButtons() != Qt::NoButton) {
        attributesTimer->start(ClickTime);
        return;
    }
    // Sorting many rows takes its time; the pause leaves the greater part of the thread to the user. Few rows
    // would come faster than an eye follows, and painting each state takes the processor from the reading.
    constexpr int PauseFactor = 4;
    constexpr int ShortestPause = 40; // milliseconds
    QElapsedTimer timer;
    timer.start();
    filesList->keepPlace(FilesList::Keep::Selection, [this] { directoryModel->resetModel(); });
    attributesTimer->setInterval(std::max(ShortestPause, PauseFactor * static_cast<int>(timer.elapsed())));
}

QString FileBrowser::replaceHashes(const QString& name)
{
    return Placeholder::withToken(name);
}

QString FileBrowser::normalizeFile(const QString& name)
{
    return _sequenceMode != SequenceMode::Collapsed ? replaceHashes(name) : name;
}

} // namespace Halvern::UI
