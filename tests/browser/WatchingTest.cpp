#include "dialog/DialogWindow.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QLabel>
#include <thread>

using namespace Halvern::UI;

/// A folder that changes while a person looks.
class WatchingTest : public Test
{
    Q_OBJECT

private slots:
    void init() { endFaults(); }

    void asksTheDiskOnlyIfItCanBeSeen()
    {
        QVERIFY(make({"a"}));
        DialogWindow window(path(), false);
        QVERIFY(!window.dialog.isWatched());
        const auto asksNothing = [&](const char* name) {
            const int calls = faults[Calls];
            make({name});
            return !QTest::qWaitFor([&] { return faults[Calls] != calls; }, 300);
        };
        QVERIFY(asksNothing("b"));
        watch(window);
        QVERIFY(window.dialog.isWatched());
        takeCalls();
        std::thread([this] { make({"d"}); }).join();
        QTRY_VERIFY(window.rows().contains("d"));
        QCOMPARE(takeCalls(), QStringList()); // of this thread

        window.dialog.setWindowState(Qt::WindowMinimized);
        QVERIFY(asksNothing("e"));
        window.dialog.setWindowState(Qt::WindowNoState);
        QTRY_VERIFY(window.rows().contains("e"));
        QVERIFY(make({"f"}));
        QTRY_VERIFY(window.rows().contains("f"));
        window.dialog.hide();
        QVERIFY(asksNothing("g"));
        window.dialog.show();
        QTRY_VERIFY(window.rows().contains("g"));
        window.dialog.setWatched(false);
        QVERIFY(asksNothing("h"));
    }

    void rowsFollowTheFolder()
    {
        QVERIFY(make({"gone", "old", "replaced", "shot.1.exr", "shot.2.exr"}));
        DialogWindow window(path(), true);
        watch(window);
        const QSignalSpy resets(window.proxy(), SIGNAL(modelReset()));
        QVERIFY(QFile::remove(path("gone")) && QFile::rename(path("old"), path("new")));
        QVERIFY(QFile::remove(path("replaced")) && QDir().mkdir(path("replaced")));
        QVERIFY(make({"shot.3.exr"}));
        const QStringList rows{"new", "replaced/", "shot.#.exr 1-3"};
        QTRY_COMPARE(window.rows(), rows);

        // Rows stay while the folder is away.
        const auto& problem = *window.control<QLabel>("problemLabel");
        const QTemporaryDir elsewhere;
        const QString away = elsewhere.filePath("away");
        window.clickRow("new");
        QVERIFY(QFile::rename(path(), away));
        QTRY_VERIFY(problem.isVisible() && problem.text().startsWith("This folder can't be read: no such"));
        QCOMPARE(window.rows(), rows);
        QVERIFY(SampleFiles::make(away, {"shot.4.exr"}) && QFile::rename(away, path()));
        QTRY_COMPARE(window.rows().last(), QString("shot.#.exr 1-4"));
        QTRY_VERIFY(!problem.isVisible());
        QCOMPARE(window.dialog.selectedFiles(), QStringList(path("new")));
        QVERIFY(QFile::rename(path(), away) && QDir().mkdir(path()));
        QTRY_COMPARE(window.rows(), QStringList());
        QVERIFY(make({"first"}));
        QTRY_COMPARE(window.rows(), QStringList("first"));
        QVERIFY(resets.isEmpty());
    }

    void hostGoesElsewhereWhenRowsChange()
    {
        QVERIFY(make({"s.1.exr", "s.2.exr"}));
        const QTemporaryDir other;
        DialogWindow window(path());
        watch(window);
        QTRY_COMPARE(window.rows().size(), 1);
        window.clickRow(window.rows().first());
        connect(window.edit(), &QLineEdit::textChanged, &window.dialog,
                [&] { window.dialog.setDirectory(QDir(other.path()), false, true); });
        QVERIFY(make({"s.3.exr"}));
        QTRY_VERIFY(window.model()->directory() == QDir(other.path()) && window.rows().isEmpty());
        faults[DelayedCalls] = 0;
        waitForNotices();
        QVERIFY(SampleFiles::make(other.path(), {"new"}));
        QTRY_COMPARE_WITH_TIMEOUT(window.rows(), QStringList("new"), 3000);
    }

