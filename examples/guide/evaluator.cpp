#include <QApplication>
#include <QTemporaryDir>
#include <browser/FileBrowser.h>
#include <catalogue/FileInfo.h>
#include <catalogue/FileSequenceEvaluator.h>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

using namespace Halvern::UI;

// Groups left and right eye, "take.left.0001.exr" and "take.right.0001.exr", into one row for each take.
class StereoPairs : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        std::vector<FileInfo*> rows;
        std::map<std::string, std::vector<FileInfo*>> eyes;
        for (FileInfo* file : files) {
            const std::string name = file->fileName();
            const auto eye =
                name.find(".left.") != std::string::npos ? name.find(".left.") : name.find(".right.");
            if (eye == std::string::npos)
                rows.push_back(file);
            else
                eyes[name.substr(0, eye)].push_back(file);
        }
        for (const auto& [take, members] : eyes) {
            std::vector<int> frames;
            for (std::size_t i = 0; i < members.size(); ++i)
                frames.push_back(static_cast<int>(i));
            rows.push_back(buildFileSequence(take + ".stereo.exr", frames, members));
            std::cout << take << ": " << members.size() << " files" << std::endl;
        }
        return rows;
    }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    for (const char* name : {"take.left.0001.exr", "take.right.0001.exr", "notes.txt"})
        std::ofstream(folder.filePath(name).toStdString());
    StereoPairs evaluator; // outlives the browser
    FileBrowser browser;
    browser.setSequencesEnabled(true);
    browser.setFileSequenceEvaluator(&evaluator);
    browser.setDirectory(QDir(folder.path()), false, true);
    browser.show();
    return application.exec();
}
