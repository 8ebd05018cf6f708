// Times how a directory of numbered frames comes to the screen, beside what the system needs at least and
// what Qt's own model needs, all in one run. Usage: listing-benchmark [FILES [ROUNDS]]

#include "Measuring.h"
#include "browser/FileBrowser.h"
#include "widgets/AppSettings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileSystemModel>
#include <QTemporaryDir>
#include <QTreeView>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace Measuring;
using Halvern::UI::FileBrowser;

namespace {

constexpr qint64 TimeLimit = 300000; // milliseconds

struct SystemTimes
{
    double names = 0;
    double attributes = 0;
};

SystemTimes timeSystem(const QString& folder)
{
    SystemTimes times;
    QElapsedTimer timer;
    timer.start();
    std::vector<std::string> names;
    DIR* stream = ::opendir(QFile::encodeName(folder).constData());
    while (const dirent* entry = ::readdir(stream))
        names.emplace_back(entry->d_name);
    times.names = milliseconds(timer);
    unsigned long long total = 0;
    for (const std::string& name : names) {
        struct stat status;
        if (::fstatat(::dirfd(stream), name.c_str(), &status, 0) == 0)
            total += static_cast<unsigned long long>(status.st_size);
    }
    ::closedir(stream);
    times.attributes = milliseconds(timer);
    return total > 0 ? times : SystemTimes();
}

// Runs the event loop until the condition holds; returns the longest time in which it did not come to its
// turn.
double runUntil(const std::function<bool()>& condition)
{
    double longest = 0;
    QElapsedTimer whole;
    whole.start();
    while (!condition() && whole.elapsed() < TimeLimit) {
        QElapsedTimer turn;
        turn.start();
        QCoreApplication::processEvents();
        longest = std::max(longest, milliseconds(turn));
        ::usleep(200);
    }
    return longest;
}

struct BrowserTimes
{
    double rows = 0;
    double attributes = 0;
    double longestTurn = 0;
};

BrowserTimes timeBrowser(const QString& folder, int expectedRows, bool expanded)
{
    QTemporaryDir empty;
    FileBrowser::SetUseLastSavedDir(false);
    FileBrowser browser;
    browser.setSequencesEnabled(!expanded);
    browser.setDirectory(QDir(empty.path()), false, true);
    browser.resize(1000, 700);
    browser.show();
    const QAbstractItemModel& rows = *browser.findChild<QTreeView*>(QStringLiteral("filesList"))->model();
    QCoreApplication::processEvents();

    BrowserTimes times;
    const QString wholeSize = QString::number(expanded ? 1 : FramesPerSequence);
    QElapsedTimer timer;
    timer.start();
    browser.setDirectory(QDir(folder), false, true);
    times.longestTurn = milliseconds(timer);
    const auto listed = [&] {
        return rows.rowCount() == expectedRows && rows.index(expectedRows - 1, 0).data().isValid();
    };
    times.longestTurn = std::max(times.longestTurn, runUntil(listed));
    times.rows = milliseconds(timer);
    // Sizes arrive in the order of the disk, so every row is looked at, from the last that was missing on.
    int complete = 0;
    const auto summed = [&] {
        while (complete < expectedRows && rows.index(complete, 1).data().toString() == wholeSize)
            ++complete;
        return complete == expectedRows;
    };
    times.longestTurn = std::max(times.longestTurn, runUntil(summed));
    times.attributes = milliseconds(timer);
    return times;
}

double timeFileSystemModel(const QString& folder, int expectedRows)
{
    QFileSystemModel model;
    QTreeView view;
    view.setModel(&model);
    view.resize(1000, 700);
    view.show();
    QCoreApplication::processEvents();

    bool loaded = false;
    QObject::connect(&model, &QFileSystemModel::directoryLoaded, &model,
                     [&](const QString& path) { loaded = loaded || path == folder; });
    QElapsedTimer timer;
    timer.start();
    const QModelIndex root = model.setRootPath(folder);
    view.setRootIndex(root);
    runUntil([&] { return loaded && model.rowCount(root) == expectedRows; });
    return milliseconds(timer);
}

} // namespace

int main(int argc, char** argv)
{
    const int files = argc > 1 ? std::atoi(argv[1]) / FramesPerSequence * FramesPerSequence : 100000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    if (files < FramesPerSequence || rounds < 1) {
        std::fprintf(stderr, "usage: listing-benchmark [FILES [ROUNDS]], at least %d files\n",
                     FramesPerSequence);
        return 2;
    }
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/listing-XXXXXX"));
    if (!tree.isValid() || !makeTree(tree.path(), files)) {
        std::fprintf(stderr, "listing-benchmark: cannot make %d files below the working directory\n", files);
        return 1;
    }

    std::vector<double> names, attributes, rows, whole, turn, expandedRows, expandedWhole, expandedTurn, qt;
    for (int round = 0; round < rounds; ++round) {
        const SystemTimes system = timeSystem(tree.path());
        names.push_back(system.names);
        attributes.push_back(system.attributes);
        const BrowserTimes collapsed = timeBrowser(tree.path(), files / FramesPerSequence, false);
        rows.push_back(collapsed.rows);
        whole.push_back(collapsed.attributes);
        turn.push_back(collapsed.longestTurn);
        const BrowserTimes expanded = timeBrowser(tree.path(), files, true);
        expandedRows.push_back(expanded.rows);
        expandedWhole.push_back(expanded.attributes);
        expandedTurn.push_back(expanded.longestTurn);
        qt.push_back(timeFileSystemModel(tree.path(), files));
    }
    std::printf("%d files in sequences of %d frames, %d rounds, milliseconds\n", files, FramesPerSequence,
                rounds);
    std::printf("%-52s %9s %9s %9s %8s\n", "", "median", "least", "most", "ratio");
    print("names, readdir into strings", names, median(names));
    print("rows, collapsed (ratio: to readdir)", rows, median(names));
    print("attributes, readdir and fstatat", attributes, median(attributes));
    print("attributes, collapsed (ratio: to fstatat)", whole, median(attributes));
    print("attributes, QFileSystemModel and QTreeView", qt, median(attributes));
    print("attributes, collapsed (ratio: to QFileSystemModel)", whole, median(qt));
    print("rows, a file on each (ratio: to readdir)", expandedRows, median(names));
    print("attributes, a file on each (ratio: to fstatat)", expandedWhole, median(attributes));
    print("longest turn, collapsed (ratio: to readdir)", turn, median(names));
    print("longest turn, a file on each (ratio: to readdir)", expandedTurn, median(names));
    return 0;
}
