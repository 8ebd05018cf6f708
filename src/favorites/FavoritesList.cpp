#include "favorites/FavoritesList.h"

#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "widgets/LegibleDelegate.h"

#include <QMouseEvent>

namespace Halvern::UI {

FavoritesList::FavoritesList(FavoritesProxy* proxy, QWidget* parent)
    : QListView(parent)
    , m_favorites(proxy)
{
    constexpr int IconSize = 16;
    setMouseTracking(true);
    setItemDelegate(new LegibleDelegate(this));
    // Platforms have larger icons for some folders than for others.
    setIconSize(QSize(IconSize, IconSize));
    // Asking ten thousand rows for their sizes would take seconds.
    setUniformItemSizes(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setModel(proxy);
}

void FavoritesList::focusInEvent(QFocusEvent* event)
{
    // The item view would make its first row the current one, and that would take the browser there.
    QAbstractScrollArea::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call)
    viewport()->update();
}

void FavoritesList::leaveEvent(QEvent* /*event*/)
{
    m_favorites->favoritesModel()->hover(-1);
}

void FavoritesList::mousePressEvent(QMouseEvent* event)
{
    const QPersistentModelIndex before = currentIndex();
    QListView::mousePressEvent(event);
    const bool same = before.isValid() && currentIndex() == before && indexAt(event->pos()) == before;
    if (same && event->button() == Qt::LeftButton)
        emit clickedAgain(before);
}

} // namespace Halvern::UI
