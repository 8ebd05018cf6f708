#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QHeaderView>
#include <QListView>

using namespace Halvern::UI;

/// How the parts of a browser work together, and that it survives being thrown away.
class FileBrowserTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }
    void everyConnectionResolves();
    void showsThePreview();
    void switchingNeverShowsTheFirstDirectory();
    void attributesLeaveTheSelectionAlone();
};

// Taking a connection away tells whether it was there; a signature that does not resolve fails with a
// warning.
void FileBrowserTest::everyConnectionResolves()
{
    FileBrowser browser;
    const auto child = [&](const char* name) { return browser.findChild<QObject*>(QLatin1String(name)); };
    auto* list = browser.findChild<FileBrowser::FilesList*>();
    auto* favorites = browser.findChild<QListView*>(QStringLiteral("favoritesList"));
    const char* const changed = SIGNAL(selectionChanged(QItemSelection, QItemSelection));
    const char* const moved = SIGNAL(currentChanged(QModelIndex, QModelIndex));
    const char* const sorted = SIGNAL(sortIndicatorChanged(int, Qt::SortOrder));
    const char* const clicked = SIGNAL(clicked());
    const char* const triggered = SIGNAL(triggered());
    const std::tuple<const QObject*, const char*, const char*> connections[] = {
        {list->selectionModel(), changed, SLOT(fileSelectionChanged())},
        {list, SIGNAL(clicked(QModelIndex)), SLOT(fileClicked(QModelIndex))},
        {list, SIGNAL(doubleClicked(QModelIndex)), SLOT(fileDoubleClicked(QModelIndex))},
        {list, SIGNAL(entered(QModelIndex)), SLOT(hoverItem(QModelIndex))},
        {list->header(), sorted, SLOT(sortingChanged(int, Qt::SortOrder))},
        {favorites->selectionModel(), moved, SLOT(favoriteSelected(QModelIndex))},
        {favorites, SIGNAL(clickedAgain(QModelIndex)), SLOT(favoriteSelected(QModelIndex))},
        {favorites, SIGNAL(entered(QModelIndex)), SLOT(hoverFavorite(QModelIndex))},
        {child("editFavoriteAction"), triggered, SLOT(editFavorite())},
        {child("removeFavoriteAction"), triggered, SLOT(removeFavorite())},
        {child("addCurrentAction"), triggered, SLOT(addFavorite())},
        {child("addAction"), triggered, SLOT(addItemToQueue())},
        {child("removeAction"), triggered, SLOT(removeItemFromQueue())},
        {child("refreshAction"), triggered, SLOT(refreshDirectory())},
        {child("filesMenu"), SIGNAL(aboutToHide()), SLOT(fileMenuClosed())},
        {child("addFavoriteButton"), clicked, SLOT(addFavorite())},
        {child("editFavoriteButton"), clicked, SLOT(editFavorite())},
        {child("removeFavoriteButton"), clicked, SLOT(removeFavorite())},
        {child("backButton"), clicked, SLOT(navigateBack())},
        {child("forwardButton"), clicked, SLOT(navigateForwards())},
        {child("upButton"), clicked, SLOT(navigateUp())},
        {child("newFolderButton"), clicked, SLOT(newFolder())},
        {child("nextButton"), clicked, SLOT(nextClicked())},
        {child("openButton"), clicked, SLOT(accept())},
        {child("cancelButton"), clicked, SLOT(reject())},
        {child("previewButton"), SIGNAL(toggled(bool)), SLOT(showPreview(bool))},
        {child("sequencesCheck"), SIGNAL(toggled(bool)), SLOT(showSequences(bool))},
        {child("splitCheck"), SIGNAL(toggled(bool)), SLOT(splitIncompleteSequences(bool))},
        {child("filenameEdit"), SIGNAL(textEdited(QString)), SLOT(autoComplete(QString))},
        {child("filenameEdit"), SIGNAL(textChanged(QString)), SIGNAL(filenameTextChanged(QString))},
        {child("filenameEdit"), SIGNAL(returnPressed()), SLOT(accept())},
        {child("filterCombo"), SIGNAL(currentIndexChanged(QString)), SLOT(filterChanged(QString))},
        {child("filterCombo"), SIGNAL(editTextChanged(QString)), SLOT(filterChanged(QString))},
    };
    for (const auto& [sender, signal, slot] : connections)
        QVERIFY2(QObject::disconnect(sender, signal, &browser, slot), slot);
    for (const char* slot : {"onFileInfoAvailable", "deleteItem", "refresh", "loadDirectorySettings"})
        QVERIFY2(QMetaObject::invokeMethod(&browser, slot), slot);
}

namespace {

class Preview : public QWidget
{
    Q_OBJECT

public:
    QString selected;

public slots:
    void fileSelected(const Halvern::UI::FileInfo& info, QDir) { selected = info.displayName(); }
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
    auto* preview = new Preview;
    window.browser.setPreviewWidget(preview);
    QVERIFY(preview->isVisible());
    button->click();
    QVERIFY(!preview->isVisible());
    button->click();
    QCOMPARE(events, (QStringList{"opening", "closed", "opening"}));

    QTRY_COMPARE(window.rows(), QStringList("a"));
    window.clickRow("a");
    QCOMPARE(preview->selected, QStringLiteral("a"));
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
    const QStringList selected = window.browser.selectedFiles();
    const QPoint place = window.place("f2501.txt");
    QSignalSpy resets(window.model(), SIGNAL(modelReset()));
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "managerFilesUpdated", Q_ARG(int, 0), Q_ARG(int, 1)));
    QTRY_VERIFY(!resets.isEmpty());
    QCOMPARE(selected.size(), 2);
    QCOMPARE(window.browser.selectedFiles(), selected);
    QCOMPARE(window.place("f2501.txt"), place);
}

QTEST_MAIN(FileBrowserTest)
#include "FileBrowserTest.moc"
