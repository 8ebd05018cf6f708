#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QTimer>

using namespace Halvern::UI;

/// Moving between directories, by buttons, keys and typed paths.
class NavigationTest : public Test
{
    Q_OBJECT

private slots:
    void init();
    void historyDropsWhatWasAhead();
    void backToADeletedDirectoryStays();
    void upFromADeletedDirectoryFindsAnAncestor();
    void listKeysNavigate();
    void fieldKeysMoveInTheList();
    void typedFoldersAreEntered();
    void shorthandsAreExpanded();
    void tabCompletes_data();
    void tabCompletes();
    void setFilenameSelectsTheBareName();
    void filterNarrowsTheList();
    void onlyRowBecomesCurrent();
    void makesFolders();
    void sequencesFollowTheirBoxes();
    void refreshReadsAgain();
    void replacesHashes_data();
    void replacesHashes();

private:
    QString path(const char* name) const { return m_folder->path() + '/' + name; }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void NavigationTest::init()
{
    AppSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    for (const char* name : {"a", "b", "c", "d"})
        QVERIFY(QDir(m_folder->path()).mkdir(QLatin1String(name)));
    QVERIFY(SampleFiles::make(path("a"), {"in_a.1.exr", "in_a.2.exr"}));
}

void NavigationTest::historyDropsWhatWasAhead()
{
    BrowserWindow window(path("a"));
    auto* back = window.control("backButton");
    auto* forward = window.control("forwardButton");
    window.browser.setDirectory(QDir(path("b")), false, true);
    window.browser.setDirectory(QDir(path("c")), false, true);
    window.browser.setDirectory(QDir(path("missing")), false, true);
    QCOMPARE(window.browser.directory().path(), path("c"));
    QVERIFY(!forward->isEnabled());
    QTest::mouseClick(back, Qt::LeftButton);
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(window.browser.directory().path(), path("a"));
    QCOMPARE(window.edit()->text(), path("a") + '/');
    QVERIFY(forward->isEnabled());
    QTest::mouseClick(forward, Qt::LeftButton);
    QCOMPARE(window.browser.directory().path(), path("b"));
    QTest::mouseClick(back, Qt::LeftButton);
    window.browser.setDirectory(QDir(path("d")), false, true);
    QVERIFY(!forward->isEnabled());
    QTest::mouseClick(back, Qt::LeftButton);
    QCOMPARE(window.browser.directory().path(), path("a"));

    auto* up = window.control("upButton");
    QTest::mouseClick(up, Qt::LeftButton);
    QCOMPARE(window.browser.directory().path(), m_folder->path());
    QVERIFY(up->isEnabled());
    window.browser.setDirectory(QDir::root(), false, true);
    QVERIFY(!up->isEnabled());
    QCOMPARE(window.edit()->text(), QStringLiteral("/"));
}

void NavigationTest::backToADeletedDirectoryStays()
{
    BrowserWindow window(path("b"));
    window.browser.setDirectory(QDir(path("c")), false, true);
    window.browser.setDirectory(QDir(path("d")), false, true);
    QVERIFY(QDir(path("c")).removeRecursively());
    window.control("backButton")->click();
    QCOMPARE(window.browser.directory().path(), path("d"));
    window.control("backButton")->click();
    QCOMPARE(window.browser.directory().path(), path("b"));
}

void NavigationTest::upFromADeletedDirectoryFindsAnAncestor()
{
    QVERIFY(QDir(path("a")).mkpath(QStringLiteral("x/y/z")));
    BrowserWindow window(path("a/x/y/z"));
    QVERIFY(QDir(path("a/x")).removeRecursively());
    window.control("upButton")->click();
    QCOMPARE(window.browser.directory().absolutePath(), path("a"));
    QTRY_COMPARE(window.rows(), QStringList("in_a.#.exr 1-2"));
}

void NavigationTest::listKeysNavigate()
{
    BrowserWindow window(m_folder->path());
    QTRY_COMPARE(window.rows(), (QStringList{"a/", "b/", "c/", "d/"}));
    window.focusList();
    QTest::keyClick(window.list(), Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(window.browser.directory().path(), m_folder->path());
    QTest::keyClick(window.list(), Qt::Key_Home);
    QTest::keyClick(window.list(), Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(window.browser.directory().path(), path("a"));
    const struct
    {
        Qt::Key key;
        Qt::KeyboardModifier modifier;
        QString directory;
    } steps[] = {{Qt::Key_Backspace, Qt::NoModifier, m_folder->path()},
                 {Qt::Key_Right, Qt::ControlModifier, path("a")},
                 {Qt::Key_Left, Qt::ControlModifier, m_folder->path()},
                 {Qt::Key_Right, Qt::NoModifier, m_folder->path()},
                 {Qt::Key_Up, Qt::NoModifier, m_folder->path()},
                 {Qt::Key_Up, Qt::ControlModifier, QDir::tempPath()}};
    for (const auto& step : steps) {
        QTest::keyClick(window.list(), step.key, step.modifier);
        QCOMPARE(window.browser.directory().absolutePath(), step.directory);
    }
}

void NavigationTest::fieldKeysMoveInTheList()
{
    QVERIFY(SampleFiles::make(path("a"), {"one", "two"}));
    BrowserWindow window(path("a"));
    QTRY_COMPARE(window.rows(), (QStringList{"in_a.#.exr 1-2", "one", "two"}));
    QTest::keyClick(window.edit(), Qt::Key_Down);
    QTest::keyClick(window.edit(), Qt::Key_Down);
    QCOMPARE(window.list()->currentIndex().data().toString(), QStringLiteral("one"));
    QCOMPARE(window.edit()->text(), path("a/one"));
    QTest::keyClick(window.edit(), Qt::Key_Up);
    QCOMPARE(window.edit()->text(), path("a/in_a.#.exr 1-2"));
    QVERIFY(window.edit()->hasFocus());
    QSignalSpy accepted(&window.browser, SIGNAL(accepted()));
    QTest::keyClick(window.edit(), Qt::Key_Return);
    QCOMPARE(accepted.size(), 1);
}

void NavigationTest::typedFoldersAreEntered()
{
    QVERIFY(SampleFiles::make(path("a"), {"other"}));
    BrowserWindow window(m_folder->path());
    QStringList selected;
    connect(&window.browser, &FileBrowser::fileSelected, this, [&](const FileInfo& info, const QDir& dir) {
        selected.append(dir.path() + '|' + info.fileName());
    });
    QTest::keyClicks(window.edit(), QStringLiteral("a/"));
    QCOMPARE(window.browser.directory().path(), path("a"));
    QCOMPARE(window.edit()->text(), path("a/"));
    QCOMPARE(selected, (QStringList{m_folder->path() + "|a", path("a") + '|'}));
    QTest::keyClicks(window.edit(), QStringLiteral("in"));
    QTRY_COMPARE(window.rows(), QStringList("in_a.#.exr 1-2"));
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(window.edit(), Qt::Key_Backspace);
    QCOMPARE(window.browser.directory().path(), m_folder->path());
    QTRY_COMPARE(window.rows(), QStringList("a/"));
}

void NavigationTest::shorthandsAreExpanded()
{
    BrowserWindow window(path("b"));
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", path("c").toUtf8());
    window.type(QStringLiteral("~/"));
    qputenv("HOME", home);
    QCOMPARE(window.browser.directory().path(), path("c"));
    QCOMPARE(window.edit()->text(), path("c/"));

    const QString working = QDir::currentPath();
    QVERIFY(QDir::setCurrent(path("d")));
    QVERIFY(QDir(path("d")).mkdir(QStringLiteral("shots")));
    QVERIFY(QDir(path("a")).mkdir(QStringLiteral("shots")));
    FileBrowser::SetDefaultPath(path("a"));
    window.type(QStringLiteral("./shots"));
    QCOMPARE(window.browser.directory().absolutePath(), path("d"));
    QTest::keyClicks(window.edit(), QStringLiteral("/"));
    QCOMPARE(window.browser.directory().path(), path("a/shots"));
    FileBrowser::SetDefaultPath(QString());
    QVERIFY(QDir::setCurrent(working));
}

void NavigationTest::tabCompletes_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("completed");
    QTest::newRow("one file") << QStringList{"notes"} << "no"
                              << "notes";
    QTest::newRow("one folder") << QStringList{"sub/"} << "s"
                                << "sub/";
    QTest::newRow("common part") << QStringList{"Shot_a", "shot_b", "z"} << "s"
                                 << "Shot_";
    QTest::newRow("folder that is the common part") << QStringList{"sub/", "submarine"} << "s"
                                                    << "sub/";
    QTest::newRow("nothing in common") << QStringList{"abc", "zz"} << ""
                                       << "ab";
    QTest::newRow("stops at the first that shares nothing") << QStringList{"abcd", "abx", "q"} << ""
                                                            << "a";
    QTest::newRow("no rows") << QStringList{"notes"} << "x"
                             << "x";
}

void NavigationTest::tabCompletes()
{
    QFETCH(QStringList, files);
    QFETCH(QString, typed);
    QFETCH(QString, completed);
    for (const QString& file : files) {
        if (file.endsWith(QLatin1Char('/')))
            QVERIFY(QDir(path("b")).mkdir(file));
        else
            QVERIFY(SampleFiles::make(path("b"), file.toUtf8()));
    }
    BrowserWindow window(path("b"));
    QTRY_COMPARE(window.rows().size(), files.size());
    QTest::keyClicks(window.edit(), typed);
    QTest::keyClick(window.edit(), Qt::Key_Tab);
    QCOMPARE(window.edit()->text(), path("b/") + completed);
    QVERIFY(window.edit()->hasFocus());
    QCOMPARE(window.browser.directory().path() + '/',
             path("b/") + (completed.endsWith('/') ? completed : ""));
}

void NavigationTest::setFilenameSelectsTheBareName()
{
    QVERIFY(SampleFiles::make(path("a"), {"other"}));
    BrowserWindow window(path("b"));
    window.browser.setFilename(path("a/in_a.1.exr"));
    QCOMPARE(window.browser.directory().path(), path("a"));
    QCOMPARE(window.edit()->selectedText(), QStringLiteral("in_a.1.exr"));
    QTRY_COMPARE(window.rows(), (QStringList{"in_a.#.exr 1-2", "other"}));
    // The block takes effect with the next listing, and ends with the next edit.
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "refresh"));
    QCOMPARE(window.rows().size(), 4);
    QTest::keyClicks(window.edit(), QStringLiteral("o"));
    QCOMPARE(window.edit()->text(), path("a/o"));
    QCOMPARE(window.rows(), QStringList("other"));
    window.browser.setFilename(QStringLiteral("bare"));
    QCOMPARE(window.edit()->text(), path("a/bare"));
    QCOMPARE(window.edit()->selectedText(), QStringLiteral("bare"));
}

