// Construction, plain setters and class-wide settings.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "browser/FilesMenu.h"
#include "browser/ListNotice.h"
#include "browser/PickListLine.h"
#include "browser/ProxyModel.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "favorites/FavoritesStore.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FilePathEdit.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHeaderView>
#include <QPushButton>

namespace Halvern::UI {

FileBrowser::Private::ClassWide FileBrowser::Private::s_classWide;

FileBrowser::Private::Private(FileBrowser* browser)
    : q(browser)
{
    m_attributesTimer.setSingleShot(true);
    QObject::connect(&m_attributesTimer, &QTimer::timeout, [this] { showArrivedAttributes(); });
}

FileBrowser::Private::~Private()
{
    m_filesMenu->disconnect(q);
    delete m_filesMenu;
    delete m_notice;
    delete m_filesList;
    delete m_proxy;
    delete m_model;
    delete m_favoritesList;
    delete m_favoritesProxy;
    delete m_favoritesModel;
}

FileBrowser::FileBrowser(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this))
{
    FavoritesStore& store = FavoritesStore::instance();
    store.setProductFolder(QCoreApplication::applicationDirPath());
    store.initialize();
    store.resolveAll();
    d->initFavorites();
    d->initFilesList();
    d->m_controls.make(this, d->m_favoritesList, d->m_filesList);
    connect(d->m_controls.pickListLine, &PickListLine::menuRequested, d->m_filesMenu,
            [this](const QPoint& position) { d->m_filesMenu->popupMenu(position, QModelIndex()); });
    connect(d->m_filesList, SIGNAL(backRequested()), d->m_controls.backButton, SLOT(click()));
    connect(d->m_filesList, SIGNAL(upRequested()), d->m_controls.upButton, SLOT(click()));
    connect(d->m_filesList, SIGNAL(forwardRequested()), d->m_controls.forwardButton, SLOT(click()));
    d->initWatch();
    setSelectionType(SelectionType::Files);
    setMayNotExist(false);
    setMultipleSelections(false);
    setFocusProxy(d->m_controls.filenameEdit);
    setFocus(Qt::OtherFocusReason);
    loadDirectorySettings();
}

FileBrowser::~FileBrowser()
{
    if (d->m_favoritesChanged || FavoritesStore::instance().isSaveDue())
        SaveFavorites();
    AppSettings::Store(
        {{Private::s_classWide.directoryKey(), d->m_directory.absolutePath()},
         {Private::s_classWide.previewKey, d->m_controls.previewButton->checkState() == Qt::Checked}});
}

void FileBrowser::Private::initFilesList()
{
    m_model = new DirectoryModel(m_pickList, s_classWide.assumeZeroPadding, q);
    m_proxy = new ProxyModel(m_model, q);
    m_filesList = new FilesList(m_model, m_proxy);
    m_filesList->setObjectName(QStringLiteral("filesList"));
    m_filesList->setAccessibleName(tr("Files"));
    QObject::connect(
        m_model, &DirectoryModel::rowsAboutToBeUpdated, q,
        [this](const RowChanges& changes, const DirectoryRows& rows) { beginUpdate(changes, rows); });
    m_notice = new ListNotice(m_model, m_proxy, q);
    QObject::connect(m_notice, &ListNotice::changed, q, [this] { showNotice(); });

    QHeaderView* header = m_filesList->header();
    loadSortOrder();
    QObject::connect(header, SIGNAL(sortIndicatorChanged(int, Qt::SortOrder)), q,
                     SLOT(sortingChanged(int, Qt::SortOrder)));
    m_filesList->setColumnWidths(q->fontMetrics());

    m_filesMenu = new FilesMenu(m_model, m_filesList, m_pickList, q);
    m_filesMenu->setObjectName(QStringLiteral("filesMenu"));
    m_filesMenu->defaultSetup();
    QObject::connect(m_filesList->selectionModel(),
                     SIGNAL(selectionChanged(const QItemSelection&, const QItemSelection&)), q,
                     SLOT(fileSelectionChanged()));
    QObject::connect(m_filesList, SIGNAL(clicked(QModelIndex)), q, SLOT(fileClicked(QModelIndex)));
    QObject::connect(m_filesList, SIGNAL(enterRequested(QModelIndex)), q, SLOT(fileClicked(QModelIndex)));
    QObject::connect(m_filesList, SIGNAL(doubleClicked(QModelIndex)), q,
                     SLOT(fileDoubleClicked(QModelIndex)));
    QObject::connect(m_filesList, SIGNAL(entered(QModelIndex)), q, SLOT(hoverItem(QModelIndex)));
}

