#include "favorites/FavoritesProxy.h"

#include "favorites/FavoritesModel.h"

namespace Halvern::UI {

FavoritesProxy::FavoritesProxy(FavoritesModel* model, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_favorites(model)
{
    setSourceModel(model);
}

void FavoritesProxy::setFaveType(FaveType type)
{
    if (type == m_faveType)
        return;
    m_faveType = type;
    invalidateFilter();
}

bool FavoritesProxy::filterAcceptsRow(int row, const QModelIndex& parent) const
{
    return sourceModel() && row >= 0 && row < sourceModel()->rowCount(parent) &&
           m_favorites->shown(row).isFor(m_faveType);
}

} // namespace Halvern::UI
