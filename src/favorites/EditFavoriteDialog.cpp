#include "favorites/EditFavoriteDialog.h"

#include "favorites/FavoritesFile.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace Halvern::UI {

namespace {

struct ChooserType
{
    FaveType type;
    const char* name;
    const char* label;
};

// In the order of the rows.
constexpr ChooserType chooserTypesInOrder[] = {
    {FaveImage, "FaveImage", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "image browser:")},
    {FaveMisc, "FaveMisc", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "misc browser:")},
    {FavePython, "FavePython", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "python browser:")},
    {FaveSequence, "FaveSequence", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "sequence browser:")},
    {FaveProject, "FaveProject", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "project browser:")},
    {FaveScript, "FaveScript", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "script browser:")},
    {FaveFont, "FaveFont", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "font browser:")},
    {FaveGeo, "FaveGeo", QT_TRANSLATE_NOOP("Halvern::UI::EditFavoriteDialog", "geo browser:")},
};

constexpr int EveryTypeButSequence = 255 & ~FaveSequence;

void addRow(QGridLayout* grid, QLabel* label, QWidget* control, int row)
{
    label->setBuddy(control);
    grid->addWidget(label, row, 0, Qt::AlignRight);
    grid->addWidget(control, row, 1);
}

} // namespace

EditFavoriteDialog::EditFavoriteDialog(QWidget* parent, Favorite& favorite)
    : QDialog(parent)
{
    setWindowTitle(tr("Edit favorite"));
    auto* grid = new QGridLayout(this);
    m_nameEdit = createEdit(grid, "nameEdit", tr("Name:"), favorite.name, 0);
    m_folderEdit = createEdit(grid, "folderEdit", tr("Folder:"), favorite.path, 1);
    createChooserFrame(favorite.type);
    grid->addWidget(m_chooserFrame, 2, 0, 1, 2);
    m_tooltipEdit = createEdit(grid, "tooltipEdit", tr("Tooltip:"), favorite.tooltip, 3);
    m_iconEdit = createEdit(grid, "iconEdit", tr("Icon:"), favorite.iconPath, 4);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, SIGNAL(accepted()), this, SLOT(accept()));
    connect(buttons, SIGNAL(rejected()), this, SLOT(reject()));
    grid->addWidget(buttons, 5, 1);
}

QLineEdit* EditFavoriteDialog::createEdit(QGridLayout* grid, const char* name, const QString& label,
                                          const QString& text, int row)
{
    auto* edit = new QLineEdit(text, this);
    edit->setObjectName(QLatin1String(name));
    addRow(grid, new QLabel(label, this), edit, row);
    return edit;
}

void EditFavoriteDialog::createChooserFrame(int type)
{
    m_chooserFrame = new QFrame(this);
    m_chooserFrame->setObjectName(QStringLiteral("chooserFrame"));
    m_chooserFrame->setFrameShape(QFrame::StyledPanel);
    auto* grid = new QGridLayout(m_chooserFrame);
    int row = 0;
    for (const ChooserType& chooser : chooserTypesInOrder) {
        createChooserType(grid, chooser.type, chooser.label, row++);
        QCheckBox* box = m_chooserTypes[chooser.type];
        box->setObjectName(QLatin1String(chooser.name));
        box->setChecked((type & chooser.type) != 0);
    }
}

void EditFavoriteDialog::createChooserType(QGridLayout* grid, FaveType type, const char* label, int row)
{
    auto* box = new QCheckBox(m_chooserFrame);
    addRow(grid, new QLabel(tr(label), m_chooserFrame), box, row);
    m_chooserTypes[type] = box;
}

void EditFavoriteDialog::setShowChooserTypes(bool show)
{
    m_chooserFrame->setVisible(show);
}

void EditFavoriteDialog::applyTo(Favorite& favorite) const
{
    favorite.name = FavoritesFile::holdableName(m_nameEdit->text());
    favorite.path = FavoritesFile::holdable(m_folderEdit->text());
    favorite.iconPath = FavoritesFile::holdable(m_iconEdit->text());
    favorite.tooltip = FavoritesFile::holdable(m_tooltipEdit->text());
    favorite.type = FaveAll;
    if (m_chooserFrame->isHidden())
        return;
    for (const auto& [type, box] : m_chooserTypes)
        favorite.type |= box->isChecked() ? type : 0;
    if (favorite.type == EveryTypeButSequence)
        favorite.type = FaveAll;
}

} // namespace Halvern::UI
