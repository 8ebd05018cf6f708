#pragma once

#include <QListView>

namespace Halvern::UI {

class FavoritesProxy;

/// The view of the favourites. A row that becomes the current one is chosen; the focus alone chooses none.
class FavoritesList : public QListView
{
    Q_OBJECT

public:
    /// Shows @p proxy, which it does not own.
    explicit FavoritesList(FavoritesProxy* proxy, QWidget* parent = nullptr);

signals:
    /// The current row was clicked, which changes no current row.
    void clickedAgain(const QModelIndex& index);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    FavoritesProxy* m_favorites;
};

} // namespace Halvern::UI
