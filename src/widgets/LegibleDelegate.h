#pragma once

#include <QStyledItemDelegate>

namespace Halvern::UI {

/// Draws rows whose model gives them a background of its own so that they are calm and can be read. The more
/// vivid that background is, the more of the palette's base is mixed into it; greys stay as they are. If the
/// result is too near to the palette's text colour, the text is black or white.
class LegibleDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace Halvern::UI
