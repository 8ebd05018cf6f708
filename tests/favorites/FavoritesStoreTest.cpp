#include "favorites/FavoritesStore.h"
#include "favorites/Evaluator.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QApplication>
#include <QProcess>
#include <QTextStream>
#include <array>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Halvern::UI;

namespace {

/// A list with the file of a path.
struct Store : FavoritesStore
{
    explicit Store(const QString& path, const QString& product = "p") { setPreferences(path, product); }
};

constexpr int SavedFavorites = 500;
constexpr int SharedSaves = 1000;

// What this program does as a second process: it saves lists of which all names are equal.
int runAsSaver(const QByteArray& mode, const char* path)
{
    constexpr uid_t Nobody = 65534;
    if (mode == "restricted" && ::getuid() == 0 && ::setuid(Nobody) != 0)
        return 1;
    Store store(path);
    store.initialize();
    if (mode.startsWith("share")) {
        // One favourite stays, others come and go, and the last one stays.
        const std::string name = mode.right(1).toStdString();
        store.addFolder(name, "", "/" + name, "", "", 0, true);
        for (int round = 0; round < SharedSaves; ++round) {
            store.removeFolder(name + std::to_string(round - 1), 0, true);
            store.addFolder(name + std::to_string(round), "", "/", "", "", 0, true);
            store.save();
        }
        return 0;
    }
    for (int round = 0; round == 0 || mode == "forever"; ++round) {
        store.favorites()->clear();
        for (int i = 0; i < SavedFavorites; ++i)
            store.addFolder(std::to_string(round % 2), "", "/" + std::to_string(i), "", "", i + 1, true);
        store.save();
        QTextStream(stdout) << "saved\n";
    }
    return 0;
}

// The saver is killed some microseconds after it has saved once and told of what went wrong.
QString messagesOfSaver(const QString& mode, const QString& path, useconds_t life = 0)
{
    QProcess saver;
    saver.start(QCoreApplication::applicationFilePath(), {"saver", mode, path});
    const bool ready = saver.waitForReadyRead();
    ::usleep(life);
    saver.kill();
    saver.waitForFinished();
    return ready ? saver.readAllStandardError() : "The saver did not run.";
}

bool makeFile(const QString& path, mode_t mode)
{
    return SampleFiles::write(path, "add_favorite_dir x x \"\" /x/\n") &&
           ::chmod(qPrintable(path), mode) == 0;
}

// name:path for persistent ones, (name:path) for others
QString shown(FavoritesStore& store)
{
    QStringList names;
    for (const Favorite& favorite : *store.favorites())
        names.append(QString(favorite.persistent ? "%1:%2" : "(%1:%2)").arg(favorite.name, favorite.path));
    return names.join(' ');
}

QString stored(const QString& path)
{
    Store store(path, QString());
    store.load();
    return shown(store);
}

} // namespace

