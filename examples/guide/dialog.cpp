#include <QApplication>
#include <dialog/FileDialog.h>
#include <iostream>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Halvern::UI::FileDialog dialog(nullptr, "Import");
    dialog.setSequencesEnabled(true);
    if (dialog.exec() == QDialog::Accepted)
        std::cout << dialog.selectedFiles().join('\n').toStdString() << std::endl;
}
