#include <QTemporaryDir>
#include <catalogue/FileInfoList.h>
#include <fstream>
#include <iostream>

int main()
{
    const QTemporaryDir folder;
    for (const char* name : {"shot.0001.exr", "shot.0002.exr", "shot.0004.exr"})
        std::ofstream(folder.filePath(name).toStdString());
    Halvern::UI::FileInfoList list;
    list.setSequencesEnabled(true);
    if (list.fill(folder.path()) < 0)
        return 1;
    for (const Halvern::UI::FileInfo& entry : list.entries())
        std::cout << entry.fileName() << std::endl;
}
