// Prints a table of the rows of one directory in each list type.
#include <QString>
#include <algorithm>
#include <array>
#include <catalogue/FileInfo.h>
#include <catalogue/FileManager.h>
#include <iostream>

using Halvern::Base::FileHandle;

int main()
{
    const std::list<std::string> names{"a.0001.exr",  "a.0002.exr", "a.0003.exr", "b.0001.exr", "b.0002.exr",
                                       "b.0005.exr",  "b.0008.exr", "b.0009.exr", "c.0001.exr", "log.1.txt",
                                       "log.2.txt",   "log.4.txt",  "v9.exr",     "v10.exr",    "v2_take.dpx",
                                       "v3_take.dpx", "notes.txt"};
    constexpr std::array types{FileHandle::AllFiles, FileHandle::Sequences, FileHandle::SplitSequences,
                               FileHandle::RegisteredSequences, FileHandle::RegisteredSplitSequences};
    Halvern::UI::FileManager manager;
    manager.setFiles(names);
    manager.insertFiles();
    std::array<std::vector<std::string>, types.size()> columns;
    std::size_t rows = 0;
    for (std::size_t type = 0; type < types.size(); ++type) {
        std::vector<Halvern::UI::FileInfo*> list;
        manager.buildRunningList(&list, types[type]);
        for (const Halvern::UI::FileInfo* info : list)
            columns[type].push_back(info->isSequence() ? info->getSequenceLongName().toStdString()
                                                       : info->fileName());
        rows = std::max(rows, list.size());
    }
    std::cout
        << "| AllFiles | Sequences | SplitSequences | RegisteredSequences | RegisteredSplitSequences |\n"
           "|---|---|---|---|---|\n";
    for (std::size_t row = 0; row < rows; ++row) {
        std::cout << '|';
        for (const auto& column : columns)
            std::cout << (row < column.size() ? " `" + column[row] + "` |" : std::string(" |"));
        std::cout << '\n';
    }
}
