// Construction, layout and plain setters.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/FilesMenu.h"
#include "browser/ProxyModel.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "favorites/FavoritesStore.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FilePathEdit.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMutex>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

namespace Halvern::UI {

namespace {

QMutex colourMutex;

// Every control is found by the name of its field.
template <class Widget>
Widget* named(Widget* widget, const char* name)
{
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QPushButton* makeButton(QWidget* parent, const char* name, const QString& text, const QString& tooltip)
{
    auto* button = named(new QPushButton(text, parent), name);
    button->setToolTip(tooltip);
    return button;
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

} // namespace

QColor FileBrowser::_highlightColor = Qt::black;
QColor FileBrowser::_alreadyQueuedColor = Qt::red;
bool FileBrowser::_useLastSavedDir = true;
FileBrowser::SequenceMode FileBrowser::_sequenceMode = FileBrowser::SequenceMode::Collapsed;
bool FileBrowser::_assumeZeroPadding = false;
QString FileBrowser::_defaultPath;

FileBrowser::FileBrowser(QWidget* parent)
    : QWidget(parent)
{
    attributesTimer = new QTimer(this);
    attributesTimer->setSingleShot(true);
    connect(attributesTimer, SIGNAL(timeout()), this, SLOT(showArrivedAttributes()));
    prepareFavorites();
    initWidgets();
    initLayout();
    initAccessibility();
    setSelectionType(SelectionType::Files);
    setMayNotExist(false);
    setMultipleSelections(false);
    setFocusProxy(filenameEdit);
    setFocus(Qt::OtherFocusReason);
    favoritesChanged = false;
    loadDirectorySettings();
}

FileBrowser::~FileBrowser()
{
    if (favoritesChanged || FavoritesStore::instance().isSaveDue())
        SaveFavorites();
    AppSettings::Store({{_directoryIdentifier, currentDirectory.absolutePath()},
                        {_previewIdentifier, previewButton->checkState() == Qt::Checked}});
    // What points back to the browser goes before the browser does, and without calling it.
    filesMenu->disconnect(this);
    delete filesMenu;
    delete filesList;
    delete proxyModel;
    delete directoryModel;
    delete favoritesList;
    delete favoritesProxy;
    delete favoritesModel;
}

void FileBrowser::initWidgets()
{
    initFavoritesPanel();
    initFilesList();
    initNavigationButtons();
    initOptions();
    initDialogButtons();
    filesList->setFocus(Qt::OtherFocusReason);
}

void FileBrowser::initFavoritesPanel()
{
    constexpr int ButtonHeight = 15;
    constexpr int SmallButtonWidth = 30;
    constexpr int EditButtonWidth = 130;
    initFavoritesList();
    addFavoriteButton =
        makeButton(this, "addFavoriteButton", tr("+"), tr("Add a favorite for the current directory."));
    addFavoriteButton->setMaximumSize(SmallButtonWidth, ButtonHeight);
    editFavoriteButton =
        makeButton(this, "editFavoriteButton", tr("edit"), tr("Edit the selected favorite."));
    editFavoriteButton->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    editFavoriteButton->setMaximumHeight(ButtonHeight);
    editFavoriteButton->setFixedWidth(EditButtonWidth);
    removeFavoriteButton =
        makeButton(this, "removeFavoriteButton", tr("-"), tr("Delete the selected favorite."));
    removeFavoriteButton->setMaximumSize(SmallButtonWidth, ButtonHeight);
    editFavoriteButton->setEnabled(false);
    removeFavoriteButton->setEnabled(false);
    connect(addFavoriteButton, SIGNAL(clicked()), this, SLOT(addFavorite()));
    connect(editFavoriteButton, SIGNAL(clicked()), this, SLOT(editFavorite()));
    connect(removeFavoriteButton, SIGNAL(clicked()), this, SLOT(removeFavorite()));
}

void FileBrowser::initFilesList()
{
    directoryModel = new DirectoryModel(this);
    proxyModel = new ProxyModel(this);
    filesList = named(new FilesList(this), "filesList");
    filesList->setUniformRowHeights(true);
    filesList->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    filesList->setSelectionBehavior(QAbstractItemView::SelectRows);
    filesList->setRootIsDecorated(false);
    filesList->setItemsExpandable(false);
    filesList->setSortingEnabled(true);
    filesList->setTextElideMode(Qt::ElideMiddle);
    filesList->setEditTriggers(QAbstractItemView::EditKeyPressed);
    filesList->setContextMenuPolicy(Qt::CustomContextMenu);
    filesList->setDragDropMode(QAbstractItemView::DragOnly);
    filesList->setModel(proxyModel);
    filesList->setMinimumSize(250, 250);
    filesList->setMouseTracking(true);

    QHeaderView* header = filesList->header();
    loadSortOrder();
    connect(header, SIGNAL(sortIndicatorChanged(int, Qt::SortOrder)), this,
            SLOT(sortingChanged(int, Qt::SortOrder)));
    header->setStretchLastSection(true);
    header->setSectionsMovable(false);

    // The fourth sample has no column; it widens the list.
    const char* const samples[] = {"wwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwww", "128.88 GB", "mp3Folder",
                                   "10/29/81 02:02PM"};
    int section = 0;
    int width = 0;
    for (const char* sample : samples) {
        const int advance = fontMetrics().horizontalAdvance(QLatin1String(sample));
        header->resizeSection(section++, advance);
        width += advance;
    }
    filesList->setWidthHint(width);

    filesMenu = named(new FilesMenu(this), "filesMenu");
    filesMenu->defaultSetup();
    connect(filesList->selectionModel(),
            SIGNAL(selectionChanged(const QItemSelection&, const QItemSelection&)), this,
            SLOT(fileSelectionChanged()));
    connect(filesList, SIGNAL(clicked(QModelIndex)), this, SLOT(fileClicked(QModelIndex)));
    connect(filesList, SIGNAL(doubleClicked(QModelIndex)), this, SLOT(fileDoubleClicked(QModelIndex)));
    connect(filesList, SIGNAL(entered(QModelIndex)), this, SLOT(hoverItem(QModelIndex)));
}

void FileBrowser::initNavigationButtons()
{
    const auto make = [this](const char* name, QStyle::StandardPixmap icon, const QString& tooltip,
                             const char* slot) {
        constexpr int ButtonSize = 24;
        QPushButton* button = makeButton(this, name, QString(), tooltip);
        button->setIcon(sharedIcon(*style(), icon));
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        button->setFixedSize(ButtonSize, ButtonSize);
        connect(button, SIGNAL(clicked()), this, slot);
        return button;
    };
    backButton = make("backButton", QStyle::SP_ArrowBack, tr("Go back one step in directory history."),
                      SLOT(navigateBack()));
    forwardButton = make("forwardButton", QStyle::SP_ArrowForward,
                         tr("Go forward one step in directory history."), SLOT(navigateForwards()));
    upButton = make("upButton", QStyle::SP_FileDialogToParent, tr("Go to the parent directory."),
                    SLOT(navigateUp()));
    newFolderButton = make("newFolderButton", QStyle::SP_FileDialogNewFolder,
                           tr("Create a new directory here."), SLOT(newFolder()));

    previewButton = named(new DisclosureButton(nullptr, true), "previewButton");
    previewButton->setToolTip(tr("Show a preview of the currently selected item."));
    previewButton->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    previewButton->setVisible(false);
    connect(previewButton, SIGNAL(toggled(bool)), this, SLOT(showPreview(bool)));
}

void FileBrowser::initOptions()
{
    filenameEdit = named(new FilePathEdit(this), "filenameEdit");
    filenameEdit->installEventFilter(this);
    connect(filenameEdit, SIGNAL(textEdited(QString)), this, SLOT(autoComplete(const QString&)));
    connect(filenameEdit, SIGNAL(textChanged(QString)), this, SIGNAL(filenameTextChanged(QString)));
    connect(filenameEdit, SIGNAL(returnPressed()), this, SLOT(accept()));

    sequencesCheck = named(new QCheckBox(tr("sequences"), this), "sequencesCheck");
    sequencesCheck->setToolTip(
        QStringLiteral("Enable to display image sequences as a single line item in the file list."));
    sequencesCheck->setChecked(true);
    connect(sequencesCheck, SIGNAL(toggled(bool)), this, SLOT(showSequences(bool)));

    splitCheck = named(new QCheckBox(tr("split seq"), this), "splitCheck");
    splitCheck->setToolTip(tr("Treat gaps in sequence numbering as separate sequences."));
    splitCheck->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(splitCheck, SIGNAL(toggled(bool)), this, SLOT(splitIncompleteSequences(bool)));

    filterCombo = named(new QComboBox(this), "filterCombo");
    filterCombo->setToolTip(tr("Only show files matching the filter."));
    filterCombo->setEditable(true);
    filterCombo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    connect(filterCombo, SIGNAL(currentIndexChanged(QString)), this, SLOT(filterChanged(const QString&)));
    connect(filterCombo, SIGNAL(editTextChanged(QString)), this, SLOT(filterChanged(const QString&)));
    filterLabel = named(new QLabel(tr("Filter:"), this), "filterLabel");
}

void FileBrowser::initDialogButtons()
{
    const auto make = [this](const char* name, const QString& text, const QString& tooltip,
                             const char* slot) {
        QPushButton* button = makeButton(this, name, text, tooltip);
        button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        connect(button, SIGNAL(clicked()), this, slot);
        return button;
    };
    nextButton =
        make("nextButton", tr("Next"),
             tr("Adds the selected item to a pick list returned when the 'Open' button is clicked.\n\n"
                "Press Space over an item to add it to the pick list.\n\n"
                "Right-click on an item to remove it from the pick list."),
             SLOT(nextClicked()));
    nextButton->setDefault(true);
    openButton = make("openButton", tr("Open"), tr("Choose the selected item and close."), SLOT(accept()));
    openButton->setDefault(true);
    openButton->setEnabled(mayNotExist);
    cancelButton =
        make("cancelButton", tr("Cancel"), tr("Close without selecting anything."), SLOT(reject()));
}

void FileBrowser::initLayout()
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

    auto* optionsRow = new QHBoxLayout;
    optionsRow->addWidget(sequencesCheck);
    optionsRow->addWidget(splitCheck);
    optionsRow->addWidget(filterLabel, 0, Qt::AlignRight);

    auto* buttonsRow = new QHBoxLayout;
    for (QPushButton* button : {nextButton, openButton, cancelButton})
        buttonsRow->addWidget(button);

    mainLayout = new QGridLayout(this);
    mainLayout->addLayout(topRow, 0, 0, 1, 3);
    mainLayout->addLayout(favoritesGrid, 1, 0);
    mainLayout->addLayout(filesBox, 1, 1, 1, 2);
    mainLayout->addWidget(filenameEdit, 2, 0, 1, 3);
    mainLayout->addLayout(optionsRow, 3, 0);
    mainLayout->addWidget(filterCombo, 3, 1);
    mainLayout->addLayout(buttonsRow, 3, 2);
}

void FileBrowser::setMultipleSelections(bool multiple)
{
    multipleSelections = multiple;
    filesList->setSelectionMode(multiple ? QAbstractItemView::ExtendedSelection
                                         : QAbstractItemView::SingleSelection);
    nextButton->setVisible(multiple);
    if (multiple)
        filesMenu->setEditActionsVisible(true);
}

void FileBrowser::setButtonsVisible(bool visible)
{
    buttonsVisible = visible;
    for (QPushButton* button : {nextButton, openButton, cancelButton})
        button->setVisible(visible);
}

void FileBrowser::setAcceptButtonText(const QString& text)
{
    openButton->setText(text);
}

void FileBrowser::setAcceptButtonTooltip(const QString& text)
{
    openButton->setToolTip(text);
}

void FileBrowser::setAcceptButtonEnabled(bool enabled)
{
    openButton->setEnabled(enabled);
}

void FileBrowser::setNextButtonEnabled(bool enabled)
{
    nextButton->setEnabled(enabled);
}

void FileBrowser::setPreviewWidget(QWidget* widget)
{
    previewWidget = widget;
    if (!widget)
        return;
    connect(this, SIGNAL(fileSelected(const Halvern::UI::FileInfo&, QDir)), widget,
            SLOT(fileSelected(const Halvern::UI::FileInfo&, QDir)));
    if (QLayout* layout = widget->layout()) {
        layout->setContentsMargins(0, 2, 0, 0);
        layout->update();
        widget->updateGeometry();
    }
    mainLayout->addWidget(widget, mainLayout->rowCount(), 0, 1, mainLayout->columnCount());
    previewButton->setVisible(true);
    if (const std::optional<bool> open = AppSettings::Flag(_previewIdentifier))
        previewButton->setChecked(*open);
    // A layout shows what is added to it; the button says otherwise.
    if (!previewButton->isChecked())
        widget->hide();
}

void FileBrowser::showPreview(bool state)
{
    if (!previewWidget)
        return;
    const QPointer<FileBrowser> self(this);
    if (state && !previewWidget->isVisible())
        emit previewOpening();
    if (!self || !previewWidget)
        return;
    previewWidget->setVisible(state);
    updateGeometry();
    if (!state)
        emit previewClosed();
}

void FileBrowser::SetHighlightColor(const QColor& colour)
{
    const QMutexLocker lock(&colourMutex);
    _highlightColor = colour;
}

void FileBrowser::SetQueuedColor(const QColor& colour)
{
    const QMutexLocker lock(&colourMutex);
    _alreadyQueuedColor = colour;
}

} // namespace Halvern::UI