void NavigationTest::filterNarrowsTheList()
{
    QVERIFY(SampleFiles::make(path("a"), {"n.txt", "m.cc"}));
    BrowserWindow window(path("a"));
    QTRY_COMPARE(window.rows().size(), 3);
    QStringList filters{"*.exr", "*.txt *.cc"};
    window.browser.setFilters(filters, false);
    QCOMPARE(window.rows().size(), 3);
    auto* combo = window.control<QComboBox>("filterCombo");
    combo->setFocus();
    QTest::keyClick(combo, Qt::Key_Down);
    QCOMPARE(window.rows(), (QStringList{"m.cc", "n.txt"}));
    combo->lineEdit()->selectAll();
    QTest::keyClicks(combo->lineEdit(), QStringLiteral("*.EXR"));
    QCOMPARE(window.rows(), QStringList("in_a.#.exr 1-2"));
}

void NavigationTest::onlyRowBecomesCurrent()
{
    QVERIFY(SampleFiles::make(path("a"), {"Only"}));
    BrowserWindow window(path("a"));
    QTRY_COMPARE(window.rows().size(), 2);
    QTest::keyClicks(window.edit(), QStringLiteral("onl"));
    QVERIFY(!window.list()->currentIndex().isValid());
    QTest::keyClicks(window.edit(), QStringLiteral("y"));
    QCOMPARE(window.list()->currentIndex().data().toString(), QStringLiteral("Only"));
}

