// What the list shows: reading, filters, sequences, and attributes as they arrive.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "browser/ListNotice.h"
#include "browser/ProxyModel.h"
#include "frames/Placeholder.h"
#include "paths/Path.h"
#include "widgets/AppSettings.h"
#include "widgets/FilePathEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <algorithm>

namespace Halvern::UI {

// The part of the filename field's text after its last separator, which narrows the listing.
QString FileBrowser::Private::namePrefixOf(const QString& text)
{
    auto separator = text.lastIndexOf(QLatin1Char('/'));
    if (separator < 0 || text.endsWith(QLatin1Char('\\')))
        separator = text.lastIndexOf(QLatin1Char('\\'));
    return text.mid(separator + 1);
}

void FileBrowser::refresh()
{
    const bool anyChosen = d->m_filesList->selectionModel()->hasSelection();
    d->m_listed = true;
    d->m_proxy->setNamePrefix(QString());
    d->m_model->setDirectory(d->m_directory, getSequenceMode(), false);
    d->m_proxy->setFilterBlocked(d->m_filterBlock);
    d->m_proxy->setNamePrefix(Private::namePrefixOf(d->m_controls.filenameEdit->text()));
    d->m_proxy->setFilterPattern(d->m_controls.filterCombo->currentText());
    d->m_proxy->apply();
    d->m_filesList->clearSelection();
    d->m_awaited.selected.clear();
    d->m_awaitsTypedRow = !d->m_model->isListReady();
    d->selectTypedRow();
    // Rows that the filter takes away leave the selection without announcing it.
    if (anyChosen)
        emit choiceChanged();
    d->noteReading();
}

// The row that the filename field names becomes the current row; in any letter case if it is the only one.
void FileBrowser::Private::selectTypedRow()
{
    const QString text = m_controls.filenameEdit->text();
    const QString folder = Base::withSeparator(m_model->directory().absolutePath());
    const bool isInFolder = text.startsWith(folder) && text.size() > folder.size();
    QModelIndex typed;
    if (isInFolder)
        typed = m_proxy->mapFromSource(m_model->find(text.mid(folder.size()).toUtf8()));
    if (!typed.isValid() && m_proxy->rowCount() == 1) {
        const QModelIndex only = m_proxy->index(0, 0);
        const FileInfo* info = m_model->entry(m_proxy->mapToSource(only).row());
        if (info && m_model->getFullFilePath(*info).compare(text, Qt::CaseInsensitive) == 0)
            typed = only;
    }
    if (typed.isValid())
        m_filesList->setCurrentIndex(typed);
}

void FileBrowser::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!d->m_listed)
        refresh();
}

// What is selected and current is found again when the list of this read is there.
void FileBrowser::refreshDirectory()
{
    d->awaitChoice();
    d->m_model->refreshList();
    d->noteReading();
    if (!d->m_model->isReading() && d->m_model->readError() == 0)
        d->m_awaited = {};
}

// Remembers what is selected and current, beside what is to be found again already.
void FileBrowser::Private::awaitChoice()
{
    if (!m_model->isListReady())
        return;
    const FilesList::Choice choice = m_filesList->choice();
    m_awaited.selected.unite(choice.selected);
    if (!choice.current.first.isEmpty())
        m_awaited.current = choice.current;
    const QModelIndex shown = shownSequence();
    if (shown.isValid()) {
        m_awaited.text = m_controls.filenameEdit->text();
        m_awaited.textRow = m_filesList->nameOf(shown.row());
    }
}

// The selected row whose path the filename field shows; invalid if there is none. Of several selected rows
// only sequences count, because only their paths change when the directory is read again.
QModelIndex FileBrowser::Private::shownSequence() const
{
    const QItemSelection& selection = m_filesList->selectionModel()->selection();
    const bool isSingle = selection.size() == 1 && selection.first().height() == 1;
    if (!isSingle && q->getSequenceMode() == SequenceMode::Expanded)
        return {};
    const QString text = m_controls.filenameEdit->text();
    const QModelIndexList rows = m_filesList->selectedSourceRows();
    const auto shown = std::find_if(rows.begin(), rows.end(), [&](const QModelIndex& row) {
        return (isSingle || m_model->entry(row.row())->isSequence()) &&
               normalizeFile(m_model->getFullFilePath(row)) == text;
    });
    return shown == rows.end() ? QModelIndex() : *shown;
}

void FileBrowser::Private::chooseAwaited()
{
    m_filesList->choose(m_awaited);
    QLineEdit& edit = *m_controls.filenameEdit;
    const int row = edit.text() == m_awaited.text ? m_filesList->find(m_awaited.textRow) : -1;
    if (row >= 0)
        showText(normalizeFile(m_model->getFullFilePath(row)));
}

void FileBrowser::setFilterBlock(bool block)
{
    d->m_filterBlock = block;
}

void FileBrowser::resetFileFilter()
{
    d->m_proxy->setFilterPattern(QString());
    d->m_proxy->apply();
}

