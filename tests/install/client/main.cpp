// A host as it is written outside the project: public headers, the installed package, nothing else.

#include <browser/FileBrowser.h>
#include <catalogue/FileInfo.h>
#include <catalogue/FileManager.h>
#include <catalogue/FileSequenceEvaluator.h>
#include <dialog/FilePathEdit.h>
#include <dialog/Filename.h>
#include <widgets/AppSettings.h>
#include <widgets/DisclosureButton.h>
#include <widgets/PackedColour.h>

#include <QApplication>
#include <cstdio>

using namespace Halvern::UI;

namespace {

class Nothing : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*>) override { return {}; }
};

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    FileManager manager;
    std::vector<std::string> names;
    if (argc > 1)
        names = manager.getFilenameList(argv[1], false, false, false, false);
    for (const std::string& name : names)
        std::puts(name.c_str());

    Nothing evaluator;
    FileBrowser browser;
    browser.setFileSequenceEvaluator(&evaluator);
    browser.setDirectory(QDir::root(), false, false);
    FilePathEdit edit(nullptr);
    DisclosureButton button(nullptr, true);
    const bool works = filename_isdir("/") && QColorToRgb0(rgb0toQColor(128)) == 0x808080ff &&
                       browser.directory() == QDir::root() && AppSettings().format() == QSettings::IniFormat;
    return works ? 0 : 1;
}
