#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListView>

using namespace Halvern::UI;

/// How a browser is built, what its plain setters do, and that it survives being thrown away.
class FileBrowserTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }
    void controlsAreAsUsersKnowThem_data();
    void controlsAreAsUsersKnowThem();
    void everyConnectionResolves();
    void startsDisabledAndFocused();
    void listIsSetUp();
    void layoutStands();
    void setsButtons();
    void coloursHaveDefaults();
    void listsWhenFirstShown();
    void showsThePreview();
    void switchingNeverShowsTheFirstDirectory();
    void destructionInMidReadIsClean();
    void attributesLeaveTheSelectionAlone();
};

void FileBrowserTest::controlsAreAsUsersKnowThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("backButton") << ""
                                << "Go back one step in directory history.";
    QTest::newRow("forwardButton") << ""
                                   << "Go forward one step in directory history.";
    QTest::newRow("upButton") << ""
                              << "Go to the parent directory.";
    QTest::newRow("newFolderButton") << ""
                                     << "Create a new directory here.";
    QTest::newRow("previewButton") << ""
                                   << "Show a preview of the currently selected item.";
    QTest::newRow("addFavoriteButton") << "+"
                                       << "Add a favorite for the current directory.";
    QTest::newRow("editFavoriteButton") << "edit"
                                        << "Edit the selected favorite.";
    QTest::newRow("removeFavoriteButton") << "-"
                                          << "Delete the selected favorite.";
    QTest::newRow("sequencesCheck")
        << "sequences"
        << "Enable to display image sequences as a single line item in the file list.";
    QTest::newRow("splitCheck") << "split seq"
                                << "Treat gaps in sequence numbering as separate sequences.";
    QTest::newRow("nextButton")
        << "Next"
        << "Adds the selected item to a pick list returned when the 'Open' button is clicked.\n\nPress Space "
           "over "
           "an item to add it to the pick list.\n\nRight-click on an item to remove it from the pick list.";
    QTest::newRow("openButton") << "Open"
                                << "Choose the selected item and close.";
    QTest::newRow("cancelButton") << "Cancel"
                                  << "Close without selecting anything.";
}

void FileBrowserTest::controlsAreAsUsersKnowThem()
{
    const FileBrowser browser;
    const auto* button = browser.findChild<QAbstractButton*>(QTest::currentDataTag());
    QVERIFY(button);
    QTEST(button->text(), "text");
    QTEST(button->toolTip(), "tooltip");
}

