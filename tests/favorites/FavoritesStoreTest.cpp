#include "favorites/FavoritesStore.h"
#include "support/Test.h"

#include <QApplication>
#include <QProcess>
#include <QTextStream>
#include <array>
#include <sys/stat.h>
#include <unistd.h>

using namespace Halvern::UI;

namespace {

constexpr int SavedFavorites = 500;

// What this program does as a second process: it saves lists of which all names are equal.
int runAsSaver(const QByteArray& mode, const char* path)
{
    constexpr uid_t Nobody = 65534;
    if (mode == "restricted" && ::getuid() == 0 && ::setuid(Nobody) != 0)
        return 1;
    FavoritesStore store;
    store.setPreferences(path, "p");
    store.initialize();
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
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write("add_favorite_dir x x \"\" /x/\n") > 0 &&
           ::fchmod(file.handle(), mode) == 0;
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
    FavoritesStore store;
    store.setPreferences(path, QString());
    store.load();
    return shown(store);
}

} // namespace

/// The list of favourites, its defaults, and that its file is never lost.
class FavoritesStoreTest : public Test
{
    Q_OBJECT

private slots:
    void fallbackPersistsAfterReset()
    {
        const QString home = "Home:" + QDir::homePath();
        FavoritesStore store;
        store.setPreferences(file, QString());
        store.setDefaultFolders(QString(), QString(), "/w", QString(), true);
        store.initialize();
        QCOMPARE(shown(store), '(' + home + ") Current:/w");
        QCOMPARE(stored(file), QString("Current:/w"));
        store.resetNonPersistent();
        QCOMPARE(shown(store), "Current:/w " + home);
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

    void mayAnswerWithTheWorkingDirectory()
    {
        struct Echo : FavoriteExpressionEvaluator
        {
            QString evaluate(const Favorite& favorite) override { return favorite.name; }
        };
        FavoritesStore store;
        store.setEvaluator(new Echo);
        Favorite favorite;
        favorite.name = ".";
        store.resolve(favorite);
        QVERIFY(favorite.hasFolder());
    }

    void keepsTheOrderOfRanks()
    {
        QVERIFY(makeFile(file, 0600));
        FavoritesStore store;
        store.setPreferences(file, QString());
        for (unsigned number = 0; number < 16; ++number) {
            Favorite favorite(number / 2 % 2 == 0, number % 2 == 0);
            favorite.name = QString::number(number);
            favorite.type = std::array{0, -1, 4, -5}[number / 4];
            store.add(favorite);
        }
        store.load();
        QCOMPARE(
            shown(store),
            QString("(3:) (7:) (11:) (15:) 6: 14: 2: 10: x:/x (0:) (1:) (4:) (5:) (8:) (9:) (12:) (13:)"));
    }

    void oneProcessReadsThroughALinkWhatAnotherWrote()
    {
        const QString link = folder.filePath("link");
        QVERIFY(makeFile(file, 0640) && QFile::link("favorites", link));
        QCOMPARE(messagesOfSaver("plain", link), QString());
        QVERIFY(QFileInfo(link).isSymLink() && !QFile(file).permissions().testFlag(QFile::ReadOther));
        QVERIFY(stored(file).startsWith("0:/0 0:/1 "));
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
    }

    void fileIsWholeWheneverTheSaverDies()
    {
        for (useconds_t life = 0; life < 30000; life += 777) {
            QCOMPARE(messagesOfSaver("forever", file, life), QString());
            const QString saved = stored(file);
            QCOMPARE(saved.count(':'), SavedFavorites);
            QVERIFY(saved.contains("0:") != saved.contains("1:"));
        }
    }

private:
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
