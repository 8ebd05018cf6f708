#include "favorites/FavoritesProxy.h"

#include "favorites/FavoritesModel.h"

namespace Halvern::UI {

FavoritesProxy::FavoritesProxy(FavoritesModel* model, QObject* parent)
    : QSortFilterProxyModel(parent)
    , favorites(model)
{
    setSourceModel(model);
}

void FavoritesProxy::setFaveType(FaveType type)
{
    if (type == mask)
        return;
    mask = type;
    invalidateFilter();
}

const Favorite* FavoritesProxy::favorite(const QModelIndex& index) const
{
    return favorites->favorite(sourceRow(index));
}

bool FavoritesProxy::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    return sourceModel() && row >= 0 && row < sourceModel()->rowCount(parent) &&
           favorites->shown(row).isFor(mask);
}

} // namespace Halvern::UI
