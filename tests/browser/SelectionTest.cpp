#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

using namespace Halvern::UI;

/// What is chosen, and the pick list.
class SelectionTest : public Test
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void clickedRowFillsTheField();
    void clickedFolderIsEntered();
    void doubleClickIsAnnouncedTwice();
    void rightClickLeavesTheSelection();
    void singleSelectionOffersRefreshOnly();
    void nextQueuesTheSelection();
    void nextQueuesTheDirectory_data();
    void nextQueuesTheDirectory();
    void spaceTakesTheHoveredRow();
    void spaceTakesTheSelectionUnderTheMouse();
    void spaceRespectsTheSelectionType();
    void menuItemsAreKeptUntilUsed();
    void menuEnablesWhatFits();
    void queuedRowsAreColoured();
    void hoverColoursOneRow();

private:
    QString path(const QString& name) const { return m_folder->path() + '/' + name; }
    QAction* action(int index) const { return m_window->menu()->actions().at(index); }
    bool picked(const QStringList& names) const;

    const QString m_sequence = QStringLiteral("s.##.exr 1-3");
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<BrowserWindow> m_window;
};

void SelectionTest::init()
{
    AppSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("sub")));
    QVERIFY(SampleFiles::make(m_folder->path(), {"a", "b", "s.01.exr", "s.02.exr", "s.03.exr"}));
    m_window = std::make_unique<BrowserWindow>(m_folder->path());
    QTRY_COMPARE(m_window->rows(), (QStringList{"a", "b", m_sequence, "sub/"}));
    QTRY_VERIFY(m_window->proxy()->index(3, 2).data().toDateTime().toSecsSinceEpoch() > 0);
    m_window->browser.setMultipleSelections(true);
}

void SelectionTest::cleanup()
{
    m_window.reset();
    Test::cleanup();
}

bool SelectionTest::picked(const QStringList& names) const
{
    QStringList paths;
    for (const QString& name : names)
        paths.append(path(name));
    return m_window->browser.pickedFiles() == paths;
}

void SelectionTest::clickedRowFillsTheField()
{
    m_window->browser.setMultipleSelections(false);
    QStringList texts;
    QString selected;
    connect(&m_window->browser, &FileBrowser::filenameTextChanged, this,
            [&](const QString& t) { texts.append(t); });
    connect(&m_window->browser, &FileBrowser::fileSelected, this, [&](const FileInfo& info, const QDir& dir) {
        selected = dir.path() + '/' + info.displayName();
        m_window->edit()->setText(m_window->edit()->text() + '!');
    });
    m_window->clickRow(m_sequence);
    QCOMPARE(selected, path(m_sequence));
    // Whoever listens may change the field; that is not announced.
    QCOMPARE(texts, QStringList(path(m_sequence)));
    QCOMPARE(m_window->browser.selectedFiles(), QStringList(path(m_sequence) + '!'));

    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Expanded);
    m_window->clickRow(QStringLiteral("a"));
    m_window->clickRow(QStringLiteral("s.%02d.exr 1-3"));
    QCOMPARE(m_window->browser.selectedFiles(), QStringList(path("s.%02d.exr 1-3!")));
    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Collapsed);
}

void SelectionTest::clickedFolderIsEntered()
{
    m_window->clickRow(QStringLiteral("sub/"));
    QCOMPARE(m_window->browser.directory().path(), path("sub"));
    QCOMPARE(m_window->edit()->text(), path("sub/"));
}

void SelectionTest::doubleClickIsAnnouncedTwice()
{
    QStringList events;
    connect(&m_window->browser, QOverload<const FileInfo&>::of(&FileBrowser::fileDoubleClick), this,
            [&](const FileInfo& info) { events.append(info.fileName()); });
    connect(&m_window->browser, QOverload<>::of(&FileBrowser::fileDoubleClick), this,
            [&] { events.append("plain"); });
    m_window->clickRow(QStringLiteral("b"));
    QTest::mouseDClick(m_window->list()->viewport(), Qt::LeftButton, Qt::NoModifier, m_window->place("b"));
    QCOMPARE(events, (QStringList{"b", "plain"}));

    // What is announced stays readable for all, whatever the first of them does.
    disconnect(&m_window->browser, nullptr, this, nullptr);
    events.clear();
    connect(&m_window->browser, QOverload<const FileInfo&>::of(&FileBrowser::fileDoubleClick), this,
            [&](const FileInfo& info) {
                m_window->browser.setDirectory(QDir(path("sub")), false, true);
                events.append(info.fileName());
            });
    QTest::mouseDClick(m_window->list()->viewport(), Qt::LeftButton, Qt::NoModifier, m_window->place("b"));
    QCOMPARE(events, QStringList("b"));
}

