#include "favorites/FavoritesStore.h"
#include "support/Test.h"

#include <QApplication>
#include <QProcess>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Halvern::UI;

namespace {

constexpr int SavedFavorites = 500;
constexpr int FileSizeLimit = 4096;
constexpr uid_t Nobody = 65534;

// A list that tells whether all of it was written: all names are equal.
void fill(FavoritesStore& store, const std::string& name)
{
    store.addFolder("first", "", "/", "", "", FaveAll, false);
    *store.favorites() = {};
    for (int i = 0; i < SavedFavorites; ++i)
        store.addFolder(name, "", "/shots/" + std::to_string(i), "", "", i + 1, true);
}

// What this program does as a second process.
int runAsSaver(const std::string& mode, const char* path)
{
    if (mode == "unprivileged" && ::getuid() == 0 && ::setuid(Nobody) != 0)
        return 1;
    if (mode == "limited") {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = {FileSizeLimit, FileSizeLimit};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 1;
    }
    FavoritesStore store;
    store.setPreferences(QString::fromLocal8Bit(path), QStringLiteral("p"));
    fill(store, "even");
    store.save();
    for (int round = 0; mode == "forever"; ++round) {
        fill(store, round % 2 == 0 ? "odd" : "even");
        store.save();
        if (round == 0)
            std::puts("ready");
        std::fflush(stdout);
    }
    return 0;
}

void startSaver(QProcess& process, const QString& mode, const QString& path)
{
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("saver"), mode, path});
}

QString runSaver(const QString& mode, const QString& path)
{
    QProcess process;
    startSaver(process, mode, path);
    process.waitForFinished();
    return process.exitCode() == 0 ? QString::fromLocal8Bit(process.readAllStandardError())
                                   : QStringLiteral("the saver failed");
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

bool write(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(text) == text.size();
}

bool setMode(const QString& path, mode_t mode)
{
    return ::chmod(QFile::encodeName(path).constData(), mode) == 0;
}

// name:path for persistent ones, (name:path) for others
QStringList shown(FavoritesStore& store)
{
    QStringList names;
    for (const Favorite& favorite : *store.favorites()) {
        const QString name = favorite.name + ':' + favorite.path;
        names.append(favorite.persistent ? name : '(' + name + ')');
    }
    return names;
}

class Expander : public FavoriteExpressionEvaluator
{
public:
    explicit Expander(int* living)
        : count(living)
    {
        ++*count;
    }
    ~Expander() override { --*count; }
    QString evaluate(const Favorite& favorite) override
    {
        return QString(favorite.path).replace(QLatin1String("$SHOW"), QLatin1String("/shows/x"));
    }

private:
    int* count;
};

} // namespace

/// The list of favourites, its defaults, and that its file is never lost.
class FavoritesStoreTest : public Test
{
    Q_OBJECT

private slots:
    void init() { file = folder.filePath(QStringLiteral("favorites")); }
    void startsWithDefaults();
    void fallbackPersistsAfterReset();
    void addsReplacesAndRemoves();
    void keepsTheOrderOfRanks();
    void resolves();
    void oneProcessReadsWhatAnotherWrote();
    void reportsErrorsAndKeepsTheFile();
    void keepsLinksAndPermissions();
    void fileIsWholeWheneverTheSaverDies();

private:
    QTemporaryDir folder;
    QString file;
};

void FavoritesStoreTest::startsWithDefaults()
{
    const QString fallbacks = "(Home:" + QDir::homePath() + ") (Current:" + QDir::currentPath() + ')';
    struct Row
    {
        QString names;
        int inFile;
        bool given, persist, stored;
    };
    const Row rows[] = {{fallbacks, 0, false, true, false},
                        {"(Home:/h) (Root:/r) (Current:/w) (Comp:/p)", 0, true, false, false},
                        {"Home:/h Root:/r Current:/w Comp:/p", 4, true, true, false},
                        {fallbacks + " x:/x", 1, false, false, true},
                        {"x:/x", 1, true, true, true}};
    for (const Row& row : rows) {
        QFile::remove(file);
        QVERIFY(!row.stored || write(file, "add_favorite_dir x x \"\" /x/\n"));
        FavoritesStore store;
        QVERIFY(!store.favorites() && !store.evaluator());
        store.setPreferences(file, row.given ? QStringLiteral("Comp") : QString());
        const auto path = [&](const char* text) { return row.given ? QString(text) : QString(); };
        store.setDefaultFolders(path("/h"), path("/r"), path("/w"), path("/p"), row.persist);
        store.initialize();
        store.initialize();
        QCOMPARE(shown(store).join(' '), row.names);
        QCOMPARE(contents(file).count("add_favorite_dir"), row.inFile);
        store.addDefaults();
        QCOMPARE(shown(store).filter("Home:").size(), row.persist && row.given ? 1 : 2);
    }
}

