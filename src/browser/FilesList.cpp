#include "browser/FilesList.h"

#include "browser/DirectoryModel.h"
#include "widgets/LegibleDelegate.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace Halvern::UI {

FileBrowser::FilesList::FilesList(DirectoryModel* model, ProxyModel* proxy)
    : m_model(model)
    , m_proxy(proxy)
{
    constexpr int SmallestSide = 250;
    setItemDelegate(new LegibleDelegate(this));
    setUniformRowHeights(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setSelectionBehavior(SelectRows);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setSortingEnabled(true);
    setTextElideMode(Qt::ElideMiddle);
    setEditTriggers(EditKeyPressed);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setDragDropMode(DragOnly);
    setModel(proxy);
    setMinimumSize(SmallestSide, SmallestSide);
    setMouseTracking(true);
    header()->setStretchLastSection(true);
    header()->setSectionsMovable(false);
    connect(model, SIGNAL(readStarted()), this, SLOT(clearSelection()));
    connect(model, &DirectoryModel::rowsAboutToBeUpdated, this, &FilesList::beginUpdate);
    connect(model, &DirectoryModel::rowsUpdated, this, &FilesList::endUpdate);
    // The mouse is over no row any more.
    connect(this, SIGNAL(viewportEntered()), this, SLOT(hoverNothing()));
}

void FileBrowser::FilesList::setColumnWidths(const QFontMetrics& font)
{
    // The fourth sample has no column; it widens the list.
    const char* const samples[] = {"wwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwww", "128.88 GB", "mp3Folder",
                                   "10/29/81 02:02PM"};
    m_widthHint = 0;
    for (int section = 0; section < static_cast<int>(std::size(samples)); ++section) {
        const int width = font.horizontalAdvance(QLatin1String(samples[section]));
        header()->resizeSection(section, width);
        m_widthHint += width;
    }
}

bool FileBrowser::FilesList::event(QEvent* event)
{
    // With the mouse the menu has opened already, when the button was pressed.
    if (event->type() != QEvent::ContextMenu ||
        static_cast<QContextMenuEvent*>(event)->reason() != QContextMenuEvent::Keyboard)
        return QTreeView::event(event);
    const QModelIndex current = currentIndex();
    // The current row may be scrolled out of sight.
    const QRect inside = viewport()->rect();
    const QPoint below = visualRect(current).bottomLeft();
    const QPoint place(qBound(inside.left(), below.x(), inside.right()),
                       qBound(inside.top(), below.y(), inside.bottom()));
    emit menuRequested(viewport()->mapToGlobal(place), m_proxy->mapToSource(current));
    return true;
}

void FileBrowser::FilesList::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton) {
        emit menuRequested(viewport()->mapToGlobal(event->pos()),
                           m_proxy->mapToSource(indexAt(event->pos())));
        return;
    }
    m_pressedFolder = m_model->directory().path();
    QTreeView::mousePressEvent(event);
}

// The first click may have opened its folder. The second does not mean what is in that place now.
void FileBrowser::FilesList::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_pressedFolder.isEmpty() || m_pressedFolder == m_model->directory().path())
        QTreeView::mouseDoubleClickEvent(event);
}

void FileBrowser::FilesList::keyPressEvent(QKeyEvent* event)
{
    if (!hasFocus() || (!navigates(*event) && !sorts(*event)))
        QTreeView::keyPressEvent(event);
}

// Whether the key was one that moves between directories.
bool FileBrowser::FilesList::navigates(const QKeyEvent& event)
{
    const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
    if (event.key() == Qt::Key_Backspace || (control && event.key() == Qt::Key_Left)) {
        emit backRequested();
        return true;
    }
    if (!control)
        return false;
    switch (event.key()) {
    case Qt::Key_Up:
        emit upRequested();
        return true;
    case Qt::Key_Right:
        emit forwardRequested();
        return true;
    case Qt::Key_Down: {
        const QModelIndexList selected = selectedIndexes();
        if (selected.isEmpty())
            return false;
        emit enterRequested(selected.first());
        return true;
    }
    default:
        return false;
    }
}

// Ctrl+1 to Ctrl+3, since the header takes no focus. A shortcut of the host with these keys comes first.
bool FileBrowser::FilesList::sorts(const QKeyEvent& event)
{
    const int column = event.key() - Qt::Key_1;
    const bool control = (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
    if (!control || column < 0 || column >= DirectoryModel::ColumnCount)
        return false;
    const bool reverse =
        header()->sortIndicatorSection() == column && header()->sortIndicatorOrder() == Qt::AscendingOrder;
    header()->setSortIndicator(column, reverse ? Qt::DescendingOrder : Qt::AscendingOrder);
    return true;
}

void FileBrowser::FilesList::hoverNothing()
{
    const int row = m_model->hoveredRow();
    if (row < 0)
        return;
    m_model->setHoveredRow(-1);
    m_model->refreshModel(m_model->index(row, 0), m_model->index(row, DirectoryModel::ColumnCount - 1));
}

void FileBrowser::FilesList::setNotice(const QString& text)
{
    m_notice = text;
    setAccessibleDescription(text);
    viewport()->update();
}

void FileBrowser::FilesList::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (m_notice.isEmpty())
        return;
    constexpr float Strength = 0.6F; // grey, and still legible
    const int margin = fontMetrics().height();
    QColor colour = palette().color(QPalette::Text);
    colour.setAlphaF(Strength);
    QPainter painter(viewport());
    painter.setPen(colour);
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, m_notice);
}

QItemSelectionModel::SelectionFlags FileBrowser::FilesList::selectionCommand(const QModelIndex& index,
                                                                             const QEvent* event) const
{
    return m_model->isListReady() ? QTreeView::selectionCommand(index, event) : QItemSelectionModel::NoUpdate;
}