// Taking a connection away tells whether it was there; a signature that does not resolve fails with a
// warning.
void FileBrowserTest::everyConnectionResolves()
{
    FileBrowser browser;
    const auto child = [&](const char* name) { return browser.findChild<QObject*>(QLatin1String(name)); };
    auto* list = browser.findChild<FileBrowser::FilesList*>();
    auto* favorites = browser.findChild<QListView*>(QStringLiteral("favoritesList"));
    const QList<QAction*> actions = browser.findChild<FileBrowser::FilesMenu*>()->actions();
    QCOMPARE(actions.size(), 3);
    struct Connection
    {
        const QObject* sender;
        const char* signal;
        const char* slot;
    };
    const Connection connections[] = {
        {list->selectionModel(), SIGNAL(selectionChanged(QItemSelection, QItemSelection)),
         SLOT(fileSelectionChanged())},
        {list, SIGNAL(clicked(QModelIndex)), SLOT(fileClicked(QModelIndex))},
        {list, SIGNAL(doubleClicked(QModelIndex)), SLOT(fileDoubleClicked(QModelIndex))},
        {list, SIGNAL(entered(QModelIndex)), SLOT(hoverItem(QModelIndex))},
        {favorites->selectionModel(), SIGNAL(currentChanged(QModelIndex, QModelIndex)),
         SLOT(favoriteSelected(QModelIndex))},
        {favorites, SIGNAL(clickedAgain(QModelIndex)), SLOT(favoriteSelected(QModelIndex))},
        {favorites, SIGNAL(entered(QModelIndex)), SLOT(hoverFavorite(QModelIndex))},
        {child("editFavoriteAction"), SIGNAL(triggered()), SLOT(editFavorite())},
        {child("removeFavoriteAction"), SIGNAL(triggered()), SLOT(removeFavorite())},
        {child("addCurrentAction"), SIGNAL(triggered()), SLOT(addFavorite())},
        {child("addFavoriteButton"), SIGNAL(clicked()), SLOT(addFavorite())},
        {child("editFavoriteButton"), SIGNAL(clicked()), SLOT(editFavorite())},
        {child("removeFavoriteButton"), SIGNAL(clicked()), SLOT(removeFavorite())},
        {list->header(), SIGNAL(sortIndicatorChanged(int, Qt::SortOrder)),
         SLOT(sortingChanged(int, Qt::SortOrder))},
        {child("filesMenu"), SIGNAL(aboutToHide()), SLOT(fileMenuClosed())},
        {actions.at(0), SIGNAL(triggered()), SLOT(addItemToQueue())},
        {actions.at(1), SIGNAL(triggered()), SLOT(removeItemFromQueue())},
        {actions.at(2), SIGNAL(triggered()), SLOT(refreshDirectory())},
        {child("backButton"), SIGNAL(clicked()), SLOT(navigateBack())},
        {child("forwardButton"), SIGNAL(clicked()), SLOT(navigateForwards())},
        {child("upButton"), SIGNAL(clicked()), SLOT(navigateUp())},
        {child("newFolderButton"), SIGNAL(clicked()), SLOT(newFolder())},
        {child("previewButton"), SIGNAL(toggled(bool)), SLOT(showPreview(bool))},
        {child("filenameEdit"), SIGNAL(textEdited(QString)), SLOT(autoComplete(QString))},
        {child("filenameEdit"), SIGNAL(textChanged(QString)), SIGNAL(filenameTextChanged(QString))},
        {child("filenameEdit"), SIGNAL(returnPressed()), SLOT(accept())},
        {child("sequencesCheck"), SIGNAL(toggled(bool)), SLOT(showSequences(bool))},
        {child("splitCheck"), SIGNAL(toggled(bool)), SLOT(splitIncompleteSequences(bool))},
        {child("filterCombo"), SIGNAL(currentIndexChanged(QString)), SLOT(filterChanged(QString))},
        {child("filterCombo"), SIGNAL(editTextChanged(QString)), SLOT(filterChanged(QString))},
        {child("nextButton"), SIGNAL(clicked()), SLOT(nextClicked())},
        {child("openButton"), SIGNAL(clicked()), SLOT(accept())},
        {child("cancelButton"), SIGNAL(clicked()), SLOT(reject())},
    };
    for (const Connection& connection : connections)
        QVERIFY2(QObject::disconnect(connection.sender, connection.signal, &browser, connection.slot),
                 connection.slot);
    for (const char* slot : {"onFileInfoAvailable", "deleteItem", "refresh", "loadDirectorySettings"})
        QVERIFY2(QMetaObject::invokeMethod(&browser, slot), slot);
}

void FileBrowserTest::startsDisabledAndFocused()
{
    const QTemporaryDir folder;
    const BrowserWindow window(folder.path());
    QTRY_VERIFY(window.edit()->hasFocus());
    QCOMPARE(window.browser.focusProxy(), window.edit());
    QVERIFY(!window.control("openButton")->isEnabled());
    QVERIFY(window.control("nextButton")->isEnabled());
    QVERIFY(window.control("nextButton")->isHidden());
    QVERIFY(window.control<QAbstractButton>("previewButton")->isHidden());
    QVERIFY(window.control<QCheckBox>("sequencesCheck")->isChecked());
    QVERIFY(!window.control<QCheckBox>("splitCheck")->isChecked());
    QVERIFY(window.control<QComboBox>("filterCombo")->isEditable());
    QCOMPARE(window.control<QLabel>("filterLabel")->text(), QStringLiteral("Filter:"));
    QCOMPARE(FileBrowser().getSequenceMode(), FileBrowser::SequenceMode::Collapsed);
}

void FileBrowserTest::listIsSetUp()
{
    FileBrowser browser;
    const auto& list = *browser.findChild<FileBrowser::FilesList*>();
    QVERIFY(list.uniformRowHeights() && list.hasMouseTracking() && list.isSortingEnabled());
    QVERIFY(!list.rootIsDecorated() && !list.itemsExpandable());
    QCOMPARE(list.textElideMode(), Qt::ElideMiddle);
    QCOMPARE(list.dragDropMode(), QAbstractItemView::DragOnly);
    QCOMPARE(list.contextMenuPolicy(), Qt::CustomContextMenu);
    QCOMPARE(list.minimumSize(), QSize(250, 250));
    const auto width = [&](const char* text) {
        return browser.fontMetrics().horizontalAdvance(QLatin1String(text));
    };
    const int first = width("wwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwwww");
    QCOMPARE(list.header()->sectionSize(0), first);
    QCOMPARE(list.header()->sectionSize(1), width("128.88 GB"));
    QCOMPARE(list.sizeHint(),
             QSize(first + width("128.88 GB") + width("mp3Folder") + width("10/29/81 02:02PM"), 200));
    QVERIFY(list.header()->stretchLastSection() && !list.header()->sectionsMovable());
    QCOMPARE(list.selectionMode(), QAbstractItemView::SingleSelection);
    browser.setMultipleSelections(true);
    QCOMPARE(list.selectionMode(), QAbstractItemView::ExtendedSelection);
}