/// The list of favourites, its defaults, and that its file is never lost.
class FavoritesStoreTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        for (const QString& name : files())
            QVERIFY(QFile::remove(folder.filePath(name)));
    }

    void defaultsPersistIfTheyAreTo()
    {
        const QString home = "Home:" + QDir::homePath();
        Store store(file, QString());
        store.setDefaultFolders(QString(), QString(), "/w", QString(), true);
        store.initialize();
        QCOMPARE(shown(store), '(' + home + ") Current:/w");
        QCOMPARE(stored(file), QString("Current:/w"));
        store.resetNonPersistent();
        QCOMPARE(shown(store), "Current:/w " + home);
        // They are initialised once, whoever asks first.
        Store passing(folder.filePath("none"));
        passing.setDefaultFolders("/h", "/r", "/w", QString(), false);
        passing.addDefaults();
        QCOMPARE(shown(passing), QString("(Home:/h) (Root:/r) (Current:/w)"));
    }

    void replacesOnlyPersistentOnesOfTheSameType()
    {
        FavoritesStore store;
        store.initialize();
        store.favorites()->clear();
        store.addFolder("a", "", "/1", "", "", FaveGeo, true);
        store.addFolder("a", "", "/3", "", "", ~FaveGeo, true);
        store.addFolder("a", "", "/4", "", "", FaveFont, true);
        store.addFolder("a", "", "/5", "", "", FaveGeo, false);
        store.addFolder("a", "", "/6", "", "", FaveGeo, false);
        QCOMPARE(shown(store), QString("(a:/5) (a:/6) a:/3 a:/4"));
        store.removeFolder("a", 0, false);
        QCOMPARE(shown(store), QString("(a:/6) a:/3 a:/4"));
    }

    void keepsTheOrderOfRanks()
    {
        QVERIFY(makeFile(file, 0600));
        Store store(file, QString());
        for (unsigned number = 0; number < 16; ++number) {
            Favorite favorite(number / 2 % 2 == 0, number % 2 == 0);
            favorite.name = QString::number(number);
            favorite.type = std::array{0, -1, 4, -5}[number / 4];
            store.add(favorite);
        }
        store.load();
        const QString passing = "(0:) (1:) (4:) (5:) (8:) (9:) (12:) (13:)";
        QCOMPARE(shown(store), "(3:) (7:) (11:) (15:) 6: 14: 2: 10: x:/x " + passing);
    }

    void reportsErrorsAndKeepsTheFile()
    {
        const QString cannotWrite = "Can't write %1: Permission denied\n";
        // Where only the folder cannot be written, the file is.
        for (const auto& [fileMode, folderMode, messages] :
             {std::tuple(0444U, 0777U, cannotWrite), std::tuple(0666U, 0555U, QString()),
              std::tuple(0222U, 0777U, "Can't read %1: Permission denied\n" + cannotWrite)}) {
            const QTemporaryDir place;
            const QString path = place.filePath("favorites");
            QVERIFY(makeFile(path, fileMode) && ::chmod(qPrintable(place.path()), folderMode) == 0);
            QCOMPARE(messagesOfSaver("restricted", path), QString(messages).replace("%1", path));
            QVERIFY(::chmod(qPrintable(place.path()), 0777) == 0 && ::chmod(qPrintable(path), 0400) == 0);
            QCOMPARE(stored(path).count(':'), messages.isEmpty() ? SavedFavorites : 1);
            QCOMPARE(QDir(place.path()).entryList(QDir::Files | QDir::Hidden), QStringList("favorites"));
        }
        // What is no favourites file.
        const QByteArray line = "add_favorite_dir a a a /a\n";
        for (const QByteArray& text : {line + QByteArray(1 << 17, 'x'), line.repeated(1 << 20)}) {
            QVERIFY(SampleFiles::write(file, text));
            QCOMPARE(messagesOfSaver("plain", file),
                     QString("Can't read %1: File too large\nCan't write %1: File too large\n").arg(file));
            QVERIFY(QFile(file).size() == text.size() && files() == QStringList("favorites"));
        }
    }

    void fileIsWholeWheneverTheSaverDies()
    {
        for (useconds_t life = 0; life < 30000; life += 1777) {
            QCOMPARE(messagesOfSaver("forever", file, life), QString());
            const QString saved = stored(file);
            QCOMPARE(saved.count(':'), SavedFavorites);
            QVERIFY(saved.contains("0:") != saved.contains("1:"));
        }
    }

    void twoProcessesShareAFile()
    {
        QVERIFY(makeFile(file, 0600));
        QProcess savers[2];
        for (int i = 0; i < 2; ++i)
            savers[i].start(QCoreApplication::applicationFilePath(),
                            {"saver", i == 0 ? "share A" : "share B", file});
        for (QProcess& saver : savers) {
            QVERIFY(saver.waitForFinished(60000) && saver.exitCode() == 0);
            QCOMPARE(saver.readAllStandardError(), QByteArray());
        }
        QStringList names = stored(file).split(' ');
        names.sort();
        QCOMPARE(names.join(' '), QString("A999:/ A:/A B999:/ B:/B x:/x"));
    }

    void joinsWhatOthersChanged()
    {
        Store mine(file);
        mine.initialize(); // when there is no file
        Store theirs(file);
        theirs.initialize(); // when it holds nothing
        for (Store* store : {&theirs, &mine, &theirs, &mine}) {
            const int type = int(store->favorites()->size());
            store->addFolder(store == &mine ? "m" : "t", "", "/", "", "", type, true);
            store->save();
        }
        QCOMPARE(stored(file), QString("t:/ m:/ t:/ m:/"));
        // A file that is gone or emptied, and a list that is not the file's, are no changes of others.
        for (const bool isGone : {true, false}) {
            QVERIFY(isGone ? QFile::remove(file) : QFile::resize(file, 0));
            mine.save();
            QCOMPARE(stored(file), QString("m:/ m:/"));
        }
        Store fresh(folder.filePath("none"));
        fresh.addFolder("n", "", "/", "", "", 0, true);
        fresh.setPreferences(file, "p");
        fresh.save();
        QCOMPARE(stored(file), QString("n:/"));
    }

    void keepsPermissionsAndAccessList()
    {
        const QString link = folder.filePath("link");
        QVERIFY(makeFile(file, 0600) && QFile::link("favorites", link));
        // Version 2; the owner, user 7, the group, the mask and others, each with its rights.
        const QByteArray acl =
            QByteArray::fromHex("02000000 01000600ffffffff 0200040007000000 04000000ffffffff "
                                "10000400ffffffff 20000000ffffffff");
        const bool hasLists = ::setxattr(qPrintable(file), "system.posix_acl_access", acl.constData(),
                                         size_t(acl.size()), 0) == 0;
        // Another process writes through a link.
        QCOMPARE(messagesOfSaver("plain", link), QString());
        char kept[256] = "";
        const ssize_t size = ::getxattr(qPrintable(file), "system.posix_acl_access", kept, sizeof kept);
        QCOMPARE(QByteArray(kept, size > 0 ? int(size) : 0), hasLists ? acl : QByteArray());
        QVERIFY(stored(file).startsWith("0:/0 0:/1 ") && QFileInfo(link).isSymLink());
        QVERIFY(!QFile::permissions(file).testFlag(QFile::ReadOther));
    }

    void evaluatorMaySaveWhileItIsAsked()
    {
        QVERIFY(makeFile(file, 0600));
        Store store(file);
        store.setEvaluator(new Evaluator([&store](const Favorite& favorite) {
            store.save();
            return favorite.path;
        }));
        store.initialize();
        QCOMPARE(stored(file), QString("x:/x"));
    }

    void removesWhatWasLeft()
    {
        const mode_t mode = ::getuid() == 0 ? 0400 : 0600; // others may not write what has no right to write
        const QString left = folder.filePath(".favorites.new");
        for (const int kind : {0, 1, 2}) {
            QVERIFY(makeFile(file, mode) && (kind == 0   ? makeFile(left, 0)
                                             : kind == 1 ? ::mkfifo(qPrintable(left), 0600) == 0
                                                         : QFile::link("/no/such/file", left)));
            QCOMPARE(messagesOfSaver("plain", file), QString());
            QVERIFY(stored(file).startsWith("0:/0") && files() == QStringList("favorites"));
            QCOMPARE(QFile::permissions(file).testFlag(QFile::WriteOwner), mode == 0600);
            QVERIFY(QFile::remove(file));
        }
    }

private:
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder;
    QString file = folder.filePath("favorites");
};

int main(int argc, char** argv)
{
    if (argc == 4 && QByteArray(argv[1]) == "saver")
        return runAsSaver(argv[2], argv[3]);
    const QApplication application(argc, argv);
    FavoritesStoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "FavoritesStoreTest.moc"