void FileBrowser::setMultipleSelections(bool multiple)
{
    d->m_multipleSelections = multiple;
    d->m_filesList->setSelectionMode(multiple ? QAbstractItemView::ExtendedSelection
                                              : QAbstractItemView::SingleSelection);
    d->m_controls.nextButton->setVisible(multiple);
    if (multiple)
        d->m_filesMenu->setEditActionsVisible(true);
    emit choiceChanged();
}

void FileBrowser::setSelectionType(SelectionType type)
{
    d->m_selectionType = type;
    emit choiceChanged();
}

void FileBrowser::setMayNotExist(bool may)
{
    d->m_mayNotExist = may;
    emit choiceChanged();
}

void FileBrowser::setShowChooserTypes(bool show)
{
    d->m_showChooserTypes = show;
}

void FileBrowser::setButtonsVisible(bool visible)
{
    for (QPushButton* button :
         {d->m_controls.nextButton, d->m_controls.openButton, d->m_controls.cancelButton})
        button->setVisible(visible);
}

void FileBrowser::setAcceptButtonText(const QString& text)
{
    d->m_controls.openButton->setText(text);
}

void FileBrowser::setAcceptButtonTooltip(const QString& text)
{
    d->m_controls.openButton->setToolTip(text);
}

void FileBrowser::setAcceptButtonEnabled(bool enabled)
{
    d->m_controls.openButton->setEnabled(enabled);
}

void FileBrowser::setNextButtonEnabled(bool enabled)
{
    d->m_controls.nextButton->setEnabled(enabled);
}

void FileBrowser::setPreviewWidget(QWidget* widget)
{
    d->m_previewWidget = widget;
    if (!widget)
        return;
    connect(this, SIGNAL(fileSelected(const Halvern::UI::FileInfo&, QDir)), widget,
            SLOT(fileSelected(const Halvern::UI::FileInfo&, QDir)));
    if (QLayout* inside = widget->layout()) {
        inside->setContentsMargins(0, 2, 0, 0);
        inside->update();
        widget->updateGeometry();
    }
    auto* grid = static_cast<QGridLayout*>(layout());
    grid->addWidget(widget, grid->rowCount(), 0, 1, grid->columnCount());
    DisclosureButton* button = d->m_controls.previewButton;
    button->setVisible(true);
    if (const std::optional<bool> open = AppSettings::Flag(Private::s_classWide.previewKey))
        button->setChecked(*open);
    // A layout shows what is added to it; the button says otherwise.
    if (!button->isChecked())
        widget->hide();
}

void FileBrowser::showPreview(bool state)
{
    if (!d->m_previewWidget)
        return;
    if (state && !d->m_previewWidget->isVisible())
        emit previewOpening();
    if (!d->m_previewWidget)
        return;
    d->m_previewWidget->setVisible(state);
    updateGeometry();
    if (!state)
        emit previewClosed();
}

void FileBrowser::SetHighlightColor(const QColor& colour)
{
    const QMutexLocker lock(&Private::s_classWide.colourMutex);
    Private::s_classWide.highlightColour = colour;
}

const QColor& FileBrowser::GetHightlightColor()
{
    return Private::s_classWide.highlightColour;
}

void FileBrowser::SetQueuedColor(const QColor& colour)
{
    const QMutexLocker lock(&Private::s_classWide.colourMutex);
    Private::s_classWide.queuedColour = colour;
}

const QColor& FileBrowser::GetQueuedColor()
{
    return Private::s_classWide.queuedColour;
}

void FileBrowser::SetUseLastSavedDir(bool use)
{
    Private::s_classWide.useLastSavedDir = use;
}

bool FileBrowser::GetUseLastSavedDir()
{
    return Private::s_classWide.useLastSavedDir;
}

void FileBrowser::SetDefaultSequenceMode(SequenceMode mode)
{
    Private::s_classWide.sequenceMode = mode;
}

FileBrowser::SequenceMode FileBrowser::GetDefaultSequenceMode()
{
    return Private::s_classWide.sequenceMode;
}

void FileBrowser::SetAssumeZeroPadding(bool assume)
{
    Private::s_classWide.assumeZeroPadding = assume;
}

bool FileBrowser::GetAssumeZeroPadding()
{
    return Private::s_classWide.assumeZeroPadding;
}

void FileBrowser::SetDefaultPath(const QString& path)
{
    Private::s_classWide.defaultPath = path;
}

} // namespace Halvern::UI