void FileBrowser::setFilters(QStringList& filters, bool doRefresh)
{
    {
        const QSignalBlocker blocker(d->m_controls.filterCombo);
        d->m_controls.filterCombo->addItems(filters);
    }
    if (doRefresh)
        refresh();
}

void FileBrowser::filterChanged(QString /*text*/)
{
    d->clearFilterBlock();
    refresh();
}

void FileBrowser::showSequences(bool state)
{
    d->m_controls.splitCheck->setEnabled(state);
    const SequenceMode mode = state ? SequenceMode::Collapsed : SequenceMode::Expanded;
    if (d->m_sequencesEnabled)
        AppSettings::Store({{Private::s_classWide.sequencesKey(), static_cast<int>(mode)}});
    d->m_model->setSequenceMode(mode);
    d->buildRows();
}

void FileBrowser::setSequencesEnabled(bool enabled)
{
    d->m_controls.sequencesCheck->setVisible(enabled);
    d->m_model->setSequenceMode(enabled ? SequenceMode::Collapsed : SequenceMode::Expanded);
    d->m_sequencesEnabled = enabled;
    d->buildRows();
    d->updateSplitSequencesButton();
}

void FileBrowser::splitIncompleteSequences(bool state)
{
    if (d->m_sequencesEnabled)
        AppSettings::Store({{Private::s_classWide.splitSequencesKey(), state}});
    d->m_model->setSplitSequences(state);
    d->buildRows();
}

void FileBrowser::Private::updateSplitSequencesButton()
{
    m_controls.splitCheck->setVisible(m_sequencesEnabled && !m_model->hasEvaluator());
}

void FileBrowser::setFileSequenceEvaluator(FileSequenceEvaluator* evaluator)
{
    d->m_model->setEvaluator(evaluator);
    d->buildRows();
    d->updateSplitSequencesButton();
}

// Builds the rows anew, with what is selected and current found again by name.
void FileBrowser::Private::buildRows()
{
    if (m_rowsHeld)
        return;
    awaitChoice();
    m_model->buildRunningList();
    if (m_model->isListReady())
        chooseAwaited();
    // Names that are still to come, or that a failed read did not give, may be among the awaited ones.
    if (m_model->isListReady() && !m_model->isReading() && m_model->readError() == 0)
        m_awaited = {};
    emit q->choiceChanged();
}

FileBrowser::SequenceMode FileBrowser::getSequenceMode() const
{
    return d->m_controls.sequencesCheck->isChecked() ? SequenceMode::Collapsed : SequenceMode::Expanded;
}

void FileBrowser::managerRefreshList()
{
    d->m_attributesTimer.setInterval(0);
    d->buildRows();
    if (std::exchange(d->m_awaitsTop, false)) {
        d->m_filesList->scrollToTop();
        d->m_filesList->scrollTo(d->m_filesList->currentIndex());
    }
    if (std::exchange(d->m_awaitsTypedRow, false))
        d->selectTypedRow();
    d->updateSplitSequencesButton(); // the evaluator may be gone
    const FileInfo folder{QFileInfo(d->m_directory.path())};
    d->m_controls.newFolderButton->setEnabled(folder.isWritable());
    d->noteReading();
}

void FileBrowser::managerFilesUpdated(int /*start*/, int /*end*/)
{
    d->m_proxy->noteAttributes();
    if (d->m_model->hasAllAttributes())
        d->m_attributesTimer.setInterval(0);
    if (!d->m_attributesTimer.isActive())
        d->m_attributesTimer.start();
    d->noteReading();
}

void FileBrowser::Private::showArrivedAttributes()
{
    // Sorting many rows takes its time; the pause leaves the greater part of the thread to the user. Few rows
    // would come faster than an eye follows, and painting each state takes the processor from the reading.
    constexpr int PauseFactor = 4;
    constexpr int ShortestPause = 40; // milliseconds
    QElapsedTimer timer;
    timer.start();
    m_proxy->showAttributes();
    m_attributesTimer.setInterval(std::max(ShortestPause, PauseFactor * static_cast<int>(timer.elapsed())));
}

// Puts another path into the filename field, with the cursor where it was.
void FileBrowser::Private::showText(const QString& text)
{
    QLineEdit& edit = *m_controls.filenameEdit;
    const int cursor = edit.cursorPosition();
    if (edit.text() == text)
        return;
    edit.setText(text);
    if (edit.text() == text)
        edit.setCursorPosition(cursor);
}

void FileBrowser::Private::showNotice()
{
    m_filesList->setNotice(m_notice->emptyText());
    m_controls.problemLabel->setText(m_notice->problemText());
    m_controls.problemLabel->setVisible(!m_notice->problemText().isEmpty());
}

QString FileBrowser::replaceHashes(const QString& name)
{
    return Placeholder::withToken(name);
}

QString FileBrowser::normalizeFile(const QString& name)
{
    return GetDefaultSequenceMode() != SequenceMode::Collapsed ? replaceHashes(name) : name;
}

} // namespace Halvern::UI
