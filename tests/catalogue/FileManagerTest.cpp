#include "catalogue/FileManager.h"
#include "catalogue/FileGatherer.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QFile>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Halvern::UI;
using Halvern::Base::FileHandle;

/// Reading real directories, on the worker thread and without it.
class FileManagerTest : public Test
{
    Q_OBJECT

private slots:
    void readsInBatches();
    void readsAtOnce();
    void asksForTheSameDirectoryOnlyByForce();
    void switchingNeverShowsTheFirstDirectory();
    void leftoverSignalsAnnounceNothing();
    void unreadableDirectoryLeavesNothing();
    void folderWithoutPermissionIsUnreadable();
    void oddNamesAndKindsAreListed();
    void numberedFoldersStayFolders();
    void destructionInMidReadIsClean();
    void callsFromWithinASynchronousReadAreRefused();
    void namesTheFilesOfADirectory_data();
    void namesTheFilesOfADirectory();
};

namespace {

std::vector<FileInfo*> allFiles(FileManager& manager)
{
    std::vector<FileInfo*> entries;
    manager.buildRunningList(&entries, FileHandle::AllFiles);
    return entries;
}

QByteArrayList names(FileManager& manager)
{
    QByteArrayList texts;
    for (const FileInfo* entry : allFiles(manager))
        texts.append(entry->fileName());
    std::sort(texts.begin(), texts.end());
    return texts;
}

bool attributesComplete(FileManager& manager)
{
    const auto files = allFiles(manager);
    return !files.empty() &&
           std::all_of(files.begin(), files.end(), [](FileInfo* f) { return f->isInfoValid(); });
}

} // namespace

void FileManagerTest::readsInBatches()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f.%04d.exr", 1, 4500));
    FileManager manager;
    QVector<std::size_t> counts;
    QVector<int> updates;
    connect(&manager, &FileManager::refreshList, this, [&] { counts.append(allFiles(manager).size()); });
    connect(&manager, &FileManager::infoUpdated, this, [&](int first, int count) {
        updates += {first, count};
    });
    QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
    QVERIFY(allFiles(manager).empty());
    QTRY_COMPARE(updates.size(), 10);
    QCOMPARE(counts, QVector<std::size_t>{4502});
    QCOMPARE(updates, (QVector<int>{0, 1000, 1000, 1000, 2000, 1000, 3000, 1000, 4000, 502}));
    QVERIFY(attributesComplete(manager));

    // The gatherer itself gives three batches, the last one not full.
    FileGatherer gatherer;
    QSignalSpy batches(&gatherer, SIGNAL(fileNameBatchReady()));
    QSignalSpy finished(&gatherer, SIGNAL(finishedGatheringFiles()));
    gatherer.readNow(folder.path().toStdString());
    QCOMPARE(batches.size(), 3);
    QCOMPARE(finished.size(), 1);
    QVector<std::size_t> sizes;
    QVERIFY(!gatherer.takeInfos());
    QVERIFY(!gatherer.takeNamesFinished());
    while (const auto batch = gatherer.takeNames())
        sizes.append(batch->size());
    QCOMPARE(sizes, (QVector<std::size_t>{2000, 2000, 502}));
    QVERIFY(gatherer.takeNamesFinished());
    QVERIFY(!gatherer.takeNamesFinished());
    QCOMPARE(gatherer.takeInfos()->size(), std::size_t(1000));
}

void FileManagerTest::readsAtOnce()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), QByteArray("sized"), 12345));
    FileManager manager;
    QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
    QSignalSpy updated(&manager, SIGNAL(infoUpdated(int, int)));
    QVERIFY(manager.getFilesFromFolderSynchronously(folder.path().toStdString(), false));
    QCOMPARE(names(manager), (QByteArrayList{".", "..", "sized"}));
    QVERIFY(attributesComplete(manager));
    QCOMPARE(refreshed.size(), 1);
    QCOMPARE(updated, (QList<QList<QVariant>>{{0, 3}}));
    for (const FileInfo* file : allFiles(manager)) {
        QCOMPARE(file->isDirectory(), file->fileName()[0] == '.');
        QVERIFY(file->modificationTime() > 0);
        if (!file->isDirectory())
            QCOMPARE(file->size(), 12345ULL);
    }
}

