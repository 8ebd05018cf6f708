#include "browser/FilesList.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesMenu.h"
#include "browser/ProxyModel.h"
#include "widgets/LegibleDelegate.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

namespace Halvern::UI {

FileBrowser::FilesList::FilesList(FileBrowser* owner)
    : browser(owner)
{
    setItemDelegate(new LegibleDelegate(this));
}

QSize FileBrowser::FilesList::sizeHint() const
{
    return {widthHint, 200};
}

bool FileBrowser::FilesList::event(QEvent* event)
{
    // With the mouse the menu has opened already, when the button was pressed.
    if (event->type() != QEvent::ContextMenu ||
        static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Keyboard)
        return QTreeView::event(event);
    const QModelIndex current = currentIndex();
    const QPoint place = viewport()->mapToGlobal(visualRect(current).bottomLeft());
    browser->filesMenu->popupMenu(place, browser->proxyModel->mapToSource(current));
    return true;
}

void FileBrowser::FilesList::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::RightButton) {
        QTreeView::mousePressEvent(event);
        return;
    }
    const QModelIndex source = browser->proxyModel->mapToSource(indexAt(event->pos()));
    browser->filesMenu->popupMenu(event->globalPos(), source);
}

// A host may destroy the list in answer to a double click, and the standard handling would go on with it.
void FileBrowser::FilesList::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPersistentModelIndex index = indexAt(event->pos());
    {
        const QSignalBlocker blocker(this);
        QTreeView::mouseDoubleClickEvent(event);
    }
    if (!index.isValid())
        return;
    const QPointer<FilesList> self(this);
    emit doubleClicked(index);
    if (self && event->button() == Qt::LeftButton)
        emit activated(index);
}

void FileBrowser::FilesList::mouseMoveEvent(QMouseEvent* event)
{
    mouseRow = indexAt(event->localPos().toPoint()).row();
    QTreeView::mouseMoveEvent(event);
}

void FileBrowser::FilesList::keyPressEvent(QKeyEvent* event)
{
    if (!hasFocus() || !navigates(*event))
        QTreeView::keyPressEvent(event);
}

// Whether the key was one that moves between directories.
bool FileBrowser::FilesList::navigates(const QKeyEvent& event)
{
    const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
    if (event.key() == Qt::Key_Backspace || (control && event.key() == Qt::Key_Left)) {
        browser->backButton->click();
        return true;
    }
    if (!control)
        return false;
    switch (event.key()) {
    case Qt::Key_Up:
        browser->upButton->click();
        return true;
    case Qt::Key_Right:
        browser->forwardButton->click();
        return true;
    case Qt::Key_Down: {
        const QModelIndexList selected = selectedIndexes();
        if (selected.isEmpty())
            return false;
        browser->fileClicked(selected.first());
        return true;
    }
    default:
        return false;
    }
}

void FileBrowser::FilesList::leaveEvent(QEvent* /*event*/)
{
    DirectoryModel& model = *browser->directoryModel;
    const int row = model.hoveredRow();
    if (row < 0)
        return;
    model.setHoveredRow(-1);
    model.refreshModel(model.index(row, 0), model.index(row, DirectoryModel::ColumnCount - 1));
}

void FileBrowser::FilesList::keepPlace(const std::function<void()>& reset)
{
    const ProxyModel& proxy = *browser->proxyModel;
    std::vector<int> selected;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        selected.push_back(proxy.mapToSource(index).row());
    const int current = proxy.mapToSource(currentIndex()).row();
    const int scrolled = verticalScrollBar()->value();

    reset();

    const auto viewRow = [&](int sourceRow) {
        return proxy.mapFromSource(browser->directoryModel->index(sourceRow, 0)).row();
    };
    std::transform(selected.begin(), selected.end(), selected.begin(), viewRow);
    std::sort(selected.begin(), selected.end());
    selected.erase(selected.begin(), std::lower_bound(selected.begin(), selected.end(), 0));
    QItemSelection selection;
    for (std::size_t from = 0, to = 0; from < selected.size(); from = to) {
        for (to = from + 1; to < selected.size() && selected[to] == selected[to - 1] + 1;)
            ++to;
        selection.select(proxy.index(selected[from], 0),
                         proxy.index(selected[to - 1], DirectoryModel::ColumnCount - 1));
    }
    const QSignalBlocker blocker(selectionModel());
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (current >= 0)
        selectionModel()->setCurrentIndex(proxy.index(viewRow(current), 0), QItemSelectionModel::NoUpdate);
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
}

} // namespace Halvern::UI
