#pragma once

#include "favorites/Favorite.h"

#include <QAbstractListModel>
#include <QColor>
#include <QList>

namespace Halvern::UI {

/// The favourites as rows of one column. Shows the list as it was at the last resetModel().
class FavoritesModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// @p list and @p highlight, the colour of the row under the mouse, are not owned and outlive the model.
    FavoritesModel(const QList<Favorite>* list, const QColor* highlight, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    /// Name, icon, tooltip (the folder if the favourite has none) and the highlight of the hovered row.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    /// Takes over what the list holds by now. No row is hovered after it.
    void resetModel();
    void refreshModel(const QModelIndex& from, const QModelIndex& to) { emit dataChanged(from, to); }

    /// The row under the mouse, -1 for none. Setting it announces nothing.
    int hoveredRow() const { return m_hoveredRow; }
    void setHoveredRow(int row) { m_hoveredRow = row; }
    /// Sets the row under the mouse, and announces it and the one before it as changed.
    void hover(int row);

    /// What the row shows; it must be there.
    const Favorite& shown(int row) const { return m_rows.at(row); }
    /// The favourite that the row shows, in the list itself; null if there is no such row, or if the
    /// favourite was removed or edited elsewhere in the meantime.
    const Favorite* favorite(int row) const;
    /// The position of @p record in the list, -1 if it is not there any more. Of several equal ones it is the
    /// one at @p place, its position before, or else the first.
    int positionInList(const Favorite& record, int place) const;

private:
    const QList<Favorite>* m_favorites;
    QList<Favorite> m_rows;
    const QColor* m_highlightColour;
    int m_hoveredRow = -1;
};

} // namespace Halvern::UI