void FileManagerTest::asksForTheSameDirectoryOnlyByForce()
{
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    FileManager manager;
    QVERIFY(manager.getFilesFromFolderSynchronously(path, false));
    const unsigned generation = manager.generation();
    QVERIFY(SampleFiles::make(folder.path(), {"new"}));
    QVERIFY(!manager.getFilesFromFolderSynchronously(path, false));
    QCOMPARE(manager.generation(), generation);
    QCOMPARE(allFiles(manager).size(), std::size_t(2));
    QVERIFY(manager.getFilesFromFolderSynchronously(path, true));
    QCOMPARE(allFiles(manager).size(), std::size_t(3));
    QVERIFY(manager.generation() != generation);
}

void FileManagerTest::switchingNeverShowsTheFirstDirectory()
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    QVERIFY(SampleFiles::makeFrames(first.path(), "first.%05d.exr", 1, 9000));
    QVERIFY(SampleFiles::makeFrames(second.path(), "second.%05d.exr", 1, 3000));
    for (int round = 0; round < 40; ++round) {
        FileManager manager;
        int refreshes = 0;
        connect(&manager, &FileManager::refreshList, this, [&] { ++refreshes; });
        QVERIFY(manager.getFilesFromFolder(first.path().toStdString(), false));
        // Switched at another moment each time, some with signals of the first read waiting to be delivered.
        QThread::usleep(static_cast<unsigned long>(round) * 250);
        if (round % 3 == 0)
            QCoreApplication::processEvents();
        refreshes = 0;
        QVERIFY(manager.getFilesFromFolder(second.path().toStdString(), false));
        const auto check = [&] {
            for (const FileInfo* file : allFiles(manager))
                QVERIFY2(!QByteArray(file->fileName()).startsWith("first"), file->fileName());
        };
        const auto connection = connect(&manager, &FileManager::refreshList, this, check);
        QTRY_VERIFY(attributesComplete(manager) && refreshes > 0);
        check();
        QCOMPARE(allFiles(manager).size(), std::size_t(3002));
        QCOMPARE(refreshes, 1);
        disconnect(connection);
    }
}

void FileManagerTest::leftoverSignalsAnnounceNothing()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f.%04d.exr", 1, 2500));
    FileGatherer gatherer;
    QSignalSpy finished(&gatherer, SIGNAL(finishedGatheringFiles()));
    gatherer.startReading(folder.path().toStdString());
    QVERIFY(gatherer.wait(10000));
    gatherer.stop();
    QCoreApplication::processEvents();
    QCOMPARE(finished.size(), 0);

    gatherer.startReading(folder.path().toStdString());
    QVERIFY(gatherer.wait(10000));
    gatherer.stop();
    gatherer.startReading(folder.path().toStdString());
    QTRY_COMPARE(finished.size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(finished.size(), 1);
    std::size_t count = 0;
    while (const auto batch = gatherer.takeNames())
        count += batch->size();
    QCOMPARE(count, std::size_t(2502));
}

void FileManagerTest::unreadableDirectoryLeavesNothing()
{
    const QTemporaryDir folder;
    FileManager manager;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f.%04d.exr", 1, 3000));
    QSignalSpy refreshed(&manager, SIGNAL(refreshList()));
    QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
    QVERIFY(!manager.getFilesFromFolder((folder.path() + "/gone").toStdString(), true));
    QVERIFY(allFiles(manager).empty());
    QCoreApplication::processEvents();
    QCOMPARE(refreshed.size(), 0);

    // Nor does a read that had all its names, and had announced them, when it was stopped.
    QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), true));
    QThread::msleep(100);
    QVERIFY(!manager.getFilesFromFolder((folder.path() + "/gone").toStdString(), true));
    QCoreApplication::processEvents();
    QCOMPARE(refreshed.size(), 0);
    QVERIFY(allFiles(manager).empty());
    QVERIFY(!manager.getFilesFromFolder(std::string(), true));
    QVERIFY(
        manager.getFilenameList((folder.path() + "/gone").toStdString(), false, false, true, true).empty());
}

