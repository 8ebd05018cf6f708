// Keeps the rows of a watched folder up to date.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "browser/PickListLine.h"
#include "browser/ProxyModel.h"
#include "frames/Placeholder.h"
#include "widgets/FilePathEdit.h"

#include <QScopedValueRollback>
#include <cstring>
#include <utility>

namespace Halvern::UI {

void FileBrowser::setWatched(bool watched)
{
    d->m_watched = watched;
    d->watchIfShown();
}

bool FileBrowser::isWatched() const
{
    return d->m_watched;
}

void FileBrowser::Private::initWatch()
{
    QObject::connect(&m_shownState, &ShownState::changed, q, [this] { watchIfShown(); });
    QObject::connect(&m_watch, &DirectoryWatch::changed, m_model, [this] {
        if (!m_model->update(m_watch.changedNames()))
            m_watch.endRead(0, false);
    });
    // The watch first: the host, which endUpdate() calls, may begin another read.
    QObject::connect(m_model, &DirectoryModel::updated, &m_watch, &DirectoryWatch::endRead);
    QObject::connect(m_model, &DirectoryModel::updated, q,
                     [this](int /*milliseconds*/, bool succeeded) { endUpdate(succeeded); });
    // Rows are also empty while an evaluator is asked, which reads nothing.
    QObject::connect(m_model, &DirectoryModel::readStarted, &m_watch, [this] {
        if (m_model->isReading())
            m_watch.beginRead(m_model->path());
    });
}

void FileBrowser::Private::watchIfShown()
{
    m_watch.setActive(m_watched && m_shownState.isShown());
}

// Tells the watch when the list is complete, and of a folder that could not be opened.
void FileBrowser::Private::noteReading()
{
    if (m_watch.path() != m_model->path())
        m_watch.beginRead(m_model->path());
    if (!m_model->isReading())
        m_watch.endNames();
    const bool failed = m_model->readError() != 0;
    if (!m_model->isReading() && !m_model->isUpdating() && (failed || m_model->hasAllAttributes()))
        m_watch.endRead(0, !failed);
}

// The rows are about to change in place. If the filename field shows the path of a selected row, it goes on
// to do so. It is set at the end, because its text is announced to the host.
void FileBrowser::Private::beginUpdate(const RowChanges& changes, const DirectoryRows& rows)
{
    m_rowsUpdating = true;
    m_typedFolderWasListed = takesFolders() && isTypedFolderListed();
    updatePickList(changes, rows);
    const int row = shownSequence().row();
    if (row < 0 || changes.vanishes(row))
        return;
    const auto place = static_cast<std::size_t>(changes.places()[static_cast<std::size_t>(row)]);
    const QString before = normalizeFile(m_model->getFullFilePath(row));
    const QString after = normalizeFile(m_model->getFullFilePath(*rows.entries[place]));
    if (after == before)
        return;
    m_choiceUpdated = true;
    m_updatedText = after;
    if (m_proxy->namePrefix() == Placeholder::withHashes(namePrefixOf(before)).toStdString())
        m_proxy->setNamePrefix(namePrefixOf(after));
}

// Sequences in the pick list that have other frames from now on stay in it.
void FileBrowser::Private::updatePickList(const RowChanges& changes, const DirectoryRows& rows)
{
    QHash<QString, QString> successors;
    for (int row = 0; row < changes.rowsBefore() && !m_pickList.isEmpty(); ++row) {
        const auto place = static_cast<std::size_t>(changes.places()[static_cast<std::size_t>(row)]);
        const FileInfo* before = m_model->entry(row);
        const FileInfo* after = changes.vanishes(row) ? nullptr : rows.entries[place];
        if (!before || !after || std::strcmp(before->displayName(), after->displayName()) == 0)
            continue;
        const QString path = normalizeFile(m_model->getFullFilePath(*before));
        if (m_pickList.contains(path))
            successors.insert(path, normalizeFile(m_model->getFullFilePath(*after)));
    }
    if (successors.isEmpty())
        return;
    m_pickList.replace(successors);
    m_pickListUpdated = true;
}

// All rows are in their places. Whoever is told of what changed may change the browser.
void FileBrowser::Private::endUpdate(bool succeeded)
{
    if (!std::exchange(m_rowsUpdating, false))
        return;
    const bool isChoiceUpdated = std::exchange(m_choiceUpdated, false);
    const bool isPickListUpdated = std::exchange(m_pickListUpdated, false);
    if (isPickListUpdated)
        m_controls.pickListLine->showPaths(m_pickList.paths());
    const QScopedValueRollback<bool> known(m_rowsKnow, succeeded);
    const QString text = std::exchange(m_updatedText, {});
    if (succeeded && !m_awaited.isEmpty()) {
        awaitChoice();
        chooseAwaited();
        m_awaited = {};
    }
    if (!text.isEmpty())
        showText(text);
    if (isChoiceUpdated)
        q->fileSelectionChanged();
    else if (isPickListUpdated || (takesFolders() && isTypedFolderListed() != m_typedFolderWasListed))
        emit q->choiceChanged();
}

} // namespace Halvern::UI
