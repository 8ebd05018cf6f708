#include "favorites/FavoritesModel.h"

#include <QTextDocument>
#include <algorithm>

namespace Halvern::UI {

namespace {

// A tooltip that looks like markup would be shown as what it marks up.
QString plainTooltip(const QString& text)
{
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

} // namespace

FavoritesModel::FavoritesModel(const QList<Favorite>* list, const QColor* highlight, QObject* parent)
    : QAbstractListModel(parent)
    , favorites(list)
    , rows(*list)
    , highlightColour(highlight)
{
}

int FavoritesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(rows.size());
}

QVariant FavoritesModel::data(const QModelIndex& index, int role) const
{
    if (index.row() < 0 || index.row() >= rows.size())
        return {};
    const Favorite& favorite = rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return favorite.name;
    case Qt::DecorationRole:
        return favorite.icon;
    case Qt::ToolTipRole:
        return plainTooltip(favorite.tooltip.isEmpty() ? favorite.dir.path() : favorite.tooltip);
    case Qt::BackgroundRole:
        return index.row() == hovered ? QVariant(*highlightColour) : QVariant();
    default:
        return {};
    }
}

void FavoritesModel::resetModel()
{
    beginResetModel();
    rows = *favorites;
    hovered = -1;
    endResetModel();
}

void FavoritesModel::refreshModel(const QModelIndex& from, const QModelIndex& to)
{
    emit dataChanged(from, to);
}

void FavoritesModel::hover(int row)
{
    const QModelIndex left = index(hovered);
    const QModelIndex entered = index(row);
    setHoveredRow(row);
    for (const QModelIndex& changed : {left, entered}) {
        if (changed.isValid())
            refreshModel(changed, changed);
    }
}

int FavoritesModel::positionInList(const Favorite& record, int place) const
{
    if (place >= 0 && place < favorites->size() && favorites->at(place).isSame(record))
        return place;
    const auto found = std::find_if(favorites->cbegin(), favorites->cend(),
                                    [&](const Favorite& other) { return other.isSame(record); });
    return found == favorites->cend() ? -1 : static_cast<int>(found - favorites->cbegin());
}

const Favorite* FavoritesModel::favorite(int row) const
{
    const int position = row < 0 || row >= rows.size() ? -1 : positionInList(rows.at(row), row);
    return position < 0 ? nullptr : &favorites->at(position);
}

} // namespace Halvern::UI
