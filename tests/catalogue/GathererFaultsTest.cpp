#include "base/SlowCalls.h"
#include "catalogue/Entries.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

using namespace Halvern;
using namespace Halvern::UI;
using Base::FileHandle;

/// What a failing and a slow disk do to a listing.
class GathererFaultsTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        endFaults();
        QVERIFY(SampleFiles::make(folder.path(), {"sub/", "d.1.exr/", "d.2.exr/"}));
        QVERIFY(SampleFiles::makeFrames(folder.path(), "f%04d.exr", 1, Files));
    }

    // Runs first: later on there are helper threads.
    void worksWithoutThreads()
    {
        std::atomic<int> calls[2] = {}; // on this thread and on others
        const auto count = [&, thread = QThread::currentThreadId()] {
            ++calls[QThread::currentThreadId() == thread ? 0 : 1];
        };
        for (const int error : {EAGAIN, 0}) {
            failCalls("pthread_create", error);
            for (int i = 0; i < 20; ++i)
                Base::callInBackground(count);
            Base::waitForHelpers();
        }
        QVERIFY(calls[0] == 20 && calls[1] == 20);

        // A read needs one, and can be begun again when there is one.
        FileManager manager;
        const QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
        failCalls("pthread_create", EAGAIN);
        expectWarning(QStringLiteral("^QThread::start: Thread creation error"));
        QVERIFY(manager.getFilesFromFolder(path, false));
        QVERIFY(refreshed.isEmpty());
        QTRY_COMPARE(refreshed.size(), 1);
        QVERIFY(manager.readError() == EAGAIN && entries(manager).empty());
        endFaults();
        QVERIFY(manager.getFilesFromFolder(path, false));
        QTRY_COMPARE(refreshed.size(), 2);
        QVERIFY(manager.readError() == 0 && int(entries(manager).size()) == all);
    }

    void leavingWaitsForOneCall()
    {
        // What is slow, whether names have no types, and after how many calls more each time the folder is
        // left, which is in the end when several are under way at once.
        const std::tuple<const char*, bool, int> rows[] = {
            {"fstatat", false, 4}, {"fstatat", true, 4}, {"readdir", false, 1},
            {"readdir", true, 1},  {"open", false, 0},
        };
        for (const auto& [call, noTypes, step] : rows) {
            delayCalls(call, 50000);
            faults[NoTypes] = noTypes;
            int least = INT_MAX;
            for (int round = 0; round < 5; ++round) {
                FileManager manager;
                const QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
                faults[DelayedCalls] = 0;
                QVERIFY(manager.getFilesFromFolder(path, false));
                while (faults[DelayedCalls] <= round * step)
                    QThread::msleep(1);
                const int before = faults[Calls];
                QVERIFY(!manager.getFilesFromFolder("/no/such/folder", true));
                least = std::min(least, faults[Calls] - before);
                QCoreApplication::processEvents();
                QVERIFY(entries(manager).empty() && refreshed.isEmpty());
            }
            // The call under way may end, and others begin, just before the run is stopped, but hardly each
            // time.
            QVERIFY2(least == 0, call);
        }
    }

    void readsWhatItCan()
    {
        // A fault and the call that it concerns, the error that is told, how many names are listed, and the
        // least and the most of them that have attributes.
        const std::tuple<Fault, int, const char*, int, int, int, int> rows[] = {
            {MostNames, 1500, nullptr, EIO, 1499, 1499, 1499}, {CallError, EIO, "open", EIO, 0, 0, 0},
            {CallError, ENOMEM, "fdopendir", ENOMEM, 0, 0, 0}, {CallError, EIO, "fstatat", 0, all, 0, 0},
            {CallDelay, 5000, "fstatat", 0, all, 1, all - 1}, // and the directory goes in mid-read
        };
        for (const auto& [fault, value, call, error, names, least, most] : rows) {
            endFaults();
            faults[fault] = value;
            faultyCall = call;
            FileManager manager;
            int updated = 0;
            connect(&manager, &FileManager::infoUpdated, this, [&](int, int count) { updated += count; });
            QVector<int> told;
            connect(&manager, &FileManager::refreshList, this, [&] { told.append(manager.readError()); });
            QVERIFY(manager.getFilesFromFolder(path, false));
            QCOMPARE(manager.readError(), 0);
            QTRY_VERIFY(fault != CallDelay || faults[DelayedCalls] > 0);
            QVERIFY(fault != CallDelay || QDir(folder.path()).removeRecursively());
            QTRY_COMPARE(told, QVector<int>{error});
            QTRY_COMPARE_WITH_TIMEOUT(updated, names, 20000);
            int known = 0;
            for (const FileInfo* file : entries(manager)) {
                known += file->modificationTime() > 0 ? 1 : 0;
                // A folder stays a folder without its attributes.
                QVERIFY2(file->isDirectory() != (*file->fileName() == 'f'), file->fileName());
            }
            QVERIFY(known >= least && known <= most);
            if (fault == CallDelay)
                continue;
            // What failed is read again without force.
            endFaults();
            QCOMPARE(manager.getFilesFromFolderSynchronously(path, false), error != 0);
            QVERIFY(manager.readError() == 0 && int(entries(manager).size()) == all);
        }
    }

    void tellsWhatCannotBeOpened()
    {
        FileManager manager;
        const auto count = [&manager] { return int(entries(manager).size()); };
        QVERIFY(manager.getFilesFromFolderSynchronously(path, false) && count() == all);
        // The entries of the same directory stay.
        for (const bool force : {false, true}) {
            failCalls("opendir", EACCES);
            QVERIFY(!manager.getFilesFromFolder(path, force));
            QVERIFY(manager.readError() == EACCES && count() == all);
        }
        endFaults();
        QVERIFY(SampleFiles::make(folder.path(), {"new"}));
        QVERIFY(manager.getFilesFromFolderSynchronously(path, false));
        QVERIFY(manager.readError() == 0 && count() == all + 1);
        QVERIFY(!manager.getFilesFromFolder(folder.filePath("none").toStdString(), false));
        QVERIFY(manager.readError() == ENOENT && count() == 0);
        // An interruption is no failure.
        for (const char* call : {"opendir", "open", "fdopendir", "readdir", "fstatat"}) {
            failCalls(call, EINTR, 1);
            QVERIFY2(manager.getFilesFromFolderSynchronously(path, true), call);
            QVERIFY2(manager.readError() == 0 && count() == all + 1 && faults[CallPlace] == -1, call);
            for (const FileInfo* file : entries(manager))
                QVERIFY2(file->modificationTime() > 0, call);
        }
        QVERIFY(QFile::remove(folder.filePath(QStringLiteral("new"))));
    }

    // Each allocation of a read fails once, the later ones with growing steps.
    void endsWithoutMemory()
    {
        if (!failsAllocations)
            QSKIP("a sanitizer allocates");
        for (const Fault fault : {FirstAllocation, WorkerAllocation}) {
            const bool inBackground = fault == WorkerAllocation;
            int incomplete = 0;
            int place = 1;
            for (bool failed = true; failed; place += 1 + place / 16) {
                FileManager manager;
                manager.setNamesOrdered(place % 2 == 0);
                bool ended = false;
                connect(&manager, &FileManager::refreshList, this, [&] { ended = true; });
                connect(&manager, &FileManager::infoUpdated, this, [&] { ended = true; });
                faults[fault] = place;
                const bool begun = inBackground ? manager.getFilesFromFolder(path, false)
                                                : manager.getFilesFromFolderSynchronously(path, false);
                if (inBackground)
                    QTRY_VERIFY(manager.readError() != 0 || (manager.isInfoComplete() && ended));
                failed = faults[fault] == 0;
                faults[fault] = 0;
                QVERIFY(ended || !begun);
                const bool complete = int(entries(manager).size()) == all && manager.isInfoComplete();
                QVERIFY2(complete == (manager.readError() == 0), qPrintable(QString::number(place)));
                QVERIFY(complete || (failed && manager.readError() == ENOMEM));
                incomplete += complete ? 0 : 1;
                for (const FileInfo* file : entries(manager))
                    QVERIFY2(QFile::exists(folder.filePath(file->fileName())), file->fileName());
                // The file system gives the names in any order, so what was read may have gaps.
                QVERIFY(entries(manager, FileHandle::RegisteredSplitSequences).size() <=
                        entries(manager).size());
                QVERIFY(manager.getFilesFromFolderSynchronously(path, true));
                QCOMPARE(entries(manager, FileHandle::RegisteredSequences).size(), std::size_t(6));
                QVERIFY(manager.readError() == 0 && int(entries(manager).size()) == all);
                faults[FirstAllocation] = 1;
                QVERIFY(entries(manager).empty() && manager.readError() == ENOMEM);
            }
            QVERIFY(incomplete > 20);
        }
    }

    void asksSlowDisksForSeveralAtOnce()
    {
        for (int frame = 1; frame <= Files; ++frame)
            QVERIFY(QFile::resize(folder.filePath(QString::asprintf("f%04d.exr", frame)), frame));
        for (const bool noTypes : {false, true}) {
            delayCalls("fstatat", 500);
            faults[NoTypes] = noTypes;
            FileManager manager;
            QVERIFY(manager.getFilesFromFolderSynchronously(path, true));
            // A synchronous read is the first thread's, which is not slow; those that help it would be.
            QCOMPARE(faults[MostDelayed].load(), 0);
            int updated = 0;
            connect(&manager, &FileManager::infoUpdated, this, [&](int, int count) { updated += count; });
            QVERIFY(manager.getFilesFromFolder(path, true));
            QTRY_COMPARE(updated, all);
            QVERIFY(faults[MostDelayed] > 1 && faults[MostDelayed] <= int(Base::MostCallsAtOnce));
            QCOMPARE(faults[DelayedCalls].load(), (noTypes ? 2 : 1) * all);
            QCOMPARE(int(entries(manager).size()), all);
            // Asking makes up for types that are missing, so that numbered directories are no frames.
            QCOMPARE(entries(manager, FileHandle::RegisteredSequences).size(), std::size_t(6));
            for (const FileInfo* file : entries(manager)) {
                const QByteArray name = file->fileName();
                const bool isFrame = name.startsWith('f');
                QVERIFY2(file->isDirectory() != isFrame, name.constData());
                QVERIFY2(!isFrame || file->size() == name.mid(1, 4).toULongLong(), name.constData());
            }
        }
    }

private:
    static constexpr int Files = 1600;
    static constexpr int all = Files + 5; // with three folders, "." and ".."
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
};

QTEST_GUILESS_MAIN(GathererFaultsTest)
#include "GathererFaultsTest.moc"
