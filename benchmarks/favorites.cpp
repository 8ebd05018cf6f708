// Times how long a browser takes to open with few and with many favourites in the file. Usage:
// favorites-benchmark [FAVOURITES [ROUNDS]]

#include "Measuring.h"
#include "browser/FileBrowser.h"
#include "favorites/FavoritesList.h"
#include "widgets/AppSettings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using Halvern::UI::FileBrowser;
using Measuring::median;
using Measuring::milliseconds;

namespace {

constexpr int DefaultFavorites = 10000;
constexpr int DefaultRounds = 5;

bool writeFile(const QString& path, int favorites)
{
    QFile file(path);
    if (!file.open(QFile::WriteOnly))
        return false;
    for (int i = 0; i < favorites; ++i) {
        const QByteArray number = QByteArray::number(i);
        file.write("add_favorite_dir \"shot " + number + "\" \"shot " + number + "\" \"\" /no/such/shots/" +
                   number + "/\n");
    }
    return file.flush();
}

/// Medians over all rounds, in milliseconds.
struct Times
{
    double load = 0; ///< Reading the file and resolving its favourites.
    double open = 0; ///< Making, showing and painting a browser after that.
};

Times timeOpening(const QString& folder, int favorites, int rounds)
{
    const QString path = folder + QStringLiteral("/favorites");
    if (!writeFile(path, favorites))
        std::exit(1);
    FileBrowser::SetPreferencesPath(path, QStringLiteral("benchmark"));
    std::vector<double> loads;
    std::vector<double> opens;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        FileBrowser::ResetFavorites();
        loads.push_back(milliseconds(timer));
        timer.restart();
        FileBrowser browser;
        browser.resize(1100, 600);
        browser.show();
        browser.findChild<Halvern::UI::FavoritesList*>()->repaint();
        QCoreApplication::processEvents();
        opens.push_back(milliseconds(timer));
    }
    return {median(loads), median(opens)};
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const int favorites = argc > 1 ? std::atoi(argv[1]) : DefaultFavorites;
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : DefaultRounds;
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    std::printf("%10s %16s %16s\n", "favourites", "read file [ms]", "open [ms]");
    for (const int count : {0, favorites}) {
        const Times times = timeOpening(folder.path(), count, rounds);
        std::printf("%10d %16.1f %16.1f\n", count, times.load, times.open);
    }
    return 0;
}
