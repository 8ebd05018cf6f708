// Goes from directory to directory as a user does in a day and more, makes and destroys browsers in mid-read,
// and dialogs over settings and favourites files of random bytes; prints how much memory is in use on the
// way. Ends with 1 where memory grows, rows are wrong or a favourite is lost. Usage: endurance-benchmark
// [CHANGES [BROWSERS]]

#include "Measuring.h"
#include "dialog/FileDialog.h"
#include "favorites/FavoritesFile.h"
#include "favorites/FavoritesStore.h"
#include "widgets/AppSettings.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <random>
#include <unistd.h>

using namespace Halvern::UI;
using Measuring::milliseconds;

namespace {

constexpr int Folders = 20;
constexpr int DefaultChanges = 20000;
constexpr int DefaultBrowsers = 1000;
constexpr int Lines = 10;

/// What the process uses, in bytes.
struct Memory
{
    long long allocated = 0;
    long long resident = 0;
};

Memory memoryInUse()
{
    Memory memory;
    ::malloc_trim(0);
    const auto info = ::mallinfo2();
    memory.allocated = static_cast<long long>(info.uordblks) + static_cast<long long>(info.hblkhd);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (file.open(QFile::ReadOnly))
        memory.resident = file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE);
    return memory;
}

/// Prints the memory in use from time to time and tells whether it stays.
class Watch
{
public:
    Watch(const char* what, int rounds)
        : m_what(what)
        , m_rounds(rounds)
    {
        std::printf("%-12s %12s %12s %12s\n", what, "seconds", "heap, kB", "resident, kB");
        m_timer.start();
    }

    void finishRound(int round)
    {
        if (round % std::max(m_rounds / Lines, 1) != 0 && round != warmUp())
            return;
        const Memory memory = memoryInUse();
        std::printf("%-12d %12.1f %12lld %12lld\n", round, milliseconds(m_timer) / 1000,
                    memory.allocated / 1024, memory.resident / 1024);
        std::fflush(stdout);
        if (round == warmUp())
            m_first = memory;
        m_last = memory;
    }

    bool isSteady() const
    {
        // A batch of names takes two megabytes, and several may be on their way or kept to be filled again.
        [[maybe_unused]] constexpr long long Allowed = 16 << 20;
        const long long grown = m_last.allocated - m_first.allocated;
        const long long residentGrown = m_last.resident - m_first.resident;
#ifdef __SANITIZE_ADDRESS__
        // It keeps what was freed, and has a heap of its own.
        const bool steady = true;
#else
        const bool steady = grown < Allowed && residentGrown < Allowed;
#endif
        std::printf("%s: %+lld kB in the heap, %+lld kB resident after the first %d: %s\n\n", m_what,
                    grown / 1024, residentGrown / 1024, warmUp(), steady ? "steady" : "GROWING");
        return steady;
    }

private:
    int warmUp() const
    {
        return std::max(m_rounds / 20, 1);
    }

    const char* m_what;
    int m_rounds;
    QElapsedTimer m_timer;
    Memory m_first;
    Memory m_last;
};

QString folderName(const QString& tree, int index)
{
    return QStringLiteral("%1/shot_%2").arg(tree).arg(index, 3, 10, QLatin1Char('0'));
}

// No two have as many.
int fileCount(int index)
{
    return 100 + 45 * index;
}

bool makeFolders(const QString& tree)
{
    for (int i = 0; i < Folders; ++i) {
        const QString folder = folderName(tree, i);
        if (!QDir().mkpath(folder) || !Measuring::makeTree(folder, fileCount(i)))
            return false;
    }
    return true;
}

