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
    , m_favorites(list)
    , m_rows(*list)
    , m_highlightColour(highlight)
{
}

int FavoritesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant FavoritesModel::data(const QModelIndex& index, int role) const
{
    if (index.row() < 0 || index.row() >= m_rows.size())
        return {};
    const Favorite& favorite = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return favorite.name;
    case Qt::DecorationRole:
        return favorite.icon;
    case Qt::ToolTipRole:
        return plainTooltip(favorite.tooltip.isEmpty() ? favorite.dir.path() : favorite.tooltip);
    case Qt::BackgroundRole:
        return index.row() == m_hoveredRow ? QVariant(*m_highlightColour) : QVariant();
    default:
        return {};
    }
}

void FavoritesModel::resetModel()
{
    beginResetModel();
    m_rows = *m_favorites;
    m_hoveredRow = -1;
    endResetModel();
}

void FavoritesModel::hover(int row)
{
    const QModelIndex left = index(m_hoveredRow);
    const QModelIndex entered = index(row);
    setHoveredRow(row);
    for (const QModelIndex& changed : {left, entered}) {
        if (changed.isValid())
            refreshModel(changed, changed);
    }
}

int FavoritesModel::positionInList(const Favorite& record, int place) const
{
    if (place >= 0 && place < m_favorites->size() && m_favorites->at(place).isSame(record))
        return place;
    const auto found = std::find_if(m_favorites->cbegin(), m_favorites->cend(),
                                    [&](const Favorite& other) { return other.isSame(record); });
    return found == m_favorites->cend() ? -1 : static_cast<int>(found - m_favorites->cbegin());
}

const Favorite* FavoritesModel::favorite(int row) const
{
    const int position = row < 0 || row >= m_rows.size() ? -1 : positionInList(m_rows.at(row), row);
    return position < 0 ? nullptr : &m_favorites->at(position);
}

} // namespace Halvern::UI