void SelectionTest::rightClickLeavesTheSelection()
{
    m_window->clickRow(QStringLiteral("a"));
    m_window->clickRow(QStringLiteral("b"), Qt::NoModifier, Qt::RightButton);
    QVERIFY(m_window->menu()->isVisible());
    QCOMPARE(m_window->browser.selectedFiles(), QStringList(path("a")));
    QVERIFY(action(0)->isEnabled() && !action(1)->isEnabled());
    m_window->menu()->hide();
    QVERIFY(action(0)->isEnabled() && action(1)->isEnabled());
}

void SelectionTest::singleSelectionOffersRefreshOnly()
{
    m_window->browser.setMultipleSelections(false);
    m_window->clickRow(QStringLiteral("b"), Qt::NoModifier, Qt::RightButton);
    QVERIFY(!action(0)->isVisible() && !action(1)->isVisible() && action(2)->isVisible());
    m_window->menu()->hide();
    m_window->browser.setMultipleSelections(true);
    QVERIFY(action(0)->isVisible() && action(1)->isVisible());
}

void SelectionTest::nextQueuesTheSelection()
{
    auto* next = m_window->control("nextButton");
    QTest::mouseClick(next, Qt::LeftButton);
    QVERIFY(picked({}));
    m_window->clickRow(m_sequence);
    QTest::mouseClick(next, Qt::LeftButton);
    QVERIFY(m_window->list()->hasFocus());
    m_window->clickRow(QStringLiteral("a"), Qt::ControlModifier);
    QTest::mouseClick(next, Qt::LeftButton);
    QVERIFY(picked({m_sequence, m_sequence, "a"}));
    m_window->clickRow(QStringLiteral("b"));
    QCOMPARE(m_window->browser.selectedFiles(), (QStringList{path("b"), path(m_sequence), path("a")}));
    m_window->browser.setMultipleSelections(false);
    m_window->edit()->setText(QStringLiteral("/typed/name"));
    QCOMPARE(m_window->browser.selectedFiles(), (QStringList{"/typed/name", path(m_sequence), path("a")}));
}

void SelectionTest::nextQueuesTheDirectory_data()
{
    QTest::addColumn<FileBrowser::SelectionType>("type");
    QTest::addColumn<bool>("queued");
    QTest::newRow("files") << FileBrowser::SelectionType::Files << false;
    QTest::newRow("directories") << FileBrowser::SelectionType::Directories << true;
    QTest::newRow("both") << FileBrowser::SelectionType::FilesAndDirectories << true;
}

void SelectionTest::nextQueuesTheDirectory()
{
    QFETCH(FileBrowser::SelectionType, type);
    QFETCH(bool, queued);
    m_window->browser.setSelectionType(type);
    QTest::mouseClick(m_window->control("nextButton"), Qt::LeftButton);
    QCOMPARE(m_window->browser.pickedFiles(), queued ? QStringList(m_folder->path()) : QStringList());
}

void SelectionTest::spaceTakesTheHoveredRow()
{
    m_window->focusList();
    QTest::keyClick(m_window->list(), Qt::Key_Space);
    QVERIFY(picked({}));
    m_window->clickRow(QStringLiteral("a"));
    m_window->hover(QStringLiteral("b"));
    QTest::keyClick(m_window->list(), Qt::Key_Space);
    QVERIFY(picked({"b"}));
    m_window->hover(QStringLiteral("b"));
    QTest::keyClick(m_window->list(), Qt::Key_Space);
    QVERIFY(picked({"b"}));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_window->list(), &leave);
    m_window->clickRow(QStringLiteral("a"));
    m_window->model()->setHoveredRow(-1);
    QTest::keyClick(m_window->list(), Qt::Key_Space);
    QVERIFY(picked({"b"}));
}

void SelectionTest::spaceTakesTheSelectionUnderTheMouse()
{
    m_window->clickRow(QStringLiteral("a"));
    m_window->clickRow(m_sequence, Qt::ControlModifier);
    m_window->hover(QStringLiteral("a"));
    QTest::keyClick(m_window->list(), Qt::Key_Space);
    QVERIFY(picked({"a", m_sequence}));
}

void SelectionTest::spaceRespectsTheSelectionType()
{
    m_window->focusList();
    const auto press = [&](const QString& name) {
        m_window->hover(name);
        QTest::keyClick(m_window->list(), Qt::Key_Space);
    };
    m_window->browser.setSelectionType(FileBrowser::SelectionType::Directories);
    press(QStringLiteral("a"));
    QVERIFY(picked({}));
    press(QStringLiteral("sub/"));
    QVERIFY(picked({"sub"}));
    m_window->browser.setSelectionType(static_cast<FileBrowser::SelectionType>(7));
    press(QStringLiteral("b"));
    QVERIFY(picked({"sub"}));
    m_window->browser.setSelectionType(FileBrowser::SelectionType::FilesAndDirectories);
    press(QStringLiteral("b"));
    QVERIFY(picked({"sub", "b"}));
}

