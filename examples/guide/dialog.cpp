#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <dialog/FileDialog.h>
#include <fstream>
#include <iostream>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    for (const char* name : {"shot.0001.exr", "shot.0002.exr", "shot.0004.exr"})
        std::ofstream(folder.filePath(name).toStdString());
    Halvern::UI::FileDialog dialog(nullptr, "Import");
    dialog.setSequencesEnabled(true);
    dialog.setDirectory(QDir(folder.path()), false, true);
    if (dialog.exec() == QDialog::Accepted)
        std::cout << dialog.selectedFiles().join('\n').toStdString() << std::endl;
}
