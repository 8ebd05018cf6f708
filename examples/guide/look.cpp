#include <QApplication>
#include <QLocale>
#include <QTranslator>
#include <dialog/FileDialog.h>
#include <iostream>
#include <widgets/FrameSlider.h>

using Halvern::UI::FileBrowser;

int main(int argc, char** argv)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // sharp icons at every scale
#endif
    QApplication application(argc, argv);
    QTranslator translator;
    if (translator.load(QLocale(), "HvMirefoldCoreUI", "_", "/opt/comp/translations"))
        application.installTranslator(&translator);

    FileBrowser::SetHighlightColor(QColor(70, 70, 70)); // behind the row under the mouse; black by default
    FileBrowser::SetQueuedColor(QColor(130, 70, 30));   // behind the rows of the pick list; red by default
    FrameSlider::SetHeadColour(0xe1e1e1ff);             // the play head; black by default

    Halvern::UI::FileDialog dialog;
    dialog.exec();
    std::cout << "in " << dialog.directory().path().toStdString() << std::endl;
}