void NavigationTest::makesFolders()
{
    BrowserWindow window(path("b"));
    const auto answer = [&](const QString& name, bool accept) {
        QTimer::singleShot(0, &window.browser, [=] {
            auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            QCOMPARE(dialog->windowTitle(), QStringLiteral("New Folder"));
            QCOMPARE(dialog->labelText(), QStringLiteral("New Folder Name"));
            QCOMPARE(dialog->textValue(), QStringLiteral("New Folder"));
            dialog->setTextValue(name);
            accept ? dialog->accept() : dialog->reject();
        });
        QTest::mouseClick(window.control("newFolderButton"), Qt::LeftButton);
    };
    answer(QStringLiteral("kept"), false);
    QVERIFY(!QFileInfo::exists(path("b/kept")));
    answer(QStringLiteral("made"), true);
    QCOMPARE(window.browser.directory().path(), path("b/made"));

    const QString impossible = QStringLiteral("<b>no</b>/such/parent");
    QString warning;
    QTimer::singleShot(0, this, [&] {
        QTimer::singleShot(50, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            QCOMPARE(box->textFormat(), Qt::PlainText);
            warning = box->windowTitle() + '|' + box->text();
            box->accept();
        });
    });
    answer(impossible, true);
    QCOMPARE(warning, "New Folder|Can't create folder " + impossible);
    QCOMPARE(window.browser.directory().path(), path("b/made"));
}

