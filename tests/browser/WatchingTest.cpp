#include "dialog/DialogWindow.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QLabel>
#include <thread>

using namespace Halvern::UI;

/// A folder that changes while a person looks.
class WatchingTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        endFaults();
        AppSettings().clear();
        m_parent = std::make_unique<QTemporaryDir>();
        m_folder = m_parent->filePath("folder");
        QVERIFY(QDir().mkdir(m_folder));
    }

    void asksTheDiskOnlyIfItCanBeSeen()
    {
        QVERIFY(SampleFiles::make(m_folder, {"a"}));
        DialogWindow window(m_folder, false);
        QVERIFY(!window.dialog.isWatched());
        // Whether the disk is asked, and the list follows.
        const auto follows = [&](const char* name) {
            const int calls = faults[Calls];
            SampleFiles::make(m_folder, {name});
            return QTest::qWaitFor([&] { return window.rows().contains(name); }) && faults[Calls] > calls;
        };
        const auto asksNothing = [&](const char* name) {
            const int calls = faults[Calls];
            SampleFiles::make(m_folder, {name});
            return !QTest::qWaitFor([&] { return faults[Calls] != calls; }, 300);
        };
        QVERIFY(asksNothing("b"));
        watch(window);
        QVERIFY(window.dialog.isWatched() && follows("c"));
        takeCalls();
        std::thread([this] { SampleFiles::make(m_folder, "d"); }).join();
        QTRY_VERIFY(window.rows().contains("d"));
        QCOMPARE(takeCalls(), QStringList()); // of this thread

        window.dialog.setWindowState(Qt::WindowMinimized);
        QVERIFY(asksNothing("e"));
        window.dialog.setWindowState(Qt::WindowNoState);
        QTRY_VERIFY(window.rows().contains("e"));
        QVERIFY(follows("f"));
        window.dialog.hide();
        QVERIFY(asksNothing("g"));
        window.dialog.show();
        QTRY_VERIFY(window.rows().contains("g"));
        window.dialog.setWatched(false);
        QVERIFY(asksNothing("h"));
    }

    void rowsFollowTheFolder()
    {
        QVERIFY(SampleFiles::make(m_folder, {"gone", "old", "replaced", "shot.1.exr", "shot.2.exr"}));
        DialogWindow window(m_folder, true);
        watch(window);
        const QSignalSpy resets(window.proxy(), SIGNAL(modelReset()));
        QVERIFY(QFile::remove(path("gone")) && QFile::rename(path("old"), path("new")));
        QVERIFY(QFile::remove(path("replaced")) && QDir().mkdir(path("replaced")));
        QVERIFY(SampleFiles::make(m_folder, {"shot.3.exr"}));
        const QStringList rows{"new", "replaced/", "shot.#.exr 1-3"};
        QTRY_COMPARE(window.rows(), rows);

        // Rows stay while the folder is away.
        const auto& problem = *window.control<QLabel>("problemLabel");
        const QString away = m_parent->filePath("away");
        window.clickRow("new");
        QVERIFY(QFile::rename(m_folder, away));
        QTRY_VERIFY(problem.isVisible() && problem.text().startsWith("This folder can't be read: no such"));
        QCOMPARE(window.rows(), rows);
        QVERIFY(SampleFiles::make(away, {"shot.4.exr"}) && QFile::rename(away, m_folder));
        QTRY_COMPARE(window.rows().last(), QString("shot.#.exr 1-4"));
        QTRY_VERIFY(!problem.isVisible());
        QCOMPARE(window.dialog.selectedFiles(), QStringList(path("new")));
        QVERIFY(QFile::rename(m_folder, away) && QDir().mkdir(m_folder));
        QTRY_COMPARE(window.rows(), QStringList());
        QVERIFY(SampleFiles::make(m_folder, {"first"}));
        QTRY_COMPARE(window.rows(), QStringList("first"));
        QVERIFY(resets.isEmpty());
    }

    void hostGoesElsewhereWhenRowsChange()
    {
        QVERIFY(SampleFiles::make(m_folder, {"s.1.exr", "s.2.exr"}));
        const QTemporaryDir other;
        DialogWindow window(m_folder);
        watch(window);
        QTRY_COMPARE(window.rows().size(), 1);
        window.clickRow(window.rows().first());
        connect(window.edit(), &QLineEdit::textChanged, &window.dialog,
                [&] { window.dialog.setDirectory(QDir(other.path()), false, true); });
        QVERIFY(SampleFiles::make(m_folder, {"s.3.exr"}));
        QTRY_VERIFY(window.model()->directory() == QDir(other.path()) && window.rows().isEmpty());
        faults[DelayedCalls] = 0;
        QTRY_VERIFY(faults[DelayedCalls] > 0); // the system tells of changes there
        QVERIFY(SampleFiles::make(other.path(), {"new"}));
        QVERIFY(QTest::qWaitFor([&] { return window.rows() == QStringList("new"); }, 3000));
    }

    void filesVanishAtOnce()
    {
        QVERIFY(SampleFiles::makeFrames(m_folder, "f%05d.txt", 1, 10000));
        QVERIFY(SampleFiles::make(m_folder, {"stays"}));
        DialogWindow window(m_folder, true);
        watch(window);
        window.dialog.setSequencesEnabled(false);
        QTRY_COMPARE(window.rows().size(), 10001);
        QTRY_VERIFY(window.model()->hasAllAttributes());
        window.select({"f00042.txt", "stays"});
        for (int frame = 1; frame <= 10000; ++frame)
            QVERIFY(QFile::remove(QString::asprintf("%s/f%05d.txt", qPrintable(m_folder), frame)));
        QTRY_COMPARE_WITH_TIMEOUT(window.rows(), QStringList("stays"), 20000);
        QTRY_COMPARE(window.dialog.selectedFiles(), QStringList(path("stays")));
    }

    // Of a frame that comes, and of a part of the others.
    void asksForFewAttributes()
    {
        QVERIFY(SampleFiles::makeFrames(m_folder, "s.%04d.exr", 1, 5000));
        DialogWindow window(m_folder, true);
        watch(window);
        int last = 5000;
        for (const bool isKnown : {false, true}) {
            faultyCall = "fstatat";
            faults[CallDelay] = 1;
            faults[DelayedCalls] = 0;
            ++last;
            QVERIFY(SampleFiles::makeFrames(m_folder, "s.%04d.exr", last, last));
            QTRY_COMPARE(window.rows(), QStringList("s.####.exr 1-" + QString::number(last)));
            QCOMPARE(faults[DelayedCalls] < 1000, isKnown);
        }
    }

    // Between the time that a folder gives their names and the time that they are asked for.
    void vanishingFilesAreLeftOut()
    {
        QVERIFY(SampleFiles::makeFrames(m_folder, "f%02d.txt", 1, 40));
        QVERIFY(QFile::link("nothing", path("link")));
        const DialogWindow window(m_folder, false);
        faultyCall = "fstatat";
        faults[CallDelay] = 10000;
        faults[DelayedCalls] = 0;
        QVERIFY(window.model()->update());
        QTRY_VERIFY(faults[DelayedCalls] > 0);
        for (int frame = 1; frame <= 40; ++frame)
            QVERIFY(QFile::remove(QString::asprintf("%s/f%02d.txt", qPrintable(m_folder), frame)));
        QTRY_VERIFY(!window.model()->isUpdating());
        QVERIFY(window.rows().size() < 41 && window.rows().contains("link"));
    }

    // Only the question of the watch is about the path of the folder.
    void slowAnswersHoldNobodyUp()
    {
        QVERIFY(SampleFiles::make(m_folder, {"a", "b"}));
        const QString other = m_parent->filePath("other");
        QVERIFY(QDir().mkdir(other) && SampleFiles::make(other, {"c"}));
        const QByteArray slow = QFile::encodeName(m_folder);
        faultyFolder = slow.constData();
        faultyCall = "fstatat";
        faults[CallDelay] = 30000000;
        QElapsedTimer timer;
        timer.start();
        {
            DialogWindow window(m_folder, true, false);
            window.dialog.setWatched(true);
            QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
            QTRY_VERIFY(faults[DelayedCalls] > 0);
            window.clickRow("a");
            QCOMPARE(window.dialog.selectedFiles(), QStringList(path("a")));
            window.dialog.setDirectory(QDir(other), false, true);
            QTRY_COMPARE(window.rows(), QStringList("c"));
            QTest::qWait(20);
            QVERIFY(SampleFiles::make(other, {"d"}));
            QTRY_COMPARE(window.rows(), (QStringList{"c", "d"}));
            window.dialog.setDirectory(QDir(m_folder), false, true);
            QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
            QCOMPARE(faults[DelayedCalls].load(), 1); // the folder is not asked again
        }
        QVERIFY(timer.elapsed() < 15000);
    }

private:
    // Returns when the system tells of changes.
    static void watch(const DialogWindow& window)
    {
        faultyCall = "inotify_add_watch";
        faults[CallDelay] = 1;
        faults[DelayedCalls] = 0;
        window.dialog.setWatched(true);
        QTRY_VERIFY(faults[DelayedCalls] > 0);
    }
    QString path(const char* name) const { return m_folder + '/' + name; }

    std::unique_ptr<QTemporaryDir> m_parent;
    QString m_folder;
};

QTEST_MAIN(WatchingTest)
#include "WatchingTest.moc"
