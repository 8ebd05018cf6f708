// Times FileInfoList beside scandir with alphasort, and how its time grows from 10,000 names, all in one run.
// Usage: lister-benchmark [FILES [ROUNDS]]

#include "Measuring.h"
#include "catalogue/FileInfoList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>

using namespace Measuring;
using Halvern::UI::FileInfoList;

namespace {

constexpr int FewestFiles = 10000;

// Includes freeing the names, as the lister does.
double timeSystem(const QString& folder, int files)
{
    QElapsedTimer timer;
    timer.start();
    dirent** names = nullptr;
    const int count = ::scandir(QFile::encodeName(folder).constData(), &names, nullptr, ::alphasort);
    for (int i = 0; i < count; ++i)
        std::free(names[i]);
    std::free(names);
    return count == files + 2 ? milliseconds(timer) : NAN;
}

double timeLister(const QString& folder, int files, bool sequences)
{
    FileInfoList list;
    list.setSequencesEnabled(sequences);
    QElapsedTimer timer;
    timer.start();
    const int count = list.fill(folder);
    const double time = milliseconds(timer);
    const int rows = sequences ? files / FramesPerSequence : files;
    const auto expected = static_cast<std::size_t>(rows) + 2; // with "." and ".."
    const bool right = count == files + 2 && list.entries().size() == expected;
    return right ? time : NAN;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int most = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    if (most < FewestFiles || rounds < 1) {
        std::fprintf(stderr, "usage: lister-benchmark [FILES [ROUNDS]], at least %d files\n", FewestFiles);
        return 2;
    }
    std::printf("Locale %s, %d rounds, milliseconds\n", std::setlocale(LC_COLLATE, nullptr), rounds);
    std::printf("%-52s %9s %9s %9s %8s\n", "", "median", "least", "most", "ratio");
    double fewest = 0;
    for (int files = FewestFiles; files <= most; files *= 10) {
        const QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/lister-XXXXXX"));
        if (!tree.isValid() || !makeTree(tree.path(), files)) {
            std::fprintf(stderr, "lister-benchmark: cannot make %d files below the working directory\n",
                         files);
            return 1;
        }
        std::vector<double> system, collapsed, plain;
        for (int round = 0; round < rounds; ++round) {
            system.push_back(timeSystem(tree.path(), files));
            collapsed.push_back(timeLister(tree.path(), files, true));
            plain.push_back(timeLister(tree.path(), files, false));
        }
        std::printf("%d files in sequences of %d frames\n", files, FramesPerSequence);
        print("  scandir with alphasort", system, median(system));
        print("  listed, sorted and collapsed (ratio: to scandir)", collapsed, median(system));
        print("  listed and sorted, an entry each (ratio: to scandir)", plain, median(system));
        if (files == FewestFiles)
            fewest = median(collapsed);
        const double growth = files * std::log(files) / (FewestFiles * std::log(FewestFiles));
        std::printf("  %-50s %9.2f\n", "collapsed, beside n log n from 10,000 files",
                    median(collapsed) / fewest / growth);
    }
    return 0;
}
