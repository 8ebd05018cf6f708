#include "catalogue/FileManager.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

using namespace Halvern::UI;

/// What a failing and a slow disk do to a listing.
class GathererFaultsTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        endFaults();
        QVERIFY(SampleFiles::makeFrames(folder.path(), "f%04d.exr", 1, Files));
        for (const char* name : {"sub", "d.1.exr", "d.2.exr"})
            QVERIFY(QDir(folder.path()).mkpath(folder.filePath(name)));
    }

    void leavingWaitsForOneCall()
    {
        // What is slow, whether names have no types, and at how many of the slow calls the folder is left.
        const std::tuple<const char*, bool, int> rows[] = {
            {"fstatat", false, 5}, {"fstatat", true, 5}, {"readdir", false, 5},
            {"readdir", true, 5},  {"open", false, 1},
        };
        for (const auto& [call, noTypes, moments] : rows) {
            endFaults();
            faults[CallDelay] = 50000;
            faults[NoTypes] = noTypes;
            faultyCall = call;
            int least = INT_MAX;
            for (int round = 0; round < 5; ++round) {
                FileManager manager;
                const QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
                faults[DelayedCalls] = 0;
                QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
                while (faults[DelayedCalls] <= round % moments)
                    QThread::msleep(1);
                const int before = faults[Calls];
                QVERIFY(!manager.getFilesFromFolder("/no/such/folder", true));
                least = std::min(least, faults[Calls] - before);
                QCoreApplication::processEvents();
                std::vector<FileInfo*> files;
                manager.buildRunningList(&files, Halvern::Base::FileHandle::AllFiles);
                QVERIFY(files.empty() && refreshed.isEmpty());
            }
            // The call under way may end, and others begin, just before the run is stopped, but hardly each
            // time.
            QVERIFY2(least == 0, call);
        }
    }

    void readsWhatItCan()
    {
        const int all = Files + 5;
        // A fault and the call that it concerns, how many names are listed, and the least and the most of
        // them that have attributes.
        const std::tuple<Fault, int, const char*, int, int, int> rows[] = {
            {MostNames, 1500, nullptr, 1499, 1499, 1499},
            {NoTypes, 1, nullptr, all, all, all},
            {CallError, EIO, "open", 0, 0, 0},
            {CallError, EIO, "fstatat", all, 0, 0},
            {CallDelay, 1000, "fstatat", all, 1, all - 1}, // and the directory goes in mid-read
        };
        for (const auto& [fault, value, call, names, least, most] : rows) {
            endFaults();
            faults[fault] = value;
            faultyCall = call;
            FileManager manager;
            const QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
            int updated = 0;
            connect(&manager, &FileManager::infoUpdated, this, [&](int, int count) { updated += count; });
            QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
            QTRY_VERIFY(fault != CallDelay || faults[DelayedCalls] > 0);
            QVERIFY(fault != CallDelay || QDir(folder.path()).removeRecursively());
            QTRY_COMPARE(refreshed.size(), 1);
            QTRY_COMPARE_WITH_TIMEOUT(updated, names, 20000);
            std::vector<FileInfo*> files;
            manager.buildRunningList(&files, Halvern::Base::FileHandle::AllFiles);
            const auto known = std::count_if(files.begin(), files.end(), [](const FileInfo* file) {
                return file->modificationTime() > 0;
            });
            QVERIFY(known >= least && known <= most);
            // Asking makes up for types that are missing, so that numbered directories are no frames.
            manager.buildRunningList(&files, Halvern::Base::FileHandle::RegisteredSequences);
            QVERIFY(least != all || files.size() == 6);
        }
    }

private:
    static constexpr int Files = 1600;
    const QTemporaryDir folder;
};

QTEST_GUILESS_MAIN(GathererFaultsTest)
#include "GathererFaultsTest.moc"
