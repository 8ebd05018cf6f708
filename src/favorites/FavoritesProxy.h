#pragma once

#include "favorites/Favorite.h"

#include <QSortFilterProxyModel>

namespace Halvern::UI {

class FavoritesModel;

/// Keeps those rows of a FavoritesModel that are meant for one kind of browser, in their order.
class FavoritesProxy : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit FavoritesProxy(FavoritesModel* model, QObject* parent = nullptr);

    /// The bits of the browser's kind; FaveAll, the initial one, leaves only what every browser shows.
    void setFaveType(FaveType type);

    FavoritesModel* favoritesModel() const { return m_favorites; }
    /// The row of the model for an index of this proxy, -1 for an invalid one.
    int sourceRow(const QModelIndex& index) const { return mapToSource(index).row(); }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    FavoritesModel* m_favorites;
    FaveType m_faveType = FaveAll;
};

} // namespace Halvern::UI