void FavoritesStoreTest::fallbackPersistsAfterReset()
{
    QFile::remove(file);
    FavoritesStore store;
    store.setPreferences(file, QString());
    store.setDefaultFolders(QString(), QString(), QStringLiteral("/w"), QString(), true);
    store.reset();
    QCOMPARE(shown(store), (QStringList{"(Home:" + QDir::homePath() + ')', "Current:/w"}));
    store.resetNonPersistent();
    QCOMPARE(shown(store), (QStringList{"Current:/w", "Home:" + QDir::homePath()}));
    store.reset();
    QCOMPARE(shown(store), QStringList("Current:/w"));
}

void FavoritesStoreTest::addsReplacesAndRemoves()
{
    FavoritesStore store;
    store.add(Favorite(false, true));
    store.favorites()->clear();
    store.setPreferences(folder.filePath(QStringLiteral("none/favorites")), QString());
    store.initialize();
    store.favorites()->clear();
    store.addFolder("a", "", "/1", "", "", FaveGeo, true);
    store.addFolder("b", "", "/2", "", "", 0, true);
    store.addFolder("a", "k", "/3", "i", "t", ~FaveGeo, true);
    store.addFolder("a", "", "/4", "", "", FaveFont, true);
    store.addFolder("a", "", "/5", "", "", FaveGeo, false);
    store.addFolder("a", "", "/6", "", "", FaveGeo, false);
    QCOMPARE(shown(store), (QStringList{"(a:/5)", "(a:/6)", "a:/3", "b:/2", "a:/4"}));
    const Favorite& replaced = store.favorites()->at(2);
    QCOMPARE(replaced.keyText + replaced.iconPath + replaced.tooltip, QStringLiteral("kit"));
    QCOMPARE(replaced.type, static_cast<int>(FaveGeo));
    QCOMPARE(replaced.requestedFlags, ~FaveGeo);
    QVERIFY(!replaced.hasFolder() && replaced.icon.isNull());

    store.removeFolder("a", FaveImage, true);
    store.removeFolder("A", 0, true);
    store.removeFolder("b", 0, false);
    QCOMPARE(shown(store).size(), 5);
    store.removeFolder("a", FaveFont, true);
    store.removeFolder("a", 0, false);
    store.removeFolder("a", 0, true);
    QCOMPARE(shown(store), (QStringList{"(a:/6)", "b:/2"}));
}

void FavoritesStoreTest::keepsTheOrderOfRanks()
{
    FavoritesStore store;
    int number = 0;
    const auto add = [&](bool drive, bool persistent, int type) {
        Favorite favorite(drive, persistent);
        favorite.name = QString::number(number++);
        favorite.type = type;
        store.add(favorite);
    };
    for (int type : {0, -1, 4, -5})
        for (bool drive : {true, false})
            for (bool persistent : {true, false})
                add(drive, persistent, type);
    QVERIFY(write(file, "add_favorite_dir p p \"\" /\nadd_favorite_dir p p \"\" /\n"));
    store.setPreferences(file, QString());
    store.load();
    QStringList order;
    for (const Favorite& favorite : *store.favorites())
        order += favorite.name;
    QCOMPARE(order.join(' '), QStringLiteral("3 7 11 15 6 14 2 10 p p 0 1 4 5 8 9 12 13"));
}

void FavoritesStoreTest::resolves()
{
    int living = 0;
    {
        FavoritesStore store;
        store.setEvaluator(new Expander(&living));
        store.setEvaluator(new Expander(&living));
        store.setEvaluator(store.evaluator());
        QCOMPARE(living, 1);
        QImage image(7, 7, QImage::Format_RGB32);
        image.fill(Qt::green);
        const QString icon = folder.filePath(QStringLiteral("icon.png"));
        QVERIFY(image.save(icon));

        Favorite favorite(false, true);
        favorite.path = QStringLiteral("$SHOW/shots");
        store.resolve(favorite);
        QCOMPARE(favorite.dir.path(), QStringLiteral("/shows/x/shots"));
        QVERIFY(favorite.hasFolder() && !favorite.icon.isNull());
        const qint64 folderIcon = favorite.icon.cacheKey();
        favorite.iconPath = folder.path();
        store.resolve(favorite);
        QCOMPARE(favorite.icon.cacheKey(), folderIcon);
        favorite.iconPath = icon;
        store.resolve(favorite);
        QCOMPARE(favorite.icon.pixmap(7, 7).toImage().pixelColor(3, 3), QColor(Qt::green));

        store.setEvaluator(nullptr);
        store.resolve(favorite);
        QCOMPARE(favorite.dir.path(), favorite.path);
        favorite.path.clear();
        store.resolve(favorite);
        QVERIFY(!favorite.hasFolder());
    }
    QCOMPARE(living, 0);
}