    void filesVanishAtOnce()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "f%05d.txt", 1, 10000));
        QVERIFY(make({"stays"}));
        DialogWindow window(path(), true);
        watch(window);
        window.dialog.setSequencesEnabled(false);
        QTRY_COMPARE(window.rows().size(), 10001);
        QTRY_VERIFY(window.model()->hasAllAttributes());
        window.select({"f00042.txt", "stays"});
        for (int frame = 1; frame <= 10000; ++frame)
            QVERIFY(QFile::remove(path(QString::asprintf("f%05d.txt", frame))));
        QTRY_COMPARE_WITH_TIMEOUT(window.rows(), QStringList("stays"), 20000);
        QTRY_COMPARE(window.dialog.selectedFiles(), QStringList(path("stays")));
    }

    // Of a frame that comes, and of a part of the others.
    void asksForFewAttributes()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "s.%04d.exr", 1, 5000));
        DialogWindow window(path(), true);
        watch(window);
        int last = 5000;
        for (const bool isKnown : {false, true}) {
            delayCalls("fstatat", 1);
            ++last;
            QVERIFY(SampleFiles::makeFrames(path(), "s.%04d.exr", last, last));
            QTRY_COMPARE(window.rows(), QStringList("s.####.exr 1-" + QString::number(last)));
            QCOMPARE(faults[DelayedCalls] < 1000, isKnown);
        }
    }

    // Between the time that a folder gives their names and the time that they are asked for.
    void vanishingFilesAreLeftOut()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "f%02d.txt", 1, 40));
        QVERIFY(QFile::link("nothing", path("link")));
        const DialogWindow window(path(), false);
        delayCalls("fstatat", 10000);
        QVERIFY(window.model()->update());
        QTRY_VERIFY(faults[DelayedCalls] > 0);
        for (int frame = 1; frame <= 40; ++frame)
            QVERIFY(QFile::remove(path(QString::asprintf("f%02d.txt", frame))));
        QTRY_VERIFY(!window.model()->isUpdating());
        QVERIFY(window.rows().size() < 41 && window.rows().contains("link"));
    }

    // Only the question of the watch is about the path of the folder.
    void slowAnswersHoldNobodyUp()
    {
        QVERIFY(make({"a", "b"}));
        const SampleFolder other{"c"};
        const QByteArray slow = QFile::encodeName(path());
        delayCalls("fstatat", 30000000);
        faultyFolder = slow.constData();
        QElapsedTimer timer;
        timer.start();
        {
            DialogWindow window(path(), true, false);
            window.dialog.setWatched(true);
            QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
            QTRY_VERIFY(faults[DelayedCalls] > 0);
            window.clickRow("a");
            QCOMPARE(window.dialog.selectedFiles(), QStringList(path("a")));
            window.dialog.setDirectory(QDir(other.path()), false, true);
            QTRY_COMPARE(window.rows(), QStringList("c"));
            QTest::qWait(20);
            QVERIFY(SampleFiles::make(other.path(), {"d"}));
            QTRY_COMPARE(window.rows(), (QStringList{"c", "d"}));
            window.dialog.setDirectory(QDir(path()), false, true);
            QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
            QCOMPARE(faults[DelayedCalls].load(), 1); // the folder is not asked again
        }
        QVERIFY(timer.elapsed() < 15000);
    }

private:
    // Returns when the system tells of changes.
    static void watch(const DialogWindow& window)
    {
        delayCalls("inotify_add_watch", 1);
        window.dialog.setWatched(true);
        waitForNotices();
    }
    // Until the system tells of changes. The call is counted when it begins.
    static void waitForNotices()
    {
        QTRY_VERIFY(faults[DelayedCalls] > 0);
        QTest::qWait(50);
    }
};

QTEST_MAIN(WatchingTest)
#include "WatchingTest.moc"
