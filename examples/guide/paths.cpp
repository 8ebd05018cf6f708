#include <QApplication>
#include <iostream>
#include <paths/Filename.h>
#include <widgets/FilePathEdit.h>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    char path[1024];
    filename_absolute(path, sizeof path, "../plates/scan.exr", "/shows/x/shots");
    std::cout << path << " " << filename_name(path) << " " << filename_match(path, "*.{exr,dpx}")
              << std::endl;
    if (filename_isdir("."))
        std::cout << "modified " << filename_mtime(".") << std::endl; // one system call for both

    FilePathEdit edit(nullptr); // Control with Backspace, Delete, Left or Right acts on path components
    edit.setText(path);
    edit.show();
    return application.exec();
}