void FileManagerTest::folderWithoutPermissionIsUnreadable()
{
    if (::geteuid() == 0)
        QSKIP("root can read every folder");
    const QTemporaryDir folder;
    FileManager manager;
    QVERIFY(QFile::setPermissions(folder.path(), QFile::Permissions()));
    QVERIFY(!manager.getFilesFromFolder(folder.path().toStdString(), true));
    QVERIFY(QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void FileManagerTest::oddNamesAndKindsAreListed()
{
    const QTemporaryDir folder;
    const QByteArray root = QFile::encodeName(folder.path()) + '/';
    const QByteArrayList odd{QByteArray("latin\xe9.0001.exr"), QByteArray("latin\xe9.0002.exr"),
                             QByteArray("new\nline"), QByteArray(255, 'L'), QByteArray("%d#[*]{a,b}")};
    for (const QByteArray& name : odd)
        QVERIFY(SampleFiles::make(folder.path(), name, 3));
    QCOMPARE(::symlink("nowhere", (root + "dangling").constData()), 0);
    QCOMPARE(::symlink("loop", (root + "loop").constData()), 0);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, (root + "socket").constData(), sizeof address.sun_path);
    QCOMPARE(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(socket);

    FileManager manager;
    QVERIFY(manager.getFilesFromFolderSynchronously(folder.path().toStdString(), false));
    QByteArrayList expected = odd + QByteArrayList{".", "..", "dangling", "loop", "socket"};
    std::sort(expected.begin(), expected.end());
    QCOMPARE(names(manager), expected);
    QVERIFY(attributesComplete(manager));
    for (const FileInfo* file : allFiles(manager)) {
        const QByteArray name = file->fileName();
        QCOMPARE(file->size() == 3ULL, odd.contains(name));
        QCOMPARE(file->modificationTime() == 0, name == "dangling" || name == "loop");
    }
    std::vector<FileInfo*> rows;
    manager.buildRunningList(&rows, FileHandle::RegisteredSequences);
    const auto sequence = std::find_if(rows.begin(), rows.end(), [](FileInfo* f) { return f->isSequence(); });
    QVERIFY(sequence != rows.end());
    QCOMPARE((*sequence)->displayName(), "latin\xe9.####.exr 1-2");
    // Qt cannot remove what it cannot spell.
    for (const QByteArray& name : odd)
        ::unlink((root + name).constData());
}

void FileManagerTest::numberedFoldersStayFolders()
{
    const QTemporaryDir folder;
    for (const char* name : {"take.1.exr", "take.2.exr"})
        QVERIFY(QDir(folder.path()).mkdir(QString::fromLatin1(name)));
    FileManager manager;
    const auto list = manager.getFilenameList(folder.path().toStdString(), false, false, true, false);
    QCOMPARE(list, (std::vector<std::string>{"take.1.exr", "take.2.exr"}));
}

void FileManagerTest::destructionInMidReadIsClean()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "f.%04d.exr", 1, 4500));
    for (unsigned long round = 0; round < 30; ++round) {
        FileManager manager;
        QVERIFY(manager.getFilesFromFolder(folder.path().toStdString(), false));
        QThread::usleep(round * 300);
    }
    QCoreApplication::processEvents();
}

void FileManagerTest::callsFromWithinASynchronousReadAreRefused()
{
    const QTemporaryDir folder;
    FileManager manager;
    QVector<bool> answers;
    connect(&manager, &FileManager::refreshList, this,
            [&] { answers.append(manager.getFilesFromFolder(folder.path().toStdString(), true)); });
    QVERIFY(manager.getFilesFromFolderSynchronously(folder.path().toStdString(), true));
    QCOMPARE(answers, QVector<bool>{false});
    QCOMPARE(allFiles(manager).size(), std::size_t(2));
}

void FileManagerTest::namesTheFilesOfADirectory_data()
{
    QTest::addColumn<bool>("splitGaps");
    QTest::addColumn<bool>("longNames");
    QTest::addColumn<bool>("directories");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("short") << false << false << false << false << QStringList{"notes", "s.##.exr 1-9"};
    QTest::newRow("long") << false << true << false << false
                          << QStringList{"notes", "s.##.exr 1-9 ( 1-2 8-9 )"};
    QTest::newRow("split") << true << true << false << false
                           << QStringList{"notes", "s.##.exr 1-2", "s.##.exr 8-9"};
    QTest::newRow("folders") << false << false << true << false
                             << QStringList{"notes", "s.##.exr 1-9", "sub"};
    QTest::newRow("all") << false << false << true << true
                         << QStringList{".", "..", ".hidden", "notes", "s.##.exr 1-9", "sub"};
}

void FileManagerTest::namesTheFilesOfADirectory()
{
    QFETCH(bool, splitGaps);
    QFETCH(bool, longNames);
    QFETCH(bool, directories);
    QFETCH(bool, hidden);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("sub")));
    QVERIFY(SampleFiles::make(folder.path(),
                              {"s.01.exr", "s.02.exr", "s.08.exr", "s.09.exr", "notes", ".hidden"}));
    FileManager manager;
    QStringList list;
    for (const std::string& name :
         manager.getFilenameList(folder.path().toStdString(), splitGaps, longNames, directories, hidden))
        list.append(QString::fromStdString(name));
    QTEST(list, "expected");
}

QTEST_GUILESS_MAIN(FileManagerTest)
#include "FileManagerTest.moc"
