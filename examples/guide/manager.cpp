#include <QCoreApplication>
#include <QTemporaryDir>
#include <catalogue/FileInfo.h>
#include <catalogue/FileManager.h>
#include <fstream>
#include <iostream>

using namespace Halvern::UI;

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    for (const char* name : {"shot.0001.exr", "shot.0002.exr", "shot.0004.exr"})
        std::ofstream(folder.filePath(name).toStdString());
    FileManager manager;
    // Names arrive first. Sizes and times follow in batches.
    QObject::connect(&manager, &FileManager::refreshList, [&] {
        std::vector<FileInfo*> rows; // valid until the next read
        manager.buildRunningList(&rows, Halvern::Base::FileHandle::RegisteredSequences);
        for (const FileInfo* row : rows)
            std::cout << row->displayName() << std::endl;
    });
    QObject::connect(&manager, &FileManager::infoUpdated, [&](int, int) {
        std::vector<FileInfo*> rows;
        manager.buildRunningList(&rows, Halvern::Base::FileHandle::AllFiles);
        unsigned long long bytes = 0;
        for (const FileInfo* row : rows)
            bytes += row->isInfoValid() && !row->isDirectory() ? row->size() : 0;
        std::cout << bytes << " bytes" << std::endl;
        application.quit();
    });
    if (!manager.getFilesFromFolder(folder.path().toStdString(), false))
        return 1;
    return application.exec();
}
