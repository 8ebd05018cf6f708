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
    bool writes(const char* name) const { return SampleFiles::write(file(name), "x"); }
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
        // Those that only notices tell of begin with "noticed".
        const std::pair<const char*, std::function<bool()>> steps[] = {
            {"new file", [&] { return folder.writes("c"); }},
            {"new folder", [&] { return QDir().mkdir(folder.file("d")); }},
            {"renamed file", [&] { return rename(folder.file("a"), folder.file("e")); }},
            {"moved file", [&] { return rename(folder.file("e"), elsewhere); }},
            {"replaced file", [&] { return rename(elsewhere, folder.file("b")); }},
            {"noticed write", [&] { return folder.writes("b"); }},
            {"noticed protection", [&] { return ::chmod(qPrintable(folder.file("b")), 0400) == 0; }},
            {"removed file", [&] { return QFile::remove(folder.file("b")); }},
            {"protected folder", [&] { return ::chmod(qPrintable(folder.path), 0500) == 0; }},
            {"renamed folder", [&] { return rename(folder.path, elsewhere); }},
            {"returned folder", [&] { return rename(elsewhere, folder.path); }},
            {"usable folder", [&] { return ::chmod(qPrintable(folder.path), 0700) == 0; }},
            {"removed folder", [&] { return QDir(folder.path).removeRecursively(); }},
            {"another folder", [&] { return QDir().mkdir(folder.path); }},
            {"file in it", [&] { return folder.writes("f"); }},
            {"noticed write in it", [&] { return folder.writes("f"); }},
            {"replaced folder", [&] { return rename(folder.path, elsewhere) && QDir().mkdir(folder.path); }}};
        QTRY_VERIFY(faults[Calls] > 2); // by the second question
        for (const auto& [name, change] : steps) {
            if (!hasNotices && QByteArray(name).startsWith("noticed"))
                continue;
            QVERIFY2(change(), name);
            QVERIFY2(folder.tells(), name);
        }
    }

    // A change is told at once, and those that come while the reader is at work or rests are merged.
    void leavesTheReaderItsTime()
    {
        Watched folder({Never, Never, 100, Never}, false);
        QVERIFY(folder.writes("c")); // noticed or not
        folder.watch.endRead(0, true);
        QElapsedTimer sinceTold;
        QElapsedTimer sinceRead;
        for (const qint64 reading : {0, 0, 100, 100}) {
            QTRY_VERIFY(folder.writes("c") && !folder.changes.isEmpty());
            QVERIFY(!sinceTold.isValid() || sinceTold.elapsed() >= 100);
            sinceTold.start();
            QVERIFY(folder.writes("c"));
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
        QVERIFY(folder.writes("a") && folder.tells() && folder.tells() && !changes.wait(200));
        folder.watch.setActive(false);
        QVERIFY(folder.writes("a")); // which nobody tells
        folder.watch.setActive(true);
        QVERIFY(folder.tells() && !changes.wait(200));
        folder.watch.endRead(0, false); // the reader could not begin
        QVERIFY(folder.tells() && !changes.wait(200));

        // A read that failed is tried again, later each time.
        QElapsedTimer timer;
        qint64 sinceTold = 0;
        connect(&folder.watch, &DirectoryWatch::changed, this, [&] { sinceTold = timer.restart(); });
        timer.start();
        QVERIFY(folder.writes("a") && changes.wait());
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
        const ChangedNames any;
        QVERIFY(tells(any));
        QVERIFY(folder.writes("c") && tells(NameSet{"c"}) && tells(any));
        QVERIFY(QFile::rename(folder.file("c"), folder.file("d")));
        QVERIFY(tells(NameSet{"c", "d"}, false)); // so the reader does not know them yet
        QVERIFY(folder.writes("e") && tells(NameSet{"c", "d", "e"}));
        QVERIFY(folder.writes("e") && tells(NameSet{"e"}));
        QVERIFY(::chmod(qPrintable(folder.path), 0500) == 0 && tells(any));
        // Another folder of that name.
        QVERIFY(QDir().rename(folder.path, folder.parent.filePath("away")) && tells(any));
        QVERIFY(QDir().mkdir(folder.path) && tells(any));
        QVERIFY(folder.writes("f") && tells(NameSet{"f"}));
        folder.watch.setActive(false);
        QVERIFY(folder.writes("g"));
        folder.watch.setActive(true);
        QVERIFY(tells(any));
        // More than the system keeps until they are taken.
        QFile limit(QString("/proc/sys/fs/inotify/max_queued_events"));
        const int most = limit.open(QFile::ReadOnly) ? limit.readAll().trimmed().toInt() : 100000;
        for (int i = 0; i <= most && most < 100000; ++i)
            QVERIFY(folder.writes(i % 2 == 0 ? "h" : "i"));
        QVERIFY(most >= 100000 || tells(any));
    }

    // Files made while names are read, and files written while attributes are, are told after the read.
    void noticesChangesInTheFirstRead()
    {
        for (const char* changed : {"c", "b"}) {
            const bool isNew = *changed == 'c';
            const int calls = faults[Calls];
            faultyCall = isNew ? nullptr : "fstatat"; // the first answer comes late
            faults[CallDelay] = 50000;
            Watched folder({Never, Never, 1, Never}, false);
            QTRY_COMPARE(faults[Calls], calls + 1);
            QVERIFY(!isNew || folder.writes(changed));
            folder.watch.endNames();
            QTRY_COMPARE(faults[Calls], calls + 3); // with notices and for the state
            QVERIFY(isNew || folder.writes(changed));
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
        const int before = faults[DelayedCalls];
        QTRY_VERIFY(faults[DelayedCalls] > before); // about the last read
        QVERIFY(folder.writes("c"));
        QElapsedTimer sinceRead;
        sinceRead.start();
        folder.watch.endRead(200, true);
        QVERIFY(folder.changes.wait());
        QVERIFY(sinceRead.elapsed() >= 800);
        QCOMPARE(faults[MostDelayed].load(), 1);
    }

    // Before the reader has rested, and without threads later.
    void asksAsSoonAsItCan()
    {
        const Watched resting({Never, Never, Never, Never});
        QTRY_VERIFY(faults[Calls] > 0);
        failCalls("pthread_create", EAGAIN);
        Watched folder({20, 20, 1, 1});
        QVERIFY(!folder.changes.wait(100));
        endFaults();
        QVERIFY(folder.tells());
    }
};

QTEST_GUILESS_MAIN(DirectoryWatchTest)
#include "DirectoryWatchTest.moc"
