#include "base/SlowCalls.h"
#include "catalogue/Entries.h"
#include "catalogue/NameOrder.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QDeadlineTimer>
#include <atomic>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

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
                // With "." and "..".
                right += read && entries(manager, FileHandle::RegisteredSequences).size() == 3;
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(right.load(), 4);
    }

    // Each of the host's slots takes more than a turn's share, so that all batches wait by the second turn.
    void readsInBatches()
    {
        FileManager manager;
        QVector<std::size_t> counts;
        connect(&manager, &FileManager::refreshList, this, [&] {
            counts.append(entries(manager).size());
            QThread::msleep(20);
        });
        connect(&manager, &FileManager::infoUpdated, this, [] { QThread::msleep(20); });
        const QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));
        QVERIFY(manager.getFilesFromFolder(m_path, false));
        int most = 0;
        for (QDeadlineTimer deadline(10000); updated.size() < 3 && !deadline.hasExpired();) {
            const auto before = updated.size();
            QCoreApplication::processEvents();
            most = std::max(most, int(updated.size() - before));
        }
        QCOMPARE(updated, (QList<QList<QVariant>>{{0, 1000}, {1000, 1000}, {2000, 502}}));
        QCOMPARE(most, 1);
        // A second read makes no entries.
        const std::vector<FileInfo*> first = entries(manager);
        QVERIFY(manager.getFilesFromFolder(m_path, true));
        QTRY_COMPARE(counts, (QVector<std::size_t>{2502, 2502}));
        QVERIFY(entries(manager) == first);
        // Forgetting the entries ends the read.
        QVERIFY(manager.getFilesFromFolder(m_path, true));
        manager.cleanData();
        QCoreApplication::processEvents();
        QVERIFY(entries(manager).empty());

        // From within a read that blocks no other begins.
        bool begins = true;
        connect(&manager, &FileManager::refreshList, this,
                [&] { begins = manager.getFilesFromFolder(m_path, true); });
        QVERIFY(manager.getFilesFromFolderSynchronously(m_path, true));
        QVERIFY(!begins && entries(manager) == first);
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
        const auto before = entries(manager);
        const auto held = manager.entryStorage();
        QVERIFY(manager.getFilesFromFolderSynchronously(path().toStdString(), true));
        Halvern::Base::waitForHelpers();
        QCOMPARE(entries(manager).size(), std::size_t(2));
        for (std::size_t i = 2; i < before.size(); ++i)
            QCOMPARE(before[i]->fileName(), "n" + QByteArray::number(int(i)));
    }

    void switchingNeverShowsTheFirstDirectory()
    {
        const SampleFolder second("second.%04d.exr", 1, 2100);
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
                QVERIFY(order.size() == 2102 && manager.takeNameOrder().size() == 0);
                QCOMPARE(order.name(2101), "second.2100.exr");
                for (const FileInfo* file : entries(manager))
                    QVERIFY2(*file->fileName() != 'f', file->fileName());
            });
            QTRY_COMPARE(updated, (QList<QList<QVariant>>{{0, 1000}, {1000, 1000}, {2000, 102}}));
            QVERIFY(entries(manager).size() == 2102 && refreshes == 1);
        }
    }

    // From within either signal, and then they destroy the manager.
    void listenersMayReadAnotherDirectory()
    {
        const SampleFolder other("o.%04d.exr", 1, 2100);
        for (const bool byNames : {true, false}) {
            auto* manager = new FileManager;
            int reads = 0;
            const auto readNext = [&] {
                for (const FileInfo* file : entries(*manager))
                    QVERIFY(*file->fileName() == (reads % 2 == 0 ? 'f' : 'o') || *file->fileName() == '.');
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

    void forkedProcessesDoNotWait()
    {
        int alarms = 0;
        for (int round = 0; round < 8; ++round) {
            auto* manager = new FileManager;
            QVERIFY(manager->getFilesFromFolder(m_path, false));
            QThread::usleep(static_cast<unsigned long>(round) * 300);
            const pid_t child = ::fork();
            if (child == 0) {
                ::alarm(10);
                const bool right =
                    round % 2 != 0 || (manager->getFilesFromFolderSynchronously(m_path, true) &&
                                       entries(*manager).size() == 2502);
                delete manager;
#ifdef __SANITIZE_ADDRESS__
                // To a leak checker what the stack of the worker held is lost.
                ::_exit(right ? 0 : 1);
#endif
                std::exit(right ? 0 : 1);
            }
            int status = -1;
            QVERIFY(::waitpid(child, &status, 0) == child);
            delete manager;
            // Seldom the worker holds a lock of Qt's events at the fork, for which the child waits.
            if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM && ++alarms <= 2)
                --round;
            else
                QCOMPARE(status, 0);
        }
    }

    void namesTheFilesOfADirectory()
    {
        const SampleFolder folder{"take.1.exr/", "take.2.exr/", "s.01.exr", "s.02.exr",
                                  "s.08.exr",    "notes",       ".hidden"};
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
