#include "catalogue/FileManager.h"
#include "base/SlowCalls.h"
#include "catalogue/FileGatherer.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "catalogue/NameOrder.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QDeadlineTimer>
#include <QFile>
#include <atomic>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

namespace {

std::vector<FileInfo*> allFiles(FileManager& manager)
{
    std::vector<FileInfo*> entries;
    manager.buildRunningList(&entries, FileHandle::AllFiles);
    return entries;
}

class PassThrough : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override { return files; }
};

} // namespace

/// Reading real directories, on the worker thread and without it.
class FileManagerTest : public Test
{
    Q_OBJECT

public:
    FileManagerTest() { SampleFiles::makeFrames(m_folder.path(), "f.%04d.exr", 1, 2500); }

private slots:
    // The first test: only the first managers of a process register the built-in extensions.
    void severalThreadsMayBeginAtOnce()
    {
        std::atomic<int> right{0};
        std::vector<std::thread> threads(4);
        for (std::thread& thread : threads) {
            thread = std::thread([&] {
                FileManager manager;
                FileManager::addSequenceFileExtension("own");
                const bool read = manager.getFilesFromFolderSynchronously(m_path, true);
                std::vector<FileInfo*> rows;
                manager.buildRunningList(&rows, FileHandle::RegisteredSequences);
                right += read && rows.size() == 3; // with "." and ".."
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(right.load(), 4);
    }

    void readsInBatches()
    {
        FileManager manager;
        QVector<std::size_t> counts;
        connect(&manager, &FileManager::refreshList, this, [&] { counts.append(allFiles(manager).size()); });
        QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));
        QVERIFY(manager.getFilesFromFolder(m_path, false));
        QTRY_COMPARE(updated, (QList<QList<QVariant>>{{0, 1000}, {1000, 1000}, {2000, 502}}));
        // A second read makes no entries.
        const std::vector<FileInfo*> first = allFiles(manager);
        QVERIFY(manager.getFilesFromFolder(m_path, true));
        QTRY_COMPARE(counts, (QVector<std::size_t>{2502, 2502}));
        QVERIFY(allFiles(manager) == first);
        // Forgetting the entries ends the read.
        QVERIFY(manager.getFilesFromFolder(m_path, true));
        manager.cleanData();
        QTest::qWait(100);
        QVERIFY(allFiles(manager).empty());

        // Attributes never arrive before their names.
        FileGatherer gatherer;
        gatherer.readNow(m_path);
        QVERIFY(!gatherer.takeInfos() && !gatherer.takeNamesFinished());
        QCOMPARE(gatherer.takeNames()->size(), std::size_t(2000));
        QCOMPARE(gatherer.takeNames()->size(), std::size_t(502));
        QVERIFY(!gatherer.takeNames() && gatherer.takeNamesFinished() && !gatherer.takeNamesFinished());
        QCOMPARE(gatherer.takeInfos()->size(), std::size_t(1000));
    }

    // Each of the host's slots takes more than a turn's share, so that all batches wait by the second turn.
    void busyHostsGetTheirTurns()
    {
        FileManager manager;
        QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));
        connect(&manager, &FileManager::refreshList, this, [] { QThread::msleep(20); });
        connect(&manager, &FileManager::infoUpdated, this, [] { QThread::msleep(20); });
        QVERIFY(manager.getFilesFromFolder(m_path, false));
        int most = 0;
        for (QDeadlineTimer deadline(10000); updated.size() < 3 && !deadline.hasExpired();) {
            const auto before = updated.size();
            QCoreApplication::processEvents();
            most = std::max(most, int(updated.size() - before));
        }
        QCOMPARE(updated, (QList<QList<QVariant>>{{0, 1000}, {1000, 1000}, {2000, 502}}));
        QCOMPARE(most, 1);
    }

    // The pages of places that the next read does not need are given back only when nobody holds them.
    void heldEntriesStayReadable()
    {
        std::list<std::string> names;
        for (int i = 0; i < 10000; ++i)
            names.push_back("n" + std::to_string(i));
        FileManager manager;
        manager.setFiles(names);
        manager.insertFiles();
        const auto entries = allFiles(manager);
        const auto held = manager.entryStorage();
        const QTemporaryDir empty;
        QVERIFY(manager.getFilesFromFolderSynchronously(empty.path().toStdString(), true));
        Halvern::Base::waitForHelpers();
        QCOMPARE(allFiles(manager).size(), std::size_t(2));
        for (std::size_t i = 2; i < entries.size(); ++i)
            QCOMPARE(entries[i]->fileName(), "n" + QByteArray::number(int(i)));
    }

    void readsAgainOnlyByForce()
    {
        const QTemporaryDir folder;
        const std::string path = folder.path().toStdString();
        FileManager manager;
        QVERIFY(manager.getFilesFromFolderSynchronously(path, false));
        QVERIFY(SampleFiles::make(folder.path(), {"new"}));
        QVERIFY(!manager.getFilesFromFolderSynchronously(path, false));
        QCOMPARE(allFiles(manager).size(), std::size_t(2));

        // A call from within a read is refused.
        QVector<bool> answers;
        connect(&manager, &FileManager::refreshList, this,
                [&] { answers.append(manager.getFilesFromFolder(path, true)); });
        QVERIFY(manager.getFilesFromFolderSynchronously(path, true));
        QCOMPARE(answers, QVector<bool>{false});
        QCOMPARE(allFiles(manager).size(), std::size_t(3));
    }

    void switchingNeverShowsTheFirstDirectory()
    {
        const QTemporaryDir second;
        QVERIFY(SampleFiles::makeFrames(second.path(), "second.%04d.exr", 1, 2100));
        for (unsigned long round = 0; round < 16; ++round) {
            FileManager manager;
            manager.setNamesOrdered(true);
            QVERIFY(manager.getFilesFromFolder(m_path, false));
            // Switched at another moment each time, some with signals of the first read waiting to be
            // delivered.
            QThread::usleep(round * 400);
            if (round % 3 == 0)
                QCoreApplication::processEvents();
            QVERIFY(manager.getFilesFromFolder(second.path().toStdString(), false));
            QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));
            int refreshes = 0;
            connect(&manager, &FileManager::refreshList, this, [&] {
                ++refreshes;
                // Its names were ordered while they arrived.
                const NameOrder order = manager.takeNameOrder();
                QCOMPARE(order.size(), std::size_t(2102));
                QCOMPARE(order.name(2101), "second.2100.exr");
                QCOMPARE(manager.takeNameOrder().size(), std::size_t(0));
                for (const FileInfo* file : allFiles(manager))
                    QVERIFY2(*file->fileName() != 'f', file->fileName());
            });
            QTRY_COMPARE(updated, (QList<QList<QVariant>>{{0, 1000}, {1000, 1000}, {2000, 102}}));
            QCOMPARE(allFiles(manager).size(), std::size_t(2102));
            QCOMPARE(refreshes, 1);
        }
    }

    // From within either signal, and then they destroy the manager.
    void listenersMayReadAnotherDirectory()
    {
        const QTemporaryDir other;
        QVERIFY(SampleFiles::makeFrames(other.path(), "other.%04d.exr", 1, 2100));
        for (const bool byNames : {true, false}) {
            auto* manager = new FileManager;
            int reads = 0;
            const auto readNext = [&] {
                for (const FileInfo* file : allFiles(*manager))
                    QVERIFY(file->fileName()[0] == (reads % 2 == 0 ? 'f' : 'o') ||
                            file->fileName()[0] == '.');
                if (++reads == 6)
                    delete manager;
                else
                    manager->getFilesFromFolder(reads % 2 == 0 ? m_path : other.path().toStdString(), false);
            };
            if (byNames)
                connect(manager, &FileManager::refreshList, this, readNext);
            else
                connect(manager, &FileManager::infoUpdated, this, readNext);
            readNext();
            QTRY_COMPARE(reads, 6);
        }
    }

    void leftoverSignalsAnnounceNothing()
    {
        FileGatherer gatherer;
        QSignalSpy finished(&gatherer, SIGNAL(finishedGatheringFiles()));
        for (const bool delivered : {true, false}) {
            gatherer.startReading(m_path);
            QVERIFY(gatherer.wait(10000));
            gatherer.stop();
            if (delivered)
                QCoreApplication::processEvents();
            QCOMPARE(finished.size(), 0);
        }
        gatherer.startReading(m_path);
        QTRY_COMPARE(finished.size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(gatherer.takeNames()->size() + gatherer.takeNames()->size(), std::size_t(2502));
    }

    void forkedProcessesDoNotWait()
    {
        for (int round = 0; round < 8; ++round) {
            auto* manager = new FileManager;
            QVERIFY(manager->getFilesFromFolder(m_path, false));
            QThread::usleep(static_cast<unsigned long>(round) * 300);
            const pid_t child = ::fork();
            if (child == 0) {
                ::alarm(10);
                bool right = true;
                if (round % 2 == 0)
                    right = manager->getFilesFromFolderSynchronously(m_path, true) &&
                            allFiles(*manager).size() == 2502;
                delete manager;
#ifdef __SANITIZE_ADDRESS__
                // To a leak checker what the stack of the worker held is lost.
                ::_exit(right ? 0 : 1);
#endif
                std::exit(right ? 0 : 1);
            }
            int status = -1;
            QCOMPARE(::waitpid(child, &status, 0), child);
            QCOMPARE(status, 0);
            delete manager;
        }
    }

    void oddNamesAndKindsAreListed()
    {
        const QTemporaryDir folder;
        const QByteArray root = QFile::encodeName(folder.path()) + '/';
        const QByteArrayList odd{QByteArray(255, 'e'), "latin\xe9.0001.exr", "latin\xe9.0002.exr",
                                 "new\nline", "s%d#[*]{a,b}"};
        for (const QByteArray& name : odd)
            QVERIFY(SampleFiles::make(folder.path(), name, 3));
        QCOMPARE(::symlink("nowhere", (root + "dangling").constData()), 0);

        FileManager manager;
        QVERIFY(manager.getFilesFromFolderSynchronously(folder.path().toStdString(), false));
        QByteArrayList names;
        for (const FileInfo* file : allFiles(manager)) {
            const QByteArray name = file->fileName();
            QCOMPARE(file->modificationTime() == 0, name == "dangling");
            if (!file->isDirectory())
                names.append(name);
        }
        std::sort(names.begin(), names.end());
        QCOMPARE(names, QByteArrayList{"dangling"} + odd);
        // Qt cannot remove what it cannot spell.
        for (const QByteArray& name : odd)
            ::unlink((root + name).constData());
    }

    void evaluatorBuildsSequencesAndOutlivesItsManager()
    {
        PassThrough evaluator;
        {
            FileManager manager;
            manager.setFiles({"a.1.exr", "a.2.exr", "a.3.exr"});
            manager.insertFiles();
            evaluator.setManager(&manager);
            const auto files = allFiles(manager);
            // Neither a frame without a file nor a null file does harm.
            FileInfo* built = evaluator.buildFileSequence("shot A", {1, 2, 3, 4}, files);
            FileInfo* withNull = evaluator.buildFileSequence("gap", {1, 2}, {files[0], nullptr});
            const std::vector<FileInfoWrapper> records(3, {7, false, 70});
            manager.updateInfo(&records, true);
            QCOMPARE(built->size(), 21ULL);
            QCOMPARE(withNull->size(), 7ULL);
        }
        FileInfo file("a.1.exr", false);
        file.setAdditionalInfo({5, false, 6});
        QCOMPARE(PassThrough(evaluator).buildFileSequence("s", {1}, {&file})->size(), 5ULL);
    }

    void namesTheFilesOfADirectory()
    {
        const QTemporaryDir folder;
        for (const char* name : {"take.1.exr", "take.2.exr"})
            QVERIFY(QDir(folder.path()).mkdir(QString::fromLatin1(name)));
        QVERIFY(SampleFiles::make(folder.path(), {"s.01.exr", "s.02.exr", "s.08.exr", "notes", ".hidden"}));
        FileManager manager;
        // Numbered folders stay folders.
        QCOMPARE(manager.getFilenameList(folder.path().toStdString(), false, true, true, false),
                 (std::vector<std::string>{"notes", "s.##.exr 1-8 ( 1-2 8 )", "take.1.exr", "take.2.exr"}));
    }

private:
    const QTemporaryDir m_folder; // more than a batch of names and two of attributes
    const std::string m_path = m_folder.path().toStdString();
};

QTEST_GUILESS_MAIN(FileManagerTest)
#include "FileManagerTest.moc"
