// Goes from directory to directory as often as a user in a day or more, and changes a watched one as often.
// Makes and destroys browsers during reads and while their boxes are open, and dialogs with settings and
// favourites files of random bytes. Prints the memory in use. Exit status: 1 if memory grows, rows are wrong
// or a favourite is lost. Usage: endurance-benchmark [CHANGES [BROWSERS]]

#include "Measuring.h"
#include "MemoryWatch.h"
#include "browser/DirectoryModel.h"
#include "catalogue/DirectoryWatch.h"
#include "dialog/FileDialog.h"
#include "favorites/FavoritesFile.h"
#include "widgets/AppSettings.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QInputDialog>
#include <QListView>
#include <QLoggingCategory>
#include <QPixmapCache>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <malloc.h>
#include <random>
#include <set>
#include <utility>

using namespace Halvern::UI;
using Measuring::milliseconds;

namespace {

constexpr int Folders = 20;
constexpr int DefaultChanges = 20000;
constexpr int DefaultBrowsers = 1000;
constexpr int DefaultFavorites = 3;
constexpr int EveryType = 255;

// Growth of the heap that counts as a leak, in bytes. A batch of names takes two megabytes, and several may
// be in use or kept for later. That is little compared to many changes only.
constexpr long long AllowedInFewChanges = 16 << 20;
constexpr long long AllowedInChanges = 4 << 20;
constexpr long long AllowedInWindows = 256 << 10;

QString folderName(const QString& tree, int index)
{
    return QStringLiteral("%1/shot_%2").arg(tree).arg(index, 3, 10, QLatin1Char('0'));
}

// No two directories have the same number of files.
int fileCount(int index)
{
    return 100 + 45 * index;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size();
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

// Enters a folder by its path and leaves it by the button, so that the history does not grow.
bool changeDirectories(const QString& tree, int changes)
{
    FileBrowser browser;
    browser.setSequencesEnabled(false);
    browser.setDirectory(QDir(tree), false, true);
    browser.resize(900, 600);
    browser.show();
    auto* back = browser.findChild<QPushButton*>(QStringLiteral("backButton"));
    const QAbstractItemModel& rows = *browser.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    MemoryWatch watch("changes", changes, changes < DefaultChanges ? AllowedInFewChanges : AllowedInChanges);
    for (int change = 1; change <= changes; ++change) {
        const int folder = change / 2 % Folders;
        const bool enters = change % 2 == 1;
        if (enters)
            browser.setDirectory(QDir(folderName(tree, folder)), false, true);
        else
            back->click();
        // Every third directory is left during the read.
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

// Changes a folder that is watched, as often as a render farm does in a day, and reads it again each time.
bool followChanges(const QString& folder, int changes)
{
    FileBrowser browser;
    browser.setSequencesEnabled(true);
    browser.setDirectory(QDir(folder), false, true);
    browser.show();
    auto& model = *browser.findChild<FileBrowser::DirectoryModel*>();
    DirectoryWatch watch({1, 1, 1, 1000000});
    bool wanted = false;
    int updates = 0;
    QObject::connect(&watch, &DirectoryWatch::changed, &browser, [&] { wanted = true; });
    QObject::connect(&model, &FileBrowser::DirectoryModel::updated, &browser,
                     [&](int /*milliseconds*/, bool succeeded) {
                         updates += succeeded ? 1 : 0;
                         watch.endRead(0, true);
                     });
    const auto waitUntil = [](const std::function<bool()>& condition) {
        QElapsedTimer timer;
        timer.start();
        bool holds = condition();
        while (!holds && timer.elapsed() < 10000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
            holds = condition();
        }
        return holds;
    };
    watch.beginRead(folder.toStdString());
    watch.endRead(0, true);
    watch.setActive(true);
    // Until the watch has begun.
    waitUntil([&] {
        writeFile(folder + QStringLiteral("/new.0.exr"), "x");
        return wanted;
    });
    MemoryWatch memory("watched", changes, changes < DefaultChanges ? AllowedInFewChanges : AllowedInChanges);
    for (int change = 1; change <= changes; ++change) {
        const int before = updates;
        // A frame comes, is replaced by another, and goes.
        const QString frame = QStringLiteral("%1/new.%2.exr").arg(folder).arg(change / 3 % 100);
        if (change % 3 == 2 ? !QFile::remove(frame) : !writeFile(frame, QByteArray(change % 3 + 1, 'x')))
            return false;
        const char* missing = nullptr;
        if (!waitUntil([&] { return std::exchange(wanted, false); }))
            missing = "told";
        else if (!waitUntil([&] { return model.update(watch.changedNames()) || updates > before; }))
            missing = "read";
        else if (!waitUntil([&] { return updates > before; }))
            missing = "shown";
        if (missing) {
            std::printf("watched: change %d is not %s\n", change, missing);
            return false;
        }
        memory.finishRound(change);
    }
    return memory.isSteady();
}

// Destroys a browser with a selected favourite while the box of a button is open, or the box that follows it.
bool destroyBehindBox(const char* button, const QString& answer)
{
    const QPointer<FileBrowser> browser = new FileBrowser;
    auto* favorites = browser->findChild<QListView*>(QStringLiteral("favoritesList"));
    favorites->setCurrentIndex(favorites->model()->index(favorites->model()->rowCount() - 1, 0));
    bool shown = false;
    const QObject box; // ends the timers if no box opens
    QTimer::singleShot(0, &box, [&] {
        QTimer::singleShot(0, &box, [&] {
            shown = QApplication::activeModalWidget() != nullptr;
            delete browser;
        });
        auto* question = qobject_cast<QInputDialog*>(QApplication::activeModalWidget());
        if (question && !answer.isEmpty()) {
            question->setTextValue(answer);
            question->accept();
        }
    });
    browser->findChild<QPushButton*>(QLatin1String(button))->click();
    const bool destroyed = !browser;
    delete browser;
    if (!shown || !destroyed)
        std::printf("browsers: %s %s\n", button, destroyed ? "asks nothing" : "keeps its browser");
    return shown && destroyed;
}

bool destroyBehindBoxes(int rounds)
{
    const QString refused = QStringLiteral("no/such/folder");
    FileBrowser::AddFavoriteDir("root", std::string(), "/", std::string(), std::string(), FaveAll, true);
    // Qt makes new icons for the buttons of each box, and would keep up to ten megabytes of them.
    const int limit = QPixmapCache::cacheLimit();
    QPixmapCache::setCacheLimit(0);
    MemoryWatch watch("boxes", rounds, AllowedInWindows);
    for (int round = 1; round <= rounds; ++round) {
        if (!destroyBehindBox("newFolderButton", QString()) || !destroyBehindBox("newFolderButton", refused))
            return false;
        for (const char* button : {"addFavoriteButton", "editFavoriteButton", "removeFavoriteButton"}) {
            if (!destroyBehindBox(button, QString()))
                return false;
        }
        QCoreApplication::processEvents(); // events of the X server for the boxes
        watch.finishRound(round);
    }
    QPixmapCache::setCacheLimit(limit);
    return watch.isSteady();
}

bool destroyInMidRead(const QString& folder, int browsers)
{
    MemoryWatch watch("browsers", browsers, AllowedInWindows);
    for (int round = 1; round <= browsers; ++round) {
        {
            FileBrowser browser;
            browser.setDirectory(QDir(folder), false, true);
            browser.show();
            for (int turn = 0; turn < round % 10; ++turn)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        }
        watch.finishRound(round);
    }
    return watch.isSteady();
}

// Random bytes, and pieces that the readers know.
QByteArray anything(std::mt19937& random)
{
    static const QByteArrayList pieces{
        "[FileBrowser]\n",
        "\nsize=@Size(9 9)\n",
        "\nsize=@Size(700 500)\n",
        "\nsortorder=",
        "\nsortorder=1\n",
        "\norderlogicalindex=",
        "\norderlogicalindex=2\n",
        "\nsequences=",
        "\nsequences=1\n",
        "\nsplitsequences=",
        "\nsplitsequences=true\n",
        "\npreview=",
        "\npreview=true\n",
        "\ndirectory=",
        "\ndirectory=/\n",
        "\ndirectory=../..\n",
        "\ndirectory=no/such\n",
        "@ByteArray(",
        "@Rect(",
        "%FF",
        "\\x",
        "=",
        "0",
        "1",
        "2",
        "-7",
        "true",
        "/",
        "..",
        "shot_000.0001.exr",
        "\nadd_favorite_dir ",
        "-geo ",
        " ",
        "\"",
        "'",
        "\n",
    };
    QByteArray bytes = random() % 2 == 0 ? QByteArray() : pieces.first();
    for (int i = static_cast<int>(random() % 60); i >= 0; --i)
        bytes += random() % 5 == 0
                     ? QByteArray(1, static_cast<char>(random()))
                     : pieces.at(static_cast<int>(random() % static_cast<unsigned>(pieces.size())));
    return bytes;
}

/// A pane without a drawing surface, which would need the display driver.
class Pane : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

public slots:
    void fileSelected(const Halvern::UI::FileInfo& /*info*/, QDir /*dir*/) {}
};

/// What the dialogs read from the files.
struct Reach
{
    std::set<QString> directories;
    int favorites = 0;
    int expanded = 0; ///< dialogs that showed every frame
    int previews = 0;
};

// Shows a dialog that reads the settings and the favourites.
bool showDialog(int favorites, Reach& reach)
{
    FileDialog dialog;
    auto* pane = new Pane(&dialog);
    dialog.setPreviewWidget(pane);
    auto& browser = *dialog.findChild<FileBrowser*>();
    browser.setFaveType(static_cast<FaveType>(EveryType));
    browser.updateFromPreferences();
    dialog.show();
    const QAbstractItemModel& rows = *browser.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    QElapsedTimer timer;
    timer.start();
    while (rows.rowCount() == 0 && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    dialog.grab();
    reach.directories.insert(dialog.directory().absolutePath());
    reach.favorites += favorites;
    reach.expanded += browser.getSequenceMode() == FileBrowser::SequenceMode::Expanded ? 1 : 0;
    reach.previews += pane->isVisible() ? 1 : 0;
    const auto& panel = *browser.findChild<QListView*>(QStringLiteral("favoritesList"))->model();
    return rows.rowCount() > 0 && panel.rowCount() == DefaultFavorites + favorites &&
           dialog.directory().exists() && !dialog.size().isEmpty();
}

// Whether the file has the same number of favourites after the list was saved.
bool keepsFavorites(const QString& path, int favorites)
{
    FileBrowser::SaveFavorites();
    QFile file(path);
    return file.open(QFile::ReadOnly) &&
           FavoritesFile::parse(file.readAll().toStdString()).size() == favorites;
}

bool readAnything(const QString& tree, int rounds)
{
    // Settings without a directory lead here or one level up, and those with a relative directory nearby.
    const QString folder = tree + QStringLiteral("/settings/working");
    const QString favorites = tree + QStringLiteral("/favorites");
    if (!QDir().mkpath(folder) || !Measuring::makeTree(folder, fileCount(0)) || !QDir::setCurrent(folder))
        return false;
    FileBrowser::SetPreferencesPath(favorites, QString());
    FileBrowser::SetUseLastSavedDir(true);
    std::mt19937 random(1);
    Reach reach;
    MemoryWatch watch("files", rounds, AllowedInWindows);
    for (int round = 1; round <= rounds; ++round) {
        const QByteArray bytes = anything(random);
        if (!writeFile(AppSettings().fileName(), bytes) || !writeFile(favorites, bytes))
            return false;
        FileBrowser::ResetFavorites();
        const int count = int(FavoritesFile::parse(bytes.toStdString()).size());
        if (!showDialog(count, reach) || !keepsFavorites(favorites, count)) {
            std::printf("files: broken by \"%s\"\n", bytes.toPercentEncoding().constData());
            return false;
        }
        QCoreApplication::processEvents(); // events of the X server for the window
        watch.finishRound(round);
    }
    std::printf("files: %d favourites, %zu directories, %d times expanded, %d previews\n", reach.favorites,
                reach.directories.size(), reach.expanded, reach.previews);
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
    // With one heap for all threads: otherwise freed memory of the workers would stay resident.
    ::mallopt(M_TRIM_THRESHOLD, 128 << 10);
    // A window may be destroyed before the X server gives it the focus.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.xcb=false"));
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
    const bool watchedSteady = followChanges(folderName(tree.path(), Folders - 1), changes);
    const bool browsersSteady = destroyInMidRead(large, browsers);
    const bool boxesSteady = destroyBehindBoxes(std::max(browsers / 2, 1));
    const bool filesRead = readAnything(tree.path(), browsers);
    return changesSteady && watchedSteady && browsersSteady && boxesSteady && filesRead ? 0 : 1;
}

#include "endurance.moc"
