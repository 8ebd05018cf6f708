#pragma once

#include <QListView>

class QAction;
class QMenu;

namespace Halvern::UI {

class FavoritesProxy;

/// The view of the favourites: hover and the context menu. A row that becomes the current one is chosen; the
/// keyboard focus alone chooses none.
class FavoritesList : public QListView
{
    Q_OBJECT

public:
    /// Shows @p proxy, which it does not own.
    explicit FavoritesList(FavoritesProxy* proxy, QWidget* parent = nullptr);

    /// The context menu. Before it opens, @p edit and @p remove are enabled only if the current favourite
    /// can be edited. Nothing is owned.
    void setMenu(QMenu* menu, QAction* edit, QAction* remove);

signals:
    /// The current row was clicked, which changes no current row.
    void clickedAgain(const QModelIndex& index);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    FavoritesProxy* m_favorites;
    QMenu* m_menu = nullptr;
    QAction* m_editAction = nullptr;
    QAction* m_removeAction = nullptr;
};

} // namespace Halvern::UI