void FileBrowserTest::layoutStands()
{
    const QTemporaryDir folder;
    BrowserWindow window(folder.path());
    QVERIFY(QTest::qWaitForWindowExposed(&window.browser));
    const auto at = [&](const char* name) {
        const auto* widget = window.browser.findChild<QWidget*>(QLatin1String(name));
        return QRect(widget->mapTo(&window.browser, QPoint()), widget->size());
    };
    const auto leftToRight = [&](std::initializer_list<const char*> names) {
        QRect previous;
        for (const char* name : names) {
            if (!previous.isNull() &&
                (at(name).left() <= previous.right() || at(name).bottom() < previous.top()))
                return false;
            previous = at(name);
        }
        return true;
    };
    QVERIFY(leftToRight({"newFolderButton", "upButton", "backButton", "forwardButton"}));
    QVERIFY(leftToRight({"favoritesList", "filesList"}));
    QVERIFY(leftToRight({"addFavoriteButton", "editFavoriteButton", "removeFavoriteButton"}));
    QVERIFY(leftToRight(
        {"sequencesCheck", "splitCheck", "filterLabel", "filterCombo", "openButton", "cancelButton"}));
    QVERIFY(at("backButton").bottom() < at("filesList").top());
    QVERIFY(at("filesList").bottom() < at("filenameEdit").top());
    QVERIFY(at("filenameEdit").bottom() < at("filterCombo").top());
    QCOMPARE(at("backButton").size(), QSize(24, 24));
    QCOMPARE(at("editFavoriteButton").size(), QSize(130, 15));
}

void FileBrowserTest::setsButtons()
{
    FileBrowser browser;
    const auto button = [&](const char* name) {
        return browser.findChild<QPushButton*>(QLatin1String(name));
    };
    browser.setAcceptButtonText(QStringLiteral("Import"));
    browser.setAcceptButtonTooltip(QStringLiteral("tip"));
    browser.setAcceptButtonEnabled(true);
    browser.setNextButtonEnabled(false);
    QCOMPARE(button("openButton")->text(), QStringLiteral("Import"));
    QCOMPARE(button("openButton")->toolTip(), QStringLiteral("tip"));
    QVERIFY(button("openButton")->isEnabled() && !button("nextButton")->isEnabled());

    browser.setMultipleSelections(true);
    QVERIFY(!button("nextButton")->isHidden());
    browser.setMultipleSelections(false);
    QVERIFY(button("nextButton")->isHidden());
    browser.setButtonsVisible(false);
    for (const char* name : {"nextButton", "openButton", "cancelButton"})
        QVERIFY(button(name)->isHidden());
    browser.setButtonsVisible(true);
    QVERIFY(!button("nextButton")->isHidden());
}

void FileBrowserTest::coloursHaveDefaults()
{
    QCOMPARE(FileBrowser::GetHightlightColor(), QColor(Qt::black));
    QCOMPARE(FileBrowser::GetQueuedColor(), QColor(Qt::red));
    FileBrowser::SetHighlightColor(Qt::blue);
    FileBrowser::SetQueuedColor(Qt::green);
    QCOMPARE(FileBrowser::GetHightlightColor(), QColor(Qt::blue));
    QCOMPARE(FileBrowser::GetQueuedColor(), QColor(Qt::green));
}

void FileBrowserTest::listsWhenFirstShown()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a"}));
    FileBrowser browser;
    browser.setDirectory(QDir(folder.path()), false, false);
    const auto& model = *browser.findChild<FileBrowser::DirectoryModel*>();
    QCOMPARE(model.rowCount(), 0);
    browser.show();
    QTRY_COMPARE(model.rowCount(), 3);
}

