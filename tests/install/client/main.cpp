// A host as it is written outside the project: public headers, the installed package, nothing else.

#include <base/FileSystem.h>
#include <base/FrameRanges.h>
#include <base/Path.h>
#include <base/Text.h>
#include <browser/FileBrowser.h>
#include <catalogue/FileInfo.h>
#include <catalogue/FileInfoList.h>
#include <catalogue/FileManager.h>
#include <catalogue/FileSequenceEvaluator.h>
#include <dialog/FilePathEdit.h>
#include <dialog/FilePreview.h>
#include <dialog/Filename.h>
#include <widgets/AppSettings.h>
#include <widgets/DisclosureButton.h>
#include <widgets/FrameSlider.h>
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

    FileInfoList list;
    const auto frames = Halvern::Base::FrameRanges::parse(Halvern::Base::trimmed(" 1-9x2 "));
    const bool lists = list.fill(QDir::rootPath()) > 0 && frames && frames->count() == 5 &&
                       Halvern::Base::isDirectory(Halvern::Base::normalisedPath("/tmp/..").c_str()) &&
                       Halvern::Base::startsWith(Halvern::Base::TemporaryDirectory, "/var");

    Nothing evaluator;
    FileBrowser browser;
    browser.setFileSequenceEvaluator(&evaluator);
    browser.setDirectory(QDir::root(), false, false);
    FilePathEdit edit(nullptr);
    DisclosureButton button(nullptr, true);
    FrameSlider slider(true, nullptr);
    const bool works = filename_isdir("/") && slider.setValue(7) &&
                       QColorToRgb0(rgb0toQColor(128)) == 0x808080ff && browser.directory() == QDir::root() &&
                       AppSettings().format() == QSettings::IniFormat;
    return works && lists ? 0 : 1;
}
