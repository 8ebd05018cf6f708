// What the keyboard and assistive technology need: names of controls that show none, the order of Tab, and
// keys for what otherwise takes a mouse.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "favorites/FavoritesList.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FilePathEdit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QPushButton>
#include <QShortcut>

namespace Halvern::UI {

void FileBrowser::initAccessibility()
{
    const std::pair<QWidget*, QString> names[] = {
        {newFolderButton, tr("New folder")},
        {upButton, tr("Parent folder")},
        {backButton, tr("Back")},
        {forwardButton, tr("Forward")},
        {previewButton, tr("Preview")},
        {favoritesList, tr("Favorites")},
        {addFavoriteButton, tr("Add favorite")},
        {editFavoriteButton, tr("Edit favorite")},
        {removeFavoriteButton, tr("Remove favorite")},
        {filesList, tr("Files")},
        {filenameEdit, tr("File name")},
        {sequencesCheck, tr("Collapse sequences")},
        {splitCheck, tr("Split sequences at gaps")},
        {filterCombo, tr("Filter")},
    };
    for (const auto& [control, name] : names)
        control->setAccessibleName(name);

    // From the top left to the bottom right, as it is laid out.
    QWidget* const order[] = {newFolderButton,      upButton,      backButton,        forwardButton,
                              previewButton,        favoritesList, addFavoriteButton, editFavoriteButton,
                              removeFavoriteButton, filesList,     filenameEdit,      sequencesCheck,
                              splitCheck,           filterCombo,   nextButton,        openButton,
                              cancelButton};
    for (std::size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    // The header takes no focus.
    for (int column = 0; column < DirectoryModel::ColumnCount; ++column) {
        auto* shortcut = new QShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(column + 1)), filesList);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, filesList, [this, column] { sortByKey(column); });
    }
}

void FileBrowser::sortByKey(int column)
{
    QHeaderView& header = *filesList->header();
    const bool reverse =
        header.sortIndicatorSection() == column && header.sortIndicatorOrder() == Qt::AscendingOrder;
    header.setSortIndicator(column, reverse ? Qt::DescendingOrder : Qt::AscendingOrder);
}

} // namespace Halvern::UI
