#include "base/FileSystem.h"

#include <filesystem>
#include <unistd.h>
#include <vector>

namespace Halvern::Base {

namespace fs = std::filesystem;

std::optional<struct stat> fileStatus(const char* name, int folder)
{
    struct stat status;
    if (uninterrupted([&] { return ::fstatat(folder, name, &status, 0); }) != 0)
        return std::nullopt;
    return status;
}

bool isDirectory(const char* name, int folder)
{
    const auto status = fileStatus(name, folder);
    return status && S_ISDIR(status->st_mode);
}

bool isReadable(const std::string& path)
{
    return uninterrupted([&] { return ::access(path.c_str(), R_OK); }) == 0;
}

bool isWritable(const std::string& path)
{
    return uninterrupted([&] { return ::access(path.c_str(), W_OK); }) == 0;
}

bool makeDirectories(const std::string& path)
{
    std::error_code error;
    fs::create_directories(path, error);
    return isDirectory(path.c_str());
}

bool removeAll(const std::string& path)
{
    std::error_code error;
    fs::remove_all(path, error);
    return !error;
}

bool renameFile(const std::string& from, const std::string& to)
{
    std::error_code error;
    fs::rename(from, to, error);
    return !error;
}

// The library's recursive iterator would end the whole walk at the first directory that fails under way.
bool walk(const std::string& folder, const std::function<void(const std::string& path)>& visit)
{
    if (!isDirectory(folder.c_str()) || !isReadable(folder))
        return false;
    std::vector<std::string> pending{folder};
    while (!pending.empty()) {
        const std::string next = pending.back();
        pending.pop_back();
        std::error_code error;
        for (fs::directory_iterator entry(next, error), end; entry != end; entry.increment(error)) {
            std::error_code unknown;
            if (entry->symlink_status(unknown).type() == fs::file_type::directory)
                pending.push_back(entry->path().string());
            visit(entry->path().string());
        }
    }
    return true;
}

} // namespace Halvern::Base