QModelIndexList FileBrowser::FilesList::selectedSourceRows() const
{
    QModelIndexList rows;
    for (const QModelIndex& selected : selectionModel()->selectedRows()) {
        const QModelIndex source = m_proxy->mapToSource(selected);
        if (m_model->entry(source.row()))
            rows.append(source);
    }
    return rows;
}

FileBrowser::FilesList::RowName FileBrowser::FilesList::nameOf(int sourceRow) const
{
    const FileInfo* info = m_model->entry(sourceRow);
    if (!info)
        return {};
    return {m_model->displayName(sourceRow), info->isSequence() ? info->fileName() : ""};
}

FileBrowser::FilesList::Choice FileBrowser::FilesList::choice() const
{
    Choice choice;
    for (const QModelIndex& source : selectedSourceRows())
        choice.selected.insert(nameOf(source.row()));
    choice.current = currentName();
    return choice;
}

// The source rows of these names.
QSet<int> FileBrowser::FilesList::find(const QSet<RowName>& names) const
{
    QSet<int> found;
    QSet<RowName> missing = names;
    QHash<QByteArray, QList<int>> sequences; // by the name without the range
    for (int row = 0; row < m_model->rowCount() && !names.isEmpty(); ++row) {
        const RowName name = nameOf(row);
        missing.remove(name);
        if (names.contains(name))
            found.insert(row);
        if (!name.second.isEmpty())
            sequences[name.second].append(row);
    }
    // In mid-read a sequence may still be short of frames.
    if (m_model->isReading())
        return found;
    for (const RowName& name : qAsConst(missing)) {
        const QList<int> rows = sequences.value(name.second);
        if (rows.size() == 1)
            found.insert(rows.first());
    }
    return found;
}

int FileBrowser::FilesList::find(const RowName& name) const
{
    const QSet<int> found = name.first.isEmpty() ? QSet<int>() : find(QSet<RowName>{name});
    return found.isEmpty() ? -1 : *found.begin();
}

void FileBrowser::FilesList::choose(const Choice& choice)
{
    if (choice.isEmpty())
        return;
    std::vector<int> rows;
    for (const int source : find(choice.selected))
        rows.push_back(m_proxy->mapFromSource(m_model->index(source, 0)).row());
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    for (auto first = std::upper_bound(rows.begin(), rows.end(), -1); first != rows.end();) {
        const auto next = std::adjacent_find(first, rows.end(), [](int a, int b) { return a + 1 != b; });
        const auto last = next == rows.end() ? next - 1 : next;
        selection.select(m_proxy->index(*first, 0), m_proxy->index(*last, DirectoryModel::ColumnCount - 1));
        first = last + 1;
    }
    const QModelIndex current = m_proxy->mapFromSource(m_model->index(find(choice.current), 0));
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    setAutoScroll(scrolls);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

// The row itself, or the nearest below it that does not vanish; above it if there is none below.
QModelIndex FileBrowser::FilesList::nextStaying(QModelIndex index, const RowChanges& changes) const
{
    const auto stays = [&](int row) {
        return !changes.vanishes(m_proxy->mapToSource(m_proxy->index(row, 0)).row());
    };
    if (!index.isValid())
        return {};
    for (int row = index.row(); row < m_proxy->rowCount(); ++row) {
        if (stays(row))
            return m_proxy->index(row, index.column());
    }
    for (int row = index.row() - 1; row >= 0; --row) {
        if (stays(row))
            return m_proxy->index(row, index.column());
    }
    return {};
}

// The first row in view is to stay there. Qt would select the row that takes the place of the current one.
void FileBrowser::FilesList::beginUpdate(const RowChanges& changes)
{
    m_held = nextStaying(indexAt(viewport()->rect().topLeft()), changes);
    const QRect held = visualRect(m_held);
    m_heldTop = held.intersects(viewport()->rect()) ? held.top() : 0;
    m_range = currentRange();
    const QModelIndex current = currentIndex();
    const QModelIndex next = nextStaying(current, changes);
    if (next == current)
        return;
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(next, QItemSelectionModel::NoUpdate);
    setAutoScroll(scrolls);
}

void FileBrowser::FilesList::endUpdate()
{
    executeDelayedItemsLayout();
    QScrollBar& bar = *verticalScrollBar();
    const int shift = m_held.isValid() ? visualRect(m_held).top() - m_heldTop : 0;
    if (shift != 0)
        bar.setValue(bar.value() +
                     (verticalScrollMode() == ScrollPerItem ? shift / rowHeight(m_held) : shift));
    m_held = QModelIndex();
    resumeRange();
}

// The selected rows around the current one. While a Shift selection lasts, these are its rows.
QItemSelectionRange FileBrowser::FilesList::currentRange() const
{
    for (const QItemSelectionRange& range : selectionModel()->selection()) {
        if (range.contains(currentIndex()))
            return range;
    }
    return {};
}

// Qt ends a Shift selection when rows come, go or move, and joins it with selected rows beside it. The next
// click with Shift is to replace that selection alone.
void FileBrowser::FilesList::resumeRange()
{
    const QItemSelectionRange before = std::exchange(m_range, {});
    const QItemSelectionRange joined = currentRange();
    if (!joined.isValid())
        return;
    QItemSelectionRange last = joined.intersected(before);
    if (!last.contains(currentIndex()))
        last = joined;
    QItemSelection others = selectionModel()->selection();
    others.removeAll(joined);
    QItemSelection::split(joined, last, &others);
    const QSignalBlocker blocker(selectionModel());
    selectionModel()->select(others, QItemSelectionModel::ClearAndSelect);
    selectionModel()->select({last.topLeft(), last.bottomRight()}, QItemSelectionModel::Select);
}

} // namespace Halvern::UI
