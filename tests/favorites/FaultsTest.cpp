#include "support/Faults.h"
#include "catalogue/FileManager.h"
#include "favorites/FavoritesStore.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

using namespace Halvern::UI;

/// What a failing and a slow disk do to a listing and to what is kept.
class FaultsTest : public Test
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

    void leavingWaitsForOneQuestion()
    {
        faults[QuestionDelay] = 50000;
        for (int round = 0; round < 5; ++round) {
            FileManager manager;
            const QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
            faults[Questions] = 0;
            QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
            while (faults[Questions] <= round)
                QThread::msleep(1);
            const int before = faults[Questions];
            QVERIFY(!manager.getFilesFromFolder("/no/such/folder", true));
            QVERIFY(faults[Questions] <= before + 1);
            QCoreApplication::processEvents();
            std::vector<FileInfo*> files;
            manager.buildRunningList(&files, Halvern::Base::FileHandle::AllFiles);
            QVERIFY(files.empty() && refreshed.isEmpty());
        }
    }

    // What is kept is as it was, or whole and new where the call is not needed for it.
    void losesNothingThatWasKept()
    {
        const QTemporaryDir place;
        const QString files[] = {place.filePath("favorites"), AppSettings().fileName()};
        FavoritesStore store;
        store.setPreferences(files[0], "p");
        store.initialize();
        const auto keep = [&](const char* name) {
            store.favorites()->clear();
            store.addFolder(name, "", "/f", "", "", 0, true);
            store.save();
            AppSettings().setValue("key", name);
            endFaults();
            QByteArrayList kept;
            for (const QString& path : files) {
                QFile file(path);
                kept += file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("missing");
                kept += QFileInfo(path).dir().entryList(QDir::Files | QDir::Hidden).join(' ').toUtf8();
            }
            return kept;
        };
        const QByteArrayList changed = keep("new");
        for (const QByteArray call : {"open", "open64", "write", "fsync", "rename"}) {
            // Qt, which writes the settings, opens files in its own way.
            const bool favoritesStay = call != "open64";
            const bool settingsStay = call != "open" && call != "fsync";
            for (const int error : {EIO, ENOSPC, EACCES}) {
                const QByteArrayList before = keep("old");
                faults[CallError] = error;
                failingCall = call.constData();
                QCOMPARE(keep("new"), (favoritesStay ? before : changed).mid(0, 2) +
                                          (settingsStay ? before : changed).mid(2));
            }
        }
    }

    void readsWhatItCan()
    {
        const int all = Files + 5;
        // A fault, how many names are listed, and the least and the most of them that have attributes.
        const std::tuple<Fault, int, int, int, int> rows[] = {
            {MostNames, 1500, 1499, 1499, 1499},
            {NoTypes, 1, all, all, all},
            {QuestionError, EIO, all, 0, 0},
            {QuestionDelay, 1000, all, 1, all - 1}, // and the directory goes in mid-read
        };
        for (const auto& [fault, value, names, least, most] : rows) {
            endFaults();
            faults[fault] = value;
            FileManager manager;
            int updated = 0;
            connect(&manager, &FileManager::infoUpdated, this, [&](int, int count) { updated += count; });
            QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
            QTRY_VERIFY(faults[Questions] > 0);
            if (fault == QuestionDelay)
                QVERIFY(QDir(folder.path()).removeRecursively());
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

QTEST_MAIN(FaultsTest)
#include "FaultsTest.moc"