void SelectionTest::menuItemsAreKeptUntilUsed()
{
    m_window->clickRow(QStringLiteral("a"), Qt::NoModifier, Qt::RightButton);
    QTest::keyClick(m_window->menu(), Qt::Key_Escape);
    QVERIFY(!m_window->menu()->isVisible());
    m_window->hover(QStringLiteral("b"));
    action(0)->trigger();
    QVERIFY(picked({"a"}));
    action(0)->trigger();
    QVERIFY(picked({"a", "b"}));

    // Another read takes the menu's items away.
    m_window->clickRow(m_sequence, Qt::NoModifier, Qt::RightButton);
    m_window->menu()->hide();
    m_window->model()->refreshList();
    QTRY_COMPARE(m_window->rows().first(), QStringLiteral("a"));
    action(0)->trigger();
    QVERIFY(picked({"a", "b"}));
}

void SelectionTest::menuEnablesWhatFits()
{
    const auto popUp = [&](const QString& name) {
        m_window->clickRow(name, Qt::NoModifier, Qt::RightButton);
        const int enabled = (action(0)->isEnabled() ? 1 : 0) + (action(1)->isEnabled() ? 2 : 0);
        m_window->menu()->hide();
        return enabled;
    };
    const auto choose = [&](const QString& name, int index) {
        m_window->clickRow(name, Qt::NoModifier, Qt::RightButton);
        QTest::mouseClick(m_window->menu(), Qt::LeftButton, Qt::NoModifier,
                          m_window->menu()->actionGeometry(action(index)).center());
    };
    constexpr int Add = 1;
    constexpr int Remove = 2;
    QCOMPARE(popUp(QStringLiteral("a")), Add);
    choose(QStringLiteral("a"), 0);
    QVERIFY(picked({"a"}));
    QCOMPARE(popUp(QStringLiteral("a")), Remove);
    m_window->clickRow(QStringLiteral("a"));
    QCOMPARE(popUp(QStringLiteral("a")), Remove);
    m_window->clickRow(QStringLiteral("b"), Qt::ControlModifier);
    QCOMPARE(popUp(QStringLiteral("b")), Add | Remove);
    m_window->clickRow(QStringLiteral("b"));
    QCOMPARE(popUp(QStringLiteral("b")), Add);
    m_window->list()->clearSelection();
    m_window->list()->selectionModel()->select(m_window->row("sub/"),
                                               QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QCOMPARE(popUp(QStringLiteral("sub/")), Add | Remove);
    choose(QStringLiteral("a"), 1);
    QVERIFY(picked({}));
}

void SelectionTest::queuedRowsAreColoured()
{
    m_window->clickRow(m_sequence);
    QTest::mouseClick(m_window->control("nextButton"), Qt::LeftButton);
    QCOMPARE(m_window->row(m_sequence).data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    m_window->browser.setDirectory(QDir(path("sub")), false, true);
    QTRY_COMPARE(m_window->rows(), QStringList());
    m_window->control("backButton")->click();
    QTRY_COMPARE(m_window->rows().size(), 4);
    QCOMPARE(m_window->row(m_sequence).data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    QVERIFY(!m_window->row("a").data(Qt::BackgroundRole).isValid());
}

void SelectionTest::hoverColoursOneRow()
{
    QSignalSpy changed(m_window->model(), SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)));
    const auto announced = [&] {
        const QList<QVariant> arguments = changed.takeFirst();
        const QModelIndex from = arguments.at(0).toModelIndex();
        const QModelIndex to = arguments.at(1).toModelIndex();
        return from.row() == to.row() && from.column() == 0 && to.column() == 2
                   ? from.data(Qt::UserRole).toString()
                   : QString();
    };
    m_window->hover(QStringLiteral("a"));
    QCOMPARE(m_window->row("a").data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::black));
    QCOMPARE(m_window->list()->hoveredViewRow(), 0);
    m_window->hover(QStringLiteral("b"));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(announced(), QStringLiteral("a"));
    QCOMPARE(announced(), QStringLiteral("b"));
    QVERIFY(!m_window->row("a").data(Qt::BackgroundRole).isValid());
    for (int i = 0; i < 2; ++i) {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(m_window->list(), &leave);
    }
    QCOMPARE(changed.size(), 1);
    QCOMPARE(announced(), QStringLiteral("b"));
    QVERIFY(!m_window->row("b").data(Qt::BackgroundRole).isValid());
}

QTEST_MAIN(SelectionTest)
#include "SelectionTest.moc"
