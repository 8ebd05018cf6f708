#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QInputDialog>
#include <QMessageBox>
#include <QTimer>

using namespace Halvern::UI;

/// Moving between directories, by buttons, keys and typed paths.
class NavigationTest : public Test
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(make({"a/", "b/", "c/", "a/in_a.1.exr", "a/in_a.2.exr"})); }

    // Entering shows the top; coming back, the folder that was left is current, and nothing is selected.
    void foldersAreFoundAgain()
    {
        for (const char* pattern : {"b/f%02d/", "b/m/f%02d/"})
            QVERIFY(SampleFiles::makeFrames(path(), pattern, 1, 60));
        BrowserWindow window(path("b"));
        for (const char* button : {"upButton", "backButton"}) {
            QTRY_COMPARE(window.rows().size(), 61);
            window.list()->scrollTo(window.row("m/"));
            window.clickRow("m/");
            QCOMPARE(window.browser.directory().path(), path("b/m"));
            QTRY_VERIFY(window.model()->isListReady());
            QCOMPARE(window.list()->indexAt(QPoint(5, 5)).row(), 0);
            window.control(button)->click();
            QTRY_VERIFY(window.model()->isListReady());
            QCOMPARE(window.list()->currentIndex(), window.row("m/"));
            QVERIFY(window.list()->viewport()->rect().contains(window.place("m/")));
            QVERIFY(!window.list()->selectionModel()->hasSelection());
        }
    }

    void historyDropsWhatWasAheadAndWhatIsGone()
    {
        QVERIFY(QDir(path("c")).mkpath(QString("x/y")));
        BrowserWindow window(path("a"));
        for (const char* name : {"b", "missing"})
            window.browser.setDirectory(QDir(path(name)), false, true);
        window.control("backButton")->click();
        QCOMPARE(window.edit()->text(), path("a/"));
        window.browser.setDirectory(QDir(path("b")), false, true);
        QVERIFY(!window.control("forwardButton")->isEnabled());
        window.browser.setDirectory(QDir(path("c/x/y")), false, true);
        QVERIFY(QDir(path("b")).removeRecursively());
        for (const char* wanted : {"c/x/y", "a"}) {
            window.control("backButton")->click();
            QCOMPARE(window.browser.directory().path(), path(wanted));
        }
        window.browser.setDirectory(QDir(path("c/x/y")), false, true);
        QVERIFY(QDir(path("c/x")).removeRecursively());
        window.control("upButton")->click();
        QCOMPARE(window.browser.directory().absolutePath(), path("c"));
    }

    void shorthandsAndNamesAreCompleted()
    {
        BrowserWindow window(path("b"));
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", path("c").toUtf8());
        window.type(QString("~/"));
        qputenv("HOME", home);
        QCOMPARE(window.edit()->text(), path("c/"));
        FileBrowser::SetDefaultPath(path());
        window.type(QString("./a/"));
        FileBrowser::SetDefaultPath(QString());
        QCOMPARE(window.browser.directory().path(), path("a"));

        // Tab completes.
        QVERIFY(SampleFiles::make(path("b"), {"cut/", "./:x/", "cutout", "notes", "Shot_a", "shot_b",
                                              "w.1.exr", "w.2.exr", "w.4.exr", "w.5.exr"}));
        for (const auto& [typed, completed] : {std::pair("no", "b/notes"),
                                               {"s", "b/Shot_"},
                                               {":", "b/:x/"},
                                               {"w", "b/w.#.exr 1-5"},
                                               {"c", "b/cut/"}}) {
            window.edit()->setText(path("b/"));
            QTest::keyClicks(window.edit(), QLatin1String(typed));
            QTRY_VERIFY(window.isRead());
            QTest::keyClick(window.edit(), Qt::Key_Tab);
            QCOMPARE(window.edit()->text(), path(completed));
        }
    }

    void setFilenameSelectsTheBareName()
    {
        QVERIFY(SampleFiles::make(path("a"), {"other"}));
        BrowserWindow window(path("b"));
        window.browser.setFilename(path("a/in_a.1.exr"));
        QCOMPARE(window.edit()->selectedText(), QString("in_a.1.exr"));
        QTRY_COMPARE(window.rows(), (QStringList{"in_a.#.exr 1-2", "other"}));
        // The block takes effect with the next listing, and ends with the next edit.
        QVERIFY(QMetaObject::invokeMethod(&window.browser, "refresh"));
        QCOMPARE(window.rows().size(), 4);
        QTest::keyClicks(window.edit(), QString("o"));
        QCOMPARE(window.edit()->text(), path("a/o"));
        QCOMPARE(window.rows(), QStringList("other"));
    }

    void makesFolders()
    {
        BrowserWindow window(path("b"));
        QString name = "made";
        QString warning;
        QTimer answers;
        connect(&answers, &QTimer::timeout, this, [&] {
            if (auto* dialog = qobject_cast<QInputDialog*>(QApplication::activeModalWidget())) {
                dialog->setTextValue(name);
                dialog->accept();
            } else if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                QCOMPARE(box->textFormat(), Qt::PlainText);
                warning = box->text();
                box->accept();
            }
        });
        answers.start(0);
        window.control("newFolderButton")->click();
        QCOMPARE(window.browser.directory().path(), path("b/made"));
        name = "<b>no</b>/such/parent";
        window.control("newFolderButton")->click();
        QCOMPARE(warning, QString("Can't create folder <b>no</b>/such/parent"));
    }
};

QTEST_MAIN(NavigationTest)
#include "NavigationTest.moc"