// Into a folder by its path and out of it by the button, so that the history stays as long as it is.
bool changeDirectories(const QString& tree, int changes)
{
    FileBrowser browser;
    browser.setSequencesEnabled(false);
    browser.setDirectory(QDir(tree), false, true);
    browser.resize(900, 600);
    browser.show();
    auto* back = browser.findChild<QPushButton*>(QStringLiteral("backButton"));
    const QAbstractItemModel& rows = *browser.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    Watch watch("changes", changes);
    for (int change = 1; change <= changes; ++change) {
        const int folder = change / 2 % Folders;
        const bool enters = change % 2 == 1;
        if (enters)
            browser.setDirectory(QDir(folderName(tree, folder)), false, true);
        else
            back->click();
        // Every third directory is left in mid-read, as by someone who knows the way.
        const bool waits = change % 3 != 0;
        QElapsedTimer timer;
        timer.start();
        while (waits && !rows.index(0, 0).data().isValid() && timer.elapsed() < 10000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        QCoreApplication::processEvents();
        if (waits && rows.rowCount() != (enters ? fileCount(folder) : Folders + 1)) {
            std::printf("changes: %d rows in folder %d\n", rows.rowCount(), folder);
            return false;
        }
        watch.finishRound(change);
    }
    return watch.isSteady();
}

// Destroys a browser behind the box that says that a folder cannot be made.
bool destroyBehindBox()
{
    const QPointer<FileBrowser> browser = new FileBrowser;
    QTimer::singleShot(0, [&browser] {
        QTimer::singleShot(0, [&browser] { delete browser; });
        auto* question = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        question->setTextValue(QStringLiteral("no/such/folder"));
        question->accept();
    });
    browser->findChild<QPushButton*>(QStringLiteral("newFolderButton"))->click();
    return !browser;
}

bool destroyInMidRead(const QString& folder, int browsers)
{
    Watch watch("browsers", browsers);
    for (int round = 1; round <= browsers; ++round) {
        {
            FileBrowser browser;
            browser.setDirectory(QDir(folder), false, true);
            browser.show();
            for (int turn = 0; turn < round % 10; ++turn)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            if (round % 10 == 0 && !destroyBehindBox())
                return false;
        }
        watch.finishRound(round);
    }
    return watch.isSteady();
}

// Random bytes, and pieces that mean something to one reader or the other.
QByteArray anything(std::mt19937& random)
{
    static const QByteArrayList pieces{
        "[FileBrowser]\n",
        "size=@Size(9 9)\n",
        "sortorder=",
        "orderlogicalindex=",
        "directory=/",
        "@ByteArray(",
        "@Rect(",
        "%FF",
        "\\x",
        "=",
        "add_favorite_dir ",
        "-geo ",
        "\"",
        "'",
        "\n",
    };
    QByteArray bytes;
    for (int i = static_cast<int>(random() % 60); i >= 0; --i)
        bytes += random() % 3 == 0
                     ? QByteArray(1, static_cast<char>(random()))
                     : pieces.at(static_cast<int>(random() % static_cast<unsigned>(pieces.size())));
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size();
}

// Whether the favourites that are read from the bytes are all there when they were saved.
bool keepsFavorites(const QString& path)
{
    FavoritesStore store;
    store.setPreferences(path, QString());
    store.load();
    const int read = store.favorites() ? store.favorites()->size() : 0;
    store.save();
    QFile file(path);
    return file.open(QFile::ReadOnly) && FavoritesFile::parse(file.readAll().toStdString()).size() == read;
}

bool readAnything(const QString& folder, int rounds)
{
    std::mt19937 random(1);
    const QString favorites = folder + QStringLiteral("/favorites");
    Watch watch("files", rounds);
    for (int round = 1; round <= rounds; ++round) {
        const QByteArray bytes = anything(random);
        if (!writeFile(AppSettings().fileName(), bytes) || !writeFile(favorites, bytes))
            return false;
        {
            FileDialog dialog;
            dialog.show();
            if (!keepsFavorites(favorites) || !dialog.directory().exists() || dialog.size().isEmpty()) {
                std::printf("files: broken by \"%s\"\n", bytes.toPercentEncoding().constData());
                return false;
            }
        }
        QCoreApplication::processEvents(); // what the X server said of the window
        watch.finishRound(round);
    }
    return watch.isSteady();
}

} // namespace

int main(int argc, char** argv)
{
    const int changes = argc > 1 ? std::atoi(argv[1]) : DefaultChanges;
    const int browsers = argc > 2 ? std::atoi(argv[2]) : DefaultBrowsers;
    if (changes < 1 || browsers < 1) {
        std::fprintf(stderr, "usage: endurance-benchmark [CHANGES [BROWSERS]]\n");
        return 2;
    }
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    FileBrowser::SetUseLastSavedDir(false);
    const QTemporaryDir tree;
    const QString large = tree.path() + QStringLiteral("/large");
    if (!makeFolders(tree.path()) || !QDir().mkpath(large) || !Measuring::makeTree(large, 10000)) {
        std::fprintf(stderr, "endurance-benchmark: cannot make the files\n");
        return 1;
    }
    const bool changesSteady = changeDirectories(tree.path(), changes);
    const bool browsersSteady = destroyInMidRead(large, browsers);
    const bool filesRead = readAnything(tree.path(), browsers);
    return changesSteady && browsersSteady && filesRead ? 0 : 1;
}
