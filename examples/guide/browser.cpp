#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QTemporaryDir>
#include <browser/FileBrowser.h>
#include <catalogue/FileInfo.h>
#include <fstream>
#include <iostream>
#include <widgets/AppSettings.h>

using Halvern::UI::FileBrowser;

int main(int argc, char** argv)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    for (const char* name : {"shot.0001.exr", "shot.0002.exr", "shot.0004.exr"})
        std::ofstream(folder.filePath(name).toStdString());
    // Class-wide settings, before the first browser is made.
    Halvern::UI::AppSettings::SetName("Comp");
    FileBrowser::SetPreferencesPath(folder.filePath(".favorites"), "Comp");
    FileBrowser::SetHighlightColor(application.palette().color(QPalette::AlternateBase));

    QMainWindow window;
    auto* dock = new QDockWidget("Plates", &window);
    auto* browser = new FileBrowser(dock);
    dock->setWidget(browser);
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
    browser->setFaveType(Halvern::UI::FaveImage);
    browser->setSequencesEnabled(true);
    browser->setMultipleSelections(true);
    QStringList filters{"*.exr *.dpx", "*.jpg"};
    browser->setFilters(filters, false);
    browser->setAcceptButtonText("Import");
    browser->setAcceptButtonEnabled(true); // only FileDialog does this by itself
    browser->setDirectory(QDir(folder.path()), false, true);

    QObject::connect(browser, &FileBrowser::fileSelected, [](const Halvern::UI::FileInfo& info, QDir) {
        std::cout << "selected " << info.displayName() << std::endl;
    });
    QObject::connect(browser, &FileBrowser::accepted, [browser] {
        std::cout << browser->selectedFiles().join('\n').toStdString() << std::endl;
    });
    window.show();
    return application.exec();
}
