#include "browser/FilesList.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesMenu.h"
#include "browser/ProxyModel.h"
#include "widgets/LegibleDelegate.h"

#include <QApplication>
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
        pressedTime = event->timestamp();
        pressedPlace = event->pos();
        pressedFolder = browser->currentDirectory.path();
        pressedName = nameAt(event->pos());
        QTreeView::mousePressEvent(event);
        return;
    }
    const QModelIndex source = browser->proxyModel->mapToSource(indexAt(event->pos()));
    browser->filesMenu->popupMenu(event->globalPos(), source);
}

// The name of an entry, which stays while its row comes and goes with each reset; empty for none.
const char* FileBrowser::FilesList::nameAt(const QPoint& place) const
{
    const int row = browser->proxyModel->mapToSource(indexAt(place)).row();
    const FileInfo* info = browser->directoryModel->entry(row);
    return info ? info->fileName() : "";
}

bool FileBrowser::FilesList::followsPress(const QMouseEvent& event) const
{
    return pressedPlace &&
           (event.pos() - *pressedPlace).manhattanLength() <= QApplication::startDragDistance() &&
           event.timestamp() - pressedTime <= static_cast<ulong>(QApplication::doubleClickInterval());
}

void FileBrowser::FilesList::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPersistentModelIndex index = indexAt(event->pos());
    // Only a program sends one without a press just before it.
    if (followsPress(*event)) {
        // The first click may have opened the folder that it was on. The second was meant for that folder
        // too, not for what is in its place by now.
        if (pressedFolder != browser->currentDirectory.path())
            return;
        if (pressedName != nameAt(event->pos())) {
            mousePressEvent(event);
            return;
        }
    }
    if (!index.isValid())
        return;
    // A host may destroy the list in answer, and the standard handling would go on with it.
    {
        const QSignalBlocker blocker(this);
        QTreeView::mouseDoubleClickEvent(event);
    }
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

void FileBrowser::FilesList::keepPlace(Keep what, const std::function<void()>& reset)
{
    const ProxyModel& proxy = *browser->proxyModel;
    std::vector<int> selected;
    if (what == Keep::Selection) {
        for (const QModelIndex& index : selectionModel()->selectedRows())
            selected.push_back(proxy.mapToSource(index).row());
    }
    const int current = proxy.mapToSource(currentIndex()).row();
    const int scrolled = verticalScrollBar()->value();

    reset();

    const auto viewRow = [&](int sourceRow) {
        return proxy.mapFromSource(browser->directoryModel->index(sourceRow, 0)).row();
    };
    std::transform(selected.begin(), selected.end(), selected.begin(), viewRow);
    selected.erase(std::remove(selected.begin(), selected.end(), -1), selected.end());
    const QSignalBlocker blocker(selectionModel());
    selectRows(std::move(selected));
    if (current >= 0)
        selectionModel()->setCurrentIndex(proxy.index(viewRow(current), 0), QItemSelectionModel::NoUpdate);
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(scrolled);
}

void FileBrowser::FilesList::selectRows(std::vector<int> rows)
{
    if (rows.empty())
        return;
    std::vector<std::pair<int, int>> ranges; // first and last row of each
    const auto findRanges = [&] {
        ranges.clear();
        for (const int row : rows) {
            if (ranges.empty() || row != ranges.back().second + 1)
                ranges.emplace_back(row, row);
            ranges.back().second = row;
        }
    };
    findRanges();
    // The toolkit takes time that grows with the square of the ranges.
    constexpr std::size_t MostRanges = 500;
    if (ranges.size() > MostRanges) {
        std::sort(rows.begin(), rows.end());
        findRanges();
    }
    const ProxyModel& proxy = *browser->proxyModel;
    QItemSelection selection;
    for (const auto& [first, last] : ranges)
        selection.select(proxy.index(first, 0), proxy.index(last, DirectoryModel::ColumnCount - 1));
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

} // namespace Halvern::UI
