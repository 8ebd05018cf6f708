#include "browser/FilesMenu.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/PickList.h"

#include <QHash>
#include <QKeySequence>

namespace Halvern::UI {

FileBrowser::FilesMenu::FilesMenu(DirectoryModel* model, FilesList* list, const PickList& pickList,
                                  QWidget* browser)
    : QMenu(browser)
    , m_model(model)
    , m_list(list)
    , m_pickList(pickList)
{
    // The next shortcut collects its items anew.
    connect(model, &DirectoryModel::entriesExpire, this, [this] {
        m_editItems.clear();
        m_menuOpen = false;
    });
    connect(model, &DirectoryModel::entriesReplaced, this, &FilesMenu::replaceItems);
    connect(list, SIGNAL(menuRequested(const QPoint&, const QModelIndex&)), this,
            SLOT(popupMenu(const QPoint&, const QModelIndex&)));
}

QAction* FileBrowser::FilesMenu::makeAction(const char* name, const QString& text, const char* slot)
{
    auto* action = new QAction(text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcutContext(Qt::WidgetShortcut);
    connect(action, SIGNAL(triggered()), parentWidget(), slot);
    QMenu::addAction(action);
    m_list->addAction(action);
    return action;
}

void FileBrowser::FilesMenu::defaultSetup()
{
    connect(this, SIGNAL(aboutToHide()), parentWidget(), SLOT(fileMenuClosed()));
    m_addAction = makeAction("addAction", tr("Add"), SLOT(addItemToQueue()));
    m_addAction->setShortcut(QKeySequence(QStringLiteral("Space")));
    m_removeAction = makeAction("removeAction", tr("Remove"), SLOT(removeItemFromQueue()));
    m_refreshAction = makeAction("refreshAction", tr("Refresh"), SLOT(refreshDirectory()));
    m_refreshAction->setShortcut(QKeySequence(QStringLiteral("F5")));
}

void FileBrowser::FilesMenu::popupMenu(const QPoint& globalPosition, const QModelIndex& sourceIndex)
{
    const bool multiple = m_list->selectionMode() == QAbstractItemView::ExtendedSelection;
    setEditActionsVisible(multiple);
    if (!multiple) {
        popup(globalPosition);
        return;
    }
    m_editItems.clear();
    bool clickedIsSelected = false;
    bool anyQueued = false;
    bool anyUnqueued = false;
    for (const QModelIndex& selected : m_list->selectedSourceRows()) {
        clickedIsSelected = clickedIsSelected || selected.row() == sourceIndex.row();
        FileInfo* info = m_model->fileInfo(selected);
        m_editItems.append(info);
        if (info->isDirectory())
            continue;
        const bool isQueued = m_pickList.contains(normalizeFile(m_model->getFullFilePath(*info)));
        (isQueued ? anyQueued : anyUnqueued) = true;
    }
    bool mayAdd = m_editItems.isEmpty() || !anyQueued || anyUnqueued;
    bool mayRemove = m_editItems.isEmpty() || !anyUnqueued || anyQueued;

    FileInfo* clicked = sourceIndex.isValid() ? m_model->entry(sourceIndex.row()) : nullptr;
    if (!clickedIsSelected && clicked) {
        m_editItems = {clicked};
        mayRemove = m_pickList.contains(m_model->getFullFilePath(*clicked));
        mayAdd = !mayRemove;
    }
    m_addAction->setEnabled(mayAdd);
    m_removeAction->setEnabled(mayRemove);
    m_menuOpen = true;
    popup(globalPosition);
}

void FileBrowser::FilesMenu::updateEditData(bool force)
{
    if (force || !m_menuOpen)
        prepareItemsForEditing();
}

void FileBrowser::FilesMenu::prepareItemsForEditing()
{
    const int hoveredRow = m_model->hoveredRow();
    m_editItems.clear();
    bool hoveredIsSelected = false;
    for (const QModelIndex& selected : m_list->selectedSourceRows()) {
        m_editItems.append(m_model->fileInfo(selected));
        hoveredIsSelected = hoveredIsSelected || selected.row() == hoveredRow;
    }
    if (!hoveredIsSelected) {
        m_editItems.clear();
        if (FileInfo* hovered = m_model->entry(hoveredRow))
            m_editItems.append(hovered);
    }
    m_menuOpen = true;
}

void FileBrowser::FilesMenu::replaceItems(const std::vector<FileInfo*>& before,
                                          const std::vector<FileInfo*>& after)
{
    if (!m_menuOpen)
        m_editItems.clear(); // the next shortcut collects its items anew
    if (m_editItems.isEmpty())
        return;
    QHash<const FileInfo*, FileInfo*> successors;
    for (const FileInfo* item : qAsConst(m_editItems))
        successors.insert(item, nullptr);
    for (std::size_t row = 0; row < before.size(); ++row) {
        const auto item = successors.find(before[row]);
        if (item != successors.end())
            *item = after[row];
    }
    QList<FileInfo*> items;
    for (const FileInfo* item : qAsConst(m_editItems)) {
        if (FileInfo* successor = successors.value(item))
            items.append(successor);
    }
    m_editItems.swap(items);
}

void FileBrowser::FilesMenu::setEditActionsVisible(bool visible)
{
    m_addAction->setVisible(visible);
    m_removeAction->setVisible(visible);
}

void FileBrowser::FilesMenu::enableActions()
{
    for (QAction* action : {m_addAction, m_removeAction, m_refreshAction})
        action->setEnabled(true);
}

} // namespace Halvern::UI
