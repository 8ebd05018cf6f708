#include "browser/FilesMenu.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"

#include <QKeySequence>

namespace Halvern::UI {

FileBrowser::FilesMenu::FilesMenu(FileBrowser* owner)
    : QMenu(owner)
    , browser(owner)
{
}

QAction* FileBrowser::FilesMenu::makeAction(const QString& text, const char* slot)
{
    auto* action = new QAction(text, this);
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, SIGNAL(triggered()), browser, slot);
    QMenu::addAction(action);
    browser->filesList->addAction(action);
    return action;
}

void FileBrowser::FilesMenu::defaultSetup()
{
    connect(this, SIGNAL(aboutToHide()), browser, SLOT(fileMenuClosed()));
    addAction = makeAction(tr("Add"), SLOT(addItemToQueue()));
    addAction->setObjectName(QStringLiteral("addAction"));
    addAction->setShortcut(QKeySequence(QStringLiteral("Space")));
    removeAction = makeAction(tr("Remove"), SLOT(removeItemFromQueue()));
    removeAction->setObjectName(QStringLiteral("removeAction"));
    refreshAction = makeAction(tr("Refresh"), SLOT(refreshDirectory()));
    refreshAction->setObjectName(QStringLiteral("refreshAction"));
    refreshAction->setShortcut(QKeySequence(QStringLiteral("F5")));
}

void FileBrowser::FilesMenu::popupMenu(const QPoint& globalPosition, const QModelIndex& sourceIndex)
{
    setEditActionsVisible(browser->multipleSelections);
    if (!browser->multipleSelections) {
        popup(globalPosition);
        return;
    }
    const DirectoryModel& model = *browser->directoryModel;
    editItems.clear();
    bool clickedIsSelected = false;
    bool anyQueued = false;
    bool anyUnqueued = false;
    const QSet<QString> queued = browser->queuedPaths();
    for (const QModelIndex& selected : browser->selectedSourceRows()) {
        clickedIsSelected = clickedIsSelected || selected.row() == sourceIndex.row();
        FileInfo* info = model.fileInfo(selected);
        editItems.append(info);
        if (info->isDirectory())
            continue;
        const bool isQueued = queued.contains(normalizeFile(model.getFullFilePath(*info)));
        (isQueued ? anyQueued : anyUnqueued) = true;
    }
    bool mayAdd = editItems.isEmpty() || !anyQueued || anyUnqueued;
    bool mayRemove = editItems.isEmpty() || !anyUnqueued || anyQueued;

    FileInfo* clicked = sourceIndex.isValid() ? model.entry(sourceIndex.row()) : nullptr;
    if (!clickedIsSelected && clicked) {
        editItems = {clicked};
        mayRemove = queued.contains(model.getFullFilePath(*clicked));
        mayAdd = !mayRemove;
    }
    addAction->setEnabled(mayAdd);
    removeAction->setEnabled(mayRemove);
    menuOpen = true;
    popup(globalPosition);
}

void FileBrowser::FilesMenu::updateEditData(bool force)
{
    if (force || !menuOpen)
        prepareItemsForEditing();
}

void FileBrowser::FilesMenu::prepareItemsForEditing()
{
    const DirectoryModel& model = *browser->directoryModel;
    editItems.clear();
    bool hoveredIsSelected = false;
    for (const QModelIndex& selected : browser->selectedSourceRows()) {
        editItems.append(model.fileInfo(selected));
        hoveredIsSelected = hoveredIsSelected || selected.row() == model.hoveredRow();
    }
    if (!hoveredIsSelected) {
        editItems.clear();
        if (FileInfo* hovered = model.entry(model.hoveredRow()))
            editItems.append(hovered);
    }
    menuOpen = true;
}

void FileBrowser::FilesMenu::setEditActionsVisible(bool visible)
{
    addAction->setVisible(visible);
    removeAction->setVisible(visible);
}

void FileBrowser::FilesMenu::enableActions()
{
    for (QAction* action : {addAction, removeAction, refreshAction})
        action->setEnabled(true);
}

} // namespace Halvern::UI