namespace {

class Preview : public QWidget
{
    Q_OBJECT

public slots:
    void fileSelected(const Halvern::UI::FileInfo& info, QDir dir)
    {
        selected.append(dir.absolutePath() + '|' + QString::fromUtf8(info.displayName()));
    }

public:
    QStringList selected;
};

} // namespace

void FileBrowserTest::showsThePreview()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a"}));
    AppSettings().setValue(QStringLiteral("FileBrowser/preview"), true);
    BrowserWindow window(folder.path());
    QStringList events;
    connect(&window.browser, &FileBrowser::previewOpening, this, [&] { events.append("opening"); });
    connect(&window.browser, &FileBrowser::previewClosed, this, [&] { events.append("closed"); });
    auto* button = window.control<DisclosureButton>("previewButton");
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "showPreview", Q_ARG(bool, false)));
    QVERIFY(events.isEmpty());

    auto* preview = new Preview;
    auto* layout = new QVBoxLayout(preview);
    layout->addWidget(new QLabel(QStringLiteral("preview")));
    window.browser.setPreviewWidget(preview);
    QCOMPARE(layout->contentsMargins(), QMargins(0, 2, 0, 0));
    QVERIFY(button->isVisible() && button->isChecked());
    button->click();
    QVERIFY(!preview->isVisible());
    button->click();
    QVERIFY(preview->isVisible());
    QVERIFY(preview->y() > window.edit()->y());
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "showPreview", Q_ARG(bool, true)));
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "showPreview", Q_ARG(bool, false)));
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "showPreview", Q_ARG(bool, false)));
    QCOMPARE(events, (QStringList{"opening", "closed", "opening", "closed", "closed"}));

    QTRY_COMPARE(window.rows(), QStringList("a"));
    window.clickRow("a");
    QCOMPARE(preview->selected, QStringList(folder.path() + "|a"));
    delete preview;
    button->click();
}

void FileBrowserTest::switchingNeverShowsTheFirstDirectory()
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    QVERIFY(SampleFiles::makeFrames(first.path(), "first%d.txt", 1, 6000));
    QVERIFY(SampleFiles::makeFrames(second.path(), "second%d.txt", 1, 10));
    BrowserWindow window(second.path());
    for (int round = 0; round < 20; ++round) {
        window.browser.setDirectory(QDir(first.path()), false, true);
        for (int turn = 0; turn < round; ++turn)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        window.browser.setDirectory(QDir(second.path()), false, true);
        while (!window.model()->isListReady()) {
            for (const QString& name : window.rows())
                QVERIFY2(name.isEmpty(), qPrintable(name));
            QCoreApplication::processEvents();
        }
        QCOMPARE(window.rows().size(), 10);
        QVERIFY(window.rows().filter(QStringLiteral("first")).isEmpty());
    }
}

void FileBrowserTest::destructionInMidReadIsClean()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f.%05d.exr", 1, 5000));
    for (int round = 0; round < 20; ++round) {
        BrowserWindow window(folder.path());
        window.menu()->popup(QPoint(10, 10));
        for (int turn = 0; turn < round / 2; ++turn)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    QCoreApplication::processEvents();
}

void FileBrowserTest::attributesLeaveTheSelectionAlone()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f%04d.txt", 1, 5000));
    BrowserWindow window(folder.path());
    window.browser.setMultipleSelections(true);
    QTRY_COMPARE(window.rows().size(), 5000);
    window.list()->scrollTo(window.row("f2500.txt"), QAbstractItemView::PositionAtTop);
    window.clickRow("f2501.txt");
    window.clickRow("f2503.txt", Qt::ControlModifier);
    window.clickRow("f2504.txt", Qt::ControlModifier);
    const QStringList selected = window.browser.selectedFiles();
    const QPoint place = window.place("f2501.txt");
    QSignalSpy resets(window.model(), SIGNAL(modelReset()));
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "managerFilesUpdated", Q_ARG(int, 0), Q_ARG(int, 1)));
    QTRY_VERIFY(!resets.isEmpty());
    QStringList kept = window.browser.selectedFiles();
    QCOMPARE(kept.size(), 3);
    for (const QString& path : selected)
        QVERIFY(kept.contains(path));
    QCOMPARE(window.place("f2501.txt"), place);
    QCOMPARE(window.list()->currentIndex().data().toString(), QStringLiteral("f2504.txt"));
}

QTEST_MAIN(FileBrowserTest)
#include "FileBrowserTest.moc"