void FavoritesStoreTest::oneProcessReadsWhatAnotherWrote()
{
    QFile::remove(file);
    QCOMPARE(runSaver(QStringLiteral("plain"), file), QString());
    FavoritesStore store;
    store.setPreferences(file, QString());
    store.load();
    QCOMPARE(store.favorites()->size(), SavedFavorites);
    QCOMPARE(store.favorites()->at(2).keyText, QStringLiteral("even"));
    QCOMPARE(store.favorites()->at(2).dir.path(), QStringLiteral("/shots/2"));
}

void FavoritesStoreTest::reportsErrorsAndKeepsTheFile()
{
    struct Row
    {
        const char* mode;
        mode_t folderMode;
        mode_t fileMode;
        const char* messages;
    };
    const Row rows[] = {
        {"limited", 0777, 0666, "Can't write %1: File too large\n"},
        {"unprivileged", 0777, 0444, "Can't write %1: Permission denied\n"},
        {"unprivileged", 0555, 0666, "Can't write %1: Permission denied\n"},
        {"unprivileged", 0777, 0222, "Can't read %1: Permission denied\nCan't write %1: Permission denied\n"},
    };
    for (const Row& row : rows) {
        const QTemporaryDir place;
        const QString path = place.filePath(QStringLiteral("favorites"));
        const QByteArray old = "add_favorite_dir x x \"\" /x/\n";
        QVERIFY(write(path, old) && setMode(path, row.fileMode) && setMode(place.path(), row.folderMode));
        QCOMPARE(runSaver(row.mode, path), QString(row.messages).arg(path));
        QVERIFY(setMode(place.path(), 0700) && setMode(path, 0600));
        QCOMPARE(contents(path), old);
        QCOMPARE(QDir(place.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList("favorites"));
    }
}

void FavoritesStoreTest::keepsLinksAndPermissions()
{
    QCOMPARE(runSaver(QStringLiteral("plain"), QString()),
             QStringLiteral("FileBrowser, Can't write favorites: No preferences path.\n").repeated(2));

    const QString target = folder.filePath(QStringLiteral("target"));
    const QString link = folder.filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(QStringLiteral("target"), link));
    QCOMPARE(runSaver(QStringLiteral("plain"), link), QString());
    QVERIFY(QFileInfo(link).isSymLink() && contents(target).contains("/shots/400/"));
    QVERIFY(setMode(target, 0640));
    QVERIFY(write(target, "old\n"));
    QCOMPARE(runSaver(QStringLiteral("plain"), link), QString());
    QVERIFY(QFileInfo(link).isSymLink() && contents(target).contains("/shots/400/"));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(target).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777U, 0640U);

    const QString device = folder.filePath(QStringLiteral("full"));
    QVERIFY(QFile::link(QStringLiteral("/dev/full"), device));
    QCOMPARE(runSaver(QStringLiteral("plain"), device),
             QString("Can't write " + device + ": No space left on device\n"));
    QVERIFY(::stat("/dev/full", &status) == 0 && S_ISCHR(status.st_mode));
}

void FavoritesStoreTest::fileIsWholeWheneverTheSaverDies()
{
    constexpr int Rounds = 40;
    constexpr int LongestLife = 30000; // microseconds
    std::mt19937 random(1);
    for (int round = 0; round < Rounds; ++round) {
        QProcess saver;
        startSaver(saver, QStringLiteral("forever"), file);
        QVERIFY(saver.waitForReadyRead());
        ::usleep(static_cast<unsigned>(std::uniform_int_distribution<>(0, LongestLife)(random)));
        saver.kill();
        QVERIFY(saver.waitForFinished());
        const QByteArray text = contents(file);
        QVERIFY(text.endsWith("\n\n# End of generated file.\n"));
        QCOMPARE(text.count("add_favorite_dir"), SavedFavorites);
        QVERIFY(text.contains(" odd odd ") != text.contains(" even even "));
    }
}

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "saver") == 0)
        return runAsSaver(argv[2], argv[3]);
    const QApplication application(argc, argv);
    FavoritesStoreTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "FavoritesStoreTest.moc"
