#include "catalogue/DirectoryWatch.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <cerrno>
#include <functional>
#include <sys/stat.h>

using namespace Halvern::UI;

namespace {

constexpr int Never = 1000000; // milliseconds
using NameSet = ChangedNames::value_type;

/// A folder with two files, its watch, and what the watch told. If it @p isRead, the reader has ended.
class Watched
{
public:
    explicit Watched(const DirectoryWatch::Pace& pace, bool isRead = true)
        : watch(pace)
        , changes(&watch, &DirectoryWatch::changed)
    {
        SampleFiles::make(parent.path(), {"folder/", "folder/a", "folder/b"});
        watch.beginRead(path.toStdString());
        watch.setActive(true);
        if (isRead)
            watch.endRead(0, true);
    }

    QString file(const char* name) const { return path + '/' + QLatin1String(name); }
    /// Whether a change is told. The reader is done with it after @p milliseconds.
    bool tells(int milliseconds = 0, bool succeeds = true)
    {
        const bool told = !changes.isEmpty() || changes.wait();
        names = watch.changedNames();
        changes.clear();
        watch.endRead(milliseconds, succeeds);
        return told;
    }

    QTemporaryDir parent;
    const QString path = parent.filePath(QString("folder"));
    DirectoryWatch watch;
    QSignalSpy changes;
    ChangedNames names; // of the last change
};

bool write(const QString& path)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write("x") == 1;
}

} // namespace

