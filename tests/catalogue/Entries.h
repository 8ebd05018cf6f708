#pragma once

#include "catalogue/FileManager.h"

#include <vector>

/// What the running list of @p type names.
inline std::vector<Halvern::UI::FileInfo*>
entries(Halvern::UI::FileManager& manager,
        Halvern::Base::FileHandle::ListType type = Halvern::Base::FileHandle::AllFiles)
{
    std::vector<Halvern::UI::FileInfo*> files;
    manager.buildRunningList(&files, type);
    return files;
}
