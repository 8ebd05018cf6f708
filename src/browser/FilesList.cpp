#include "browser/FilesList.h"

#include "browser/DirectoryModel.h"
#include "browser/ProxyModel.h"
#include "widgets/LegibleDelegate.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>

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
    // The mouse is over no row any more.
    connect(this, SIGNAL(viewportEntered()), this, SLOT(hoverNothing()));
}

QSize FileBrowser::FilesList::sizeHint() const
{
    return {m_widthHint, 200};
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

// The first click may have opened the folder that it was on. The second was meant for that folder too, not
// for what is in its place now.
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

void FileBrowser::FilesList::leaveEvent(QEvent* /*event*/)
{
    hoverNothing();
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

// Empty for a row without an entry.
QByteArray FileBrowser::FilesList::nameOf(const QModelIndex& index) const
{
    const FileInfo* info = m_model->entry(m_proxy->mapToSource(index).row());
    return info ? info->displayName() : "";
}

FileBrowser::FilesList::Choice FileBrowser::FilesList::choice() const
{
    Choice choice;
    for (const QModelIndex& source : selectedSourceRows())
        choice.selected.insert(m_model->displayName(source.row()));
    choice.current = currentName();
    return choice;
}

void FileBrowser::FilesList::choose(const Choice& choice)
{
    if (choice.selected.isEmpty() && choice.current.isEmpty())
        return;
    QItemSelection selection;
    QModelIndex current;
    int first = -1; // of the selected rows that follow each other
    const int rows = m_proxy->rowCount();
    for (int row = 0; row <= rows; ++row) {
        const QByteArray name = row < rows ? nameOf(m_proxy->index(row, 0)) : QByteArray();
        const bool isSelected = choice.selected.contains(name);
        if (isSelected && first < 0)
            first = row;
        if (!isSelected && first >= 0) {
            selection.select(m_proxy->index(first, 0),
                             m_proxy->index(row - 1, DirectoryModel::ColumnCount - 1));
            first = -1;
        }
        if (!name.isEmpty() && name == choice.current)
            current = m_proxy->index(row, 0);
    }
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    setAutoScroll(scrolls);
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

} // namespace Halvern::UI
