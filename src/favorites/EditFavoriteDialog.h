#pragma once

#include "favorites/Favorite.h"

#include <QDialog>
#include <map>

class QCheckBox;
class QFrame;
class QGridLayout;
class QLineEdit;

namespace Halvern::UI {

/// Asks for the values of a favourite: name, folder, tooltip, icon, and the kinds of browser that show it.
class EditFavoriteDialog : public QDialog
{
    Q_OBJECT

public:
    EditFavoriteDialog(QWidget* parent, Favorite& favorite);

    /// Shows or hides the boxes for the kinds of browser (default: shown).
    void setShowChooserTypes(bool show);
    /// Puts what was typed into @p favorite, changed to what the favourites file can hold. The type is made
    /// of the checked boxes: 0, for every browser, if the boxes are hidden, none is checked, or all but
    /// "sequence browser:" are.
    void applyTo(Favorite& favorite) const;

private:
    void createChooserType(QGridLayout* grid, FaveType type, const char* label, int row);
    void createChooserFrame(int type);
    QLineEdit* createEdit(QGridLayout* grid, const char* name, const QString& label, const QString& text,
                          int row);

    QLineEdit* m_nameEdit;
    QLineEdit* m_folderEdit;
    QFrame* m_chooserFrame;
    QLineEdit* m_tooltipEdit;
    QLineEdit* m_iconEdit;
    std::map<int, QCheckBox*> m_chooserTypes; // by FaveType
};

} // namespace Halvern::UI