void NavigationTest::sequencesFollowTheirBoxes()
{
    QVERIFY(SampleFiles::make(path("a"), {"in_a.4.exr", "in_a.5.exr"}));
    BrowserWindow window(path("a"));
    auto* sequences = window.control<QCheckBox>("sequencesCheck");
    auto* split = window.control<QCheckBox>("splitCheck");
    QTRY_COMPARE(window.rows(), QStringList("in_a.#.exr 1-5 ( 1-2 4-5 )"));
    split->click();
    // Runs of one sequence have one sort name, so that each comes before the other.
    QCOMPARE(window.rows(), (QStringList{"in_a.#.exr 4-5", "in_a.#.exr 1-2"}));
    sequences->click();
    QCOMPARE(window.rows().size(), 4);
    QVERIFY(!split->isEnabled());
    QCOMPARE(window.browser.getSequenceMode(), FileBrowser::SequenceMode::Expanded);
    sequences->click();
    QCOMPARE(window.rows().size(), 2);
    window.browser.setSequencesEnabled(false);
    QVERIFY(sequences->isHidden() && split->isHidden());
    QCOMPARE(window.rows().size(), 4);
}

void NavigationTest::refreshReadsAgain()
{
    BrowserWindow window(path("a"));
    QTRY_COMPARE(window.rows().size(), 1);
    QVERIFY(SampleFiles::make(path("a"), {"new"}));
    window.focusList();
    QTest::keyClick(window.list(), Qt::Key_F5);
    QTRY_COMPARE(window.rows(), (QStringList{"in_a.#.exr 1-2", "new"}));
    QVERIFY(QDir(path("a")).removeRecursively());
    QTest::keyClick(window.list(), Qt::Key_F5);
    QCOMPARE(window.model()->rowCount(), 0);
    QTest::keyClick(window.list(), Qt::Key_F5);
    QCOMPARE(window.model()->rowCount(), 0);
}

void NavigationTest::replacesHashes_data()
{
    QTest::addColumn<QString>("replaced");
    QTest::newRow("img.####.exr") << "img.%04d.exr";
    QTest::newRow("img.#.exr") << "img.%d.exr";
    QTest::newRow("a#b#") << "a%03d";
    QTest::newRow("noframes.exr") << "noframes.exr";
    QTest::newRow("##") << "%02d";
}

void NavigationTest::replacesHashes()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    QTEST(FileBrowser::replaceHashes(name), "replaced");
    QCOMPARE(FileBrowser::normalizeFile(name), name);
    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Expanded);
    QTEST(FileBrowser::normalizeFile(name), "replaced");
    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Collapsed);
}

QTEST_MAIN(NavigationTest)
#include "NavigationTest.moc"