/// What tells that a directory changed, and when.
class DirectoryWatchTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        QTRY_COMPARE(faults[NowDelayed].load(), 0); // of the test before
        endFaults();
    }

    void tellsEachChange_data()
    {
        QTest::addColumn<bool>("hasNotices");
        QTest::newRow("with notices") << true;
        QTest::newRow("by questions alone") << false;
    }
    void tellsEachChange()
    {
        QFETCH(const bool, hasNotices);
        if (!hasNotices)
            failCalls("inotify_add_watch", ENOSPC);
        Watched folder({20, 40, 1, Never});
        const QString elsewhere = folder.parent.filePath("elsewhere");
        const auto rename = [](const QString& from, const QString& to) {
            return std::rename(qPrintable(from), qPrintable(to)) == 0;
        };
        const struct
        {
            const char* name;
            std::function<bool()> change;
            bool isNoticeOnly = false;
        } steps[] = {
            {"new file", [&] { return write(folder.file("c")); }},
            {"new folder", [&] { return QDir().mkdir(folder.file("d")); }},
            {"renamed file", [&] { return rename(folder.file("a"), folder.file("e")); }},
            {"moved file", [&] { return rename(folder.file("e"), elsewhere); }},
            {"replaced file", [&] { return rename(elsewhere, folder.file("b")); }},
            {"written file", [&] { return write(folder.file("b")); }, true},
            {"protected file", [&] { return ::chmod(qPrintable(folder.file("b")), 0400) == 0; }, true},
            {"removed file", [&] { return QFile::remove(folder.file("b")); }},
            {"protected folder", [&] { return ::chmod(qPrintable(folder.path), 0500) == 0; }},
            {"renamed folder", [&] { return rename(folder.path, elsewhere); }},
            {"returned folder", [&] { return rename(elsewhere, folder.path); }},
            {"usable folder", [&] { return ::chmod(qPrintable(folder.path), 0700) == 0; }},
            {"removed folder", [&] { return QDir(folder.path).removeRecursively(); }},
            {"another folder", [&] { return QDir().mkdir(folder.path); }},
            {"file in it", [&] { return write(folder.file("f")); }},
            {"file written in it", [&] { return write(folder.file("f")); }, true},
            {"replaced folder", [&] { return rename(folder.path, elsewhere) && QDir().mkdir(folder.path); }}};
        QTRY_VERIFY(faults[Calls] > 2); // by the second question
        for (const auto& step : steps) {
            if (step.isNoticeOnly && !hasNotices)
                continue;
            QVERIFY2(step.change(), step.name);
            QVERIFY2(folder.tells(), step.name);
        }
    }

    // A change is told at once, and those that come while the reader is at work or rests are merged.
    void leavesTheReaderItsTime()
    {
        Watched folder({Never, Never, 100, Never}, false);
        QVERIFY(write(folder.file("c"))); // noticed or not
        folder.watch.endRead(0, true);
        QElapsedTimer sinceTold;
        QElapsedTimer sinceRead;
        for (const qint64 reading : {0, 0, 100, 100}) {
            QTRY_VERIFY(write(folder.file("c")) && !folder.changes.isEmpty());
            if (sinceTold.isValid())
                QVERIFY(sinceTold.elapsed() >= 100);
            sinceTold.start();
            QVERIFY(write(folder.file("c")));
            QVERIFY(!folder.changes.wait(150) && folder.changes.size() == 1);
            QVERIFY(folder.tells(static_cast<int>(reading)));
            sinceRead.start();
            QVERIFY(folder.changes.wait());
            QVERIFY(sinceRead.elapsed() >= 4 * reading);
            QVERIFY(folder.tells());
            QVERIFY(!folder.changes.wait(150));
        }
    }

    // Files may be written without a trace in the times of a folder: those of one tick, or on a server.
    void looksAgainAfterAChange()
    {
        Watched folder({Never, Never, 1, 100}, false);
        QSignalSpy& changes = folder.changes;
        QVERIFY(!changes.wait(200)); // still being read
        folder.watch.endRead(0, true);
        QVERIFY(folder.tells() && !changes.wait(200));
        QVERIFY(write(folder.file("a")) && folder.tells() && folder.tells() && !changes.wait(200));
        folder.watch.setActive(false);
        QVERIFY(write(folder.file("a"))); // which nobody tells
        folder.watch.setActive(true);
        QVERIFY(folder.tells() && !changes.wait(200));
        folder.watch.endRead(0, false); // the reader could not begin
        QVERIFY(folder.tells() && !changes.wait(200));

        // A read that failed is tried again, later each time.
        QElapsedTimer timer;
        qint64 sinceTold = 0;
        connect(&folder.watch, &DirectoryWatch::changed, this, [&] { sinceTold = timer.restart(); });
        timer.start();
        QVERIFY(write(folder.file("a")) && changes.wait());
        for (const int wait : {150, 225}) {
            changes.clear();
            folder.watch.endRead(0, false);
            QVERIFY(changes.wait());
            QVERIFY(sinceTold >= wait);
        }

        // What did not change for long is as it was read.
        QVERIFY(QDir(QString("/sys/kernel")).exists());
        folder.watch.beginRead("/sys/kernel");
        folder.watch.endRead(0, true);
        changes.clear();
        QVERIFY(!changes.wait(300));
        folder.watch.beginRead("/sys/kernel");
        folder.watch.endRead(0, false);
        QVERIFY(changes.wait());
    }

    void tellsWhichFilesChanged()
    {
        Watched folder({Never, Never, 1, 200});
        const auto tells = [&](const ChangedNames& names, bool succeeds = true) {
            return folder.tells(0, succeeds) && folder.names == names;
        };
        const auto writes = [&](const char* name) { return write(folder.file(name)); };
        const ChangedNames any;
        QVERIFY(tells(any));
        QVERIFY(writes("c") && tells(NameSet{"c"}) && tells(any));
        QVERIFY(QFile::rename(folder.file("c"), folder.file("d")));
        QVERIFY(tells(NameSet{"c", "d"}, false)); // so the reader does not know them yet
        QVERIFY(writes("e") && tells(NameSet{"c", "d", "e"}));
        QVERIFY(writes("e") && tells(NameSet{"e"}));
        QVERIFY(::chmod(qPrintable(folder.path), 0500) == 0 && tells(any));
        // Another folder of that name.
        QVERIFY(QDir().rename(folder.path, folder.parent.filePath("away")) && tells(any));
        QVERIFY(QDir().mkdir(folder.path) && tells(any));
        QVERIFY(writes("f") && tells(NameSet{"f"}));
        folder.watch.setActive(false);
        QVERIFY(writes("g"));
        folder.watch.setActive(true);
        QVERIFY(tells(any));
        // More than the system keeps until they are taken.
        QFile limit(QString("/proc/sys/fs/inotify/max_queued_events"));
        const int most = limit.open(QFile::ReadOnly) ? limit.readAll().trimmed().toInt() : 0;
        for (int i = 0; i <= most && most < 100000; ++i)
            QVERIFY(writes(i % 2 == 0 ? "h" : "i"));
        QVERIFY(most >= 100000 || tells(any));
    }

    void asksBeforeTheReaderHasRested()
    {
        const Watched folder({Never, Never, Never, Never});
        QTRY_VERIFY(faults[Calls] > 0);
    }

    // Files made while names are read, and files written while attributes are, are told after the read.
    void noticesChangesInTheFirstRead()
    {
        for (const char* changed : {"c", "b"}) {
            const bool isNew = *changed == 'c';
            const int calls = faults[Calls];
            faultyCall = isNew ? nullptr : "fstatat"; // the first answer comes late
            faults[CallDelay] = 50000;
            Watched folder({Never, Never, 1, Never});
            QTRY_COMPARE(faults[Calls], calls + 1);
            QVERIFY(!isNew || write(folder.file(changed)));
            folder.watch.endNames();
            QTRY_COMPARE(faults[Calls], calls + 3); // with notices and for the state
            QVERIFY(isNew || write(folder.file(changed)));
            folder.watch.endRead(0, true);
            QVERIFY(folder.tells());
        }
    }

    void asksSeldomIfNothingChangesOrAnswersTakeLong()
    {
        Watched folder({20, 160, 1, Never});
        QVERIFY(!folder.changes.wait(1000));
        const int questions = faults[Calls] / 2;
        QVERIFY(questions >= 3 && questions <= 15);
        // Nothing is asked in a pause.
        folder.watch.setActive(false);
        QVERIFY(write(folder.file("c")));
        QTest::qWait(50); // for the question that was being asked
        const int calls = faults[Calls];
        QVERIFY(!folder.changes.wait(300) && folder.changes.isEmpty() && faults[Calls] == calls);
        folder.watch.setActive(true);
        QVERIFY(folder.tells());

        delayCalls("fstatat", 50000);
        QTRY_COMPARE(faults[DelayedCalls].load(), 2);
        QVERIFY(!folder.changes.wait(1000));
        QVERIFY(faults[DelayedCalls] <= 10);
    }

    // A directory is asked once at a time, and the reader has its time also after a late answer.
    void keepsToThePaceWithLateAnswers()
    {
        delayCalls("fstatat", 200000);
        Watched folder({20, 40, 1, Never}, false);
        for (int i = 0; i < 3; ++i) {
            QTRY_COMPARE(faults[NowDelayed].load(), 1);
            folder.watch.setActive(false);
            folder.watch.setActive(true);
            QTest::qWait(20);
            folder.watch.beginRead(folder.path.toStdString());
            folder.watch.endNames();
        }
        QTRY_VERIFY(faults[DelayedCalls] > 1);
        QVERIFY(write(folder.file("c")));
        QElapsedTimer sinceRead;
        sinceRead.start();
        folder.watch.endRead(200, true);
        QVERIFY(folder.changes.wait());
        QVERIFY(sinceRead.elapsed() >= 800);
        QCOMPARE(faults[MostDelayed].load(), 1);
    }

    void asksLaterWithoutThreads()
    {
        failCalls("pthread_create", EAGAIN);
        Watched folder({20, 20, 1, 1});
        QVERIFY(!folder.changes.wait(100));
        endFaults();
        QVERIFY(folder.tells());
    }
};

QTEST_GUILESS_MAIN(DirectoryWatchTest)
#include "DirectoryWatchTest.moc"
