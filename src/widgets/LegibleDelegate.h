#pragma once

#include <QStyledItemDelegate>

namespace Halvern::UI {

/// Softens the background that a model gives a row, and keeps the text legible. The more vivid the background
/// is, the more of the palette's base is mixed into it. Greys stay as they are. If the contrast to the
/// palette's text colour is too low, the text is black or white. Latin text has no kerning, which is faster.
class LegibleDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace Halvern::UI
