#include "browser/Controls.h"

#include "browser/FileBrowser.h"
#include "browser/PickListLine.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FilePathEdit.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVariant>

namespace Halvern::UI {

namespace {

// Every control is found by the name of its field. Screen readers say @p spoken; empty for the text it shows.
template <class Widget>
Widget* named(Widget* widget, const char* name, const QString& spoken, const QString& tooltip)
{
    widget->setObjectName(QLatin1String(name));
    widget->setAccessibleName(spoken);
    widget->setToolTip(tooltip);
    return widget;
}

// A style decodes an icon anew for every call, and the variants that Qt makes of each fill its pixmap cache
// with every browser. This icon is kept with the style, and lives as long.
QIcon sharedIcon(QStyle& style, QStyle::StandardPixmap which)
{
    const QByteArray look = QApplication::isRightToLeft() ? "leftwards " : "rightwards ";
    const QByteArray name = "CoreUI icon " + look + QByteArray::number(which) + QIcon::themeName().toUtf8();
    QVariant icon = style.property(name.constData());
    if (!icon.isValid()) {
        icon = style.standardIcon(which);
        style.setProperty(name.constData(), icon);
    }
    return icon.value<QIcon>();
}

void setFixedPolicy(QWidget* widget)
{
    widget->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QPushButton* makeButton(FileBrowser* browser, const char* name, const QString& text, const QString& spoken,
                        const QString& tooltip, const char* slot)
{
    auto* button = named(new QPushButton(text, browser), name, spoken, tooltip);
    QObject::connect(button, SIGNAL(clicked()), browser, slot);
    return button;
}

} // namespace

void Controls::make(FileBrowser* browser, QWidget* favoritesList, QWidget* filesList)
{
    makeNavigation(browser);
    makeFavorites(browser);
    makeOptions(browser);
    makeButtons(browser);
    layOut(browser, favoritesList, filesList);
    QWidget* const order[] = {newFolderButton,      upButton,      backButton,        forwardButton,
                              previewButton,        favoritesList, addFavoriteButton, editFavoriteButton,
                              removeFavoriteButton, filesList,     filenameEdit,      sequencesCheck,
                              splitCheck,           filterCombo,   nextButton,        openButton,
                              cancelButton};
    for (std::size_t i = 1; i < std::size(order); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void Controls::makeNavigation(FileBrowser* browser)
{
    const auto make = [browser](const char* name, QStyle::StandardPixmap icon, const QString& spoken,
                                const QString& tooltip, const char* slot) {
        constexpr int ButtonSize = 24;
        auto* button = makeButton(browser, name, QString(), spoken, tooltip, slot);
        button->setIcon(sharedIcon(*browser->style(), icon));
        setFixedPolicy(button);
        button->setFixedSize(ButtonSize, ButtonSize);
        return button;
    };
    backButton = make("backButton", QStyle::SP_ArrowBack, FileBrowser::tr("Back"),
                      FileBrowser::tr("Go back one step in directory history."), SLOT(navigateBack()));
    forwardButton =
        make("forwardButton", QStyle::SP_ArrowForward, FileBrowser::tr("Forward"),
             FileBrowser::tr("Go forward one step in directory history."), SLOT(navigateForwards()));
    upButton = make("upButton", QStyle::SP_FileDialogToParent, FileBrowser::tr("Parent folder"),
                    FileBrowser::tr("Go to the parent directory."), SLOT(navigateUp()));
    newFolderButton = make("newFolderButton", QStyle::SP_FileDialogNewFolder, FileBrowser::tr("New folder"),
                           FileBrowser::tr("Create a new directory here."), SLOT(newFolder()));

    previewButton = named(new DisclosureButton(nullptr, true), "previewButton", FileBrowser::tr("Preview"),
                          FileBrowser::tr("Show a preview of the currently selected item."));
    setFixedPolicy(previewButton);
    previewButton->setVisible(false);
    QObject::connect(previewButton, SIGNAL(toggled(bool)), browser, SLOT(showPreview(bool)));
}

void Controls::makeFavorites(FileBrowser* browser)
{
    addFavoriteButton =
        makeButton(browser, "addFavoriteButton", FileBrowser::tr("+"), FileBrowser::tr("Add favorite"),
                   FileBrowser::tr("Add a favorite for the current directory."), SLOT(addFavorite()));
    editFavoriteButton =
        makeButton(browser, "editFavoriteButton", FileBrowser::tr("edit"), FileBrowser::tr("Edit favorite"),
                   FileBrowser::tr("Edit the selected favorite."), SLOT(editFavorite()));
    removeFavoriteButton =
        makeButton(browser, "removeFavoriteButton", FileBrowser::tr("-"), FileBrowser::tr("Remove favorite"),
                   FileBrowser::tr("Delete the selected favorite."), SLOT(removeFavorite()));
    constexpr int ButtonHeight = 15;
    constexpr int SmallButtonWidth = 30;
    constexpr int EditButtonWidth = 130;
    for (QPushButton* button : {addFavoriteButton, removeFavoriteButton})
        button->setMaximumSize(SmallButtonWidth, ButtonHeight);
    editFavoriteButton->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    editFavoriteButton->setMaximumHeight(ButtonHeight);
    editFavoriteButton->setFixedWidth(EditButtonWidth);
    editFavoriteButton->setEnabled(false);
    removeFavoriteButton->setEnabled(false);
}

void Controls::makeOptions(FileBrowser* browser)
{
    filenameEdit = named(new FilePathEdit(browser), "filenameEdit", FileBrowser::tr("File name"), QString());
    filenameEdit->installEventFilter(browser);
    QObject::connect(filenameEdit, SIGNAL(textEdited(QString)), browser, SLOT(autoComplete(QString)));
    QObject::connect(filenameEdit, SIGNAL(textChanged(QString)), browser,
                     SIGNAL(filenameTextChanged(QString)));
    QObject::connect(filenameEdit, SIGNAL(returnPressed()), browser, SLOT(accept()));

    sequencesCheck =
        named(new QCheckBox(FileBrowser::tr("sequences"), browser), "sequencesCheck",
              FileBrowser::tr("Collapse sequences"),
              QStringLiteral("Enable to display image sequences as a single line item in the file list."));
    sequencesCheck->setChecked(true);
    QObject::connect(sequencesCheck, SIGNAL(toggled(bool)), browser, SLOT(showSequences(bool)));

    splitCheck = named(new QCheckBox(FileBrowser::tr("split seq"), browser), "splitCheck",
                       FileBrowser::tr("Split sequences at gaps"),
                       FileBrowser::tr("Treat gaps in sequence numbering as separate sequences."));
    setFixedPolicy(splitCheck);
    QObject::connect(splitCheck, SIGNAL(toggled(bool)), browser, SLOT(splitIncompleteSequences(bool)));

    filterCombo = named(new QComboBox(browser), "filterCombo", FileBrowser::tr("Filter"),
                        FileBrowser::tr("Only show files matching the filter."));
    filterCombo->setEditable(true);
    filterCombo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    QObject::connect(filterCombo, SIGNAL(currentTextChanged(QString)), browser, SLOT(filterChanged(QString)));
    filterLabel = named(new QLabel(FileBrowser::tr("Filter:"), browser), "filterLabel", QString(), QString());
    problemLabel = named(new QLabel(browser), "problemLabel", QString(), QString());
    problemLabel->setTextFormat(Qt::PlainText);
    problemLabel->hide();
    pickListLine = named(new PickListLine(browser), "pickListLine", QString(), QString());
}

void Controls::makeButtons(FileBrowser* browser)
{
    nextButton =
        makeButton(browser, "nextButton", FileBrowser::tr("Next"), QString(),
                   FileBrowser::tr(
                       "Adds the selected item to a pick list returned when the 'Open' button is clicked.\n\n"
                       "Press Space over an item to add it to the pick list.\n\n"
                       "Right-click on an item to remove it from the pick list."),
                   SLOT(nextClicked()));
    nextButton->setDefault(true);
    openButton = makeButton(browser, "openButton", FileBrowser::tr("Open"), QString(),
                            FileBrowser::tr("Choose the selected item and close."), SLOT(accept()));
    openButton->setDefault(true);
    openButton->setEnabled(false);
    cancelButton = makeButton(browser, "cancelButton", FileBrowser::tr("Cancel"), QString(),
                              FileBrowser::tr("Close without selecting anything."), SLOT(reject()));
    for (QPushButton* button : {nextButton, openButton, cancelButton})
        setFixedPolicy(button);
}

void Controls::layOut(FileBrowser* browser, QWidget* favoritesList, QWidget* filesList)
{
    auto* topRow = new QHBoxLayout;
    for (QPushButton* button : {newFolderButton, upButton, backButton, forwardButton})
        topRow->addWidget(button);
    topRow->addStretch(1);
    topRow->addWidget(previewButton, 1, Qt::AlignRight);

    auto* favoritesGrid = new QGridLayout;
    favoritesGrid->setSpacing(0);
    favoritesGrid->addWidget(favoritesList, 0, 0, 1, 3);
    favoritesGrid->addWidget(addFavoriteButton, 1, 0);
    favoritesGrid->addWidget(editFavoriteButton, 1, 1);
    favoritesGrid->addWidget(removeFavoriteButton, 1, 2);

    auto* filesBox = new QVBoxLayout;
    filesBox->addWidget(filesList, 1);
    filesBox->addWidget(problemLabel);
    filesBox->addWidget(pickListLine);

    auto* optionsRow = new QHBoxLayout;
    optionsRow->addWidget(sequencesCheck);
    optionsRow->addWidget(splitCheck);
    optionsRow->addWidget(filterLabel, 0, Qt::AlignRight);

    auto* buttonsRow = new QHBoxLayout;
    for (QPushButton* button : {nextButton, openButton, cancelButton})
        buttonsRow->addWidget(button);

    auto* layout = new QGridLayout(browser);
    layout->addLayout(topRow, 0, 0, 1, 3);
    layout->addLayout(favoritesGrid, 1, 0);
    layout->addLayout(filesBox, 1, 1, 1, 2);
    layout->addWidget(filenameEdit, 2, 0, 1, 3);
    layout->addLayout(optionsRow, 3, 0);
    layout->addWidget(filterCombo, 3, 1);
    layout->addLayout(buttonsRow, 3, 2);
}

} // namespace Halvern::UI
