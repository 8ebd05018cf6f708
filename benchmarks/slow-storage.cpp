// Times reading the attributes of a directory on a slow file system, beside a program that asks for one after
// the other. Usage: slow-storage-benchmark [FILES]

#include "Measuring.h"
#include "base/FileSystem.h"
#include "catalogue/FileManager.h"
#include "support/Faults.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <thread>

using namespace Measuring;

namespace {

constexpr int DefaultFiles = 10000;
constexpr int Rounds = 3;

// On another thread: calls of the first one are not delayed.
double timeOneAfterTheOther(const QString& folder)
{
    QElapsedTimer timer;
    timer.start();
    std::thread reader([path = folder.toStdString()] {
        DIR* stream = ::opendir(path.c_str());
        while (const dirent* entry = stream ? ::readdir(stream) : nullptr)
            Halvern::Base::fileStatus(entry->d_name, ::dirfd(stream));
        if (stream)
            ::closedir(stream);
    });
    reader.join();
    return milliseconds(timer);
}

double timeManager(const QString& folder, int files)
{
    Halvern::UI::FileManager manager;
    QEventLoop loop;
    int updated = 0;
    QObject::connect(&manager, &Halvern::UI::FileManager::infoUpdated, &loop, [&](int, int count) {
        updated += count;
        if (updated == files + 2) // with "." and ".."
            loop.quit();
    });
    QElapsedTimer timer;
    timer.start();
    if (manager.getFilesFromFolder(folder.toStdString(), true))
        loop.exec();
    return milliseconds(timer);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int files = argc > 1 ? std::atoi(argv[1]) : DefaultFiles;
    const QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/slow-XXXXXX"));
    if (files < 1 || !tree.isValid() || !makeTree(tree.path(), files)) {
        std::fprintf(stderr, "usage: slow-storage-benchmark [FILES], made below the working directory\n");
        return 2;
    }
    std::printf("%d files, %d rounds, milliseconds\n", files, Rounds);
    std::printf("%-52s %9s %9s %9s %8s\n", "", "median", "least", "most", "ratio");
    faultyCall = "fstatat";
    for (const int delay : {0, 50, 300, 1000}) {
        faults[CallDelay] = delay;
        std::vector<double> plain, manager;
        for (int round = 0; round < Rounds; ++round) {
            plain.push_back(timeOneAfterTheOther(tree.path()));
            manager.push_back(timeManager(tree.path(), files));
        }
        std::printf("%d microseconds more for each file\n", delay);
        print("  readdir and fstatat, one after the other", plain, median(plain));
        print("  the catalogue, all attributes applied", manager, median(plain));
    }
    return 0;
}
