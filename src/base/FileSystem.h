#pragma once

#include "base/Export.h"

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <type_traits>

/// The file system by names that are bytes, passed to the system unchanged. Nothing is printed and nothing
/// throws: failures are return values.
namespace Halvern::Base {

/// Makes a call to the system again as long as a signal interrupts it, and returns its last result. The call
/// fails with -1 or null. `errno` is 0 if the call did not set it: `readdir` at the end of a directory.
template <class Call>
auto uninterrupted(Call call)
{
    for (;;) {
        errno = 0;
        const auto result = call();
        bool failed = false;
        if constexpr (std::is_pointer_v<decltype(result)>)
            failed = !result;
        else
            failed = result == -1;
        if (!failed || errno != EINTR)
            return result;
    }
}

/// The folder for temporary files.
inline constexpr const char* TemporaryDirectory = "/var/tmp/";

/// What the system knows of @p name, symbolic links followed; nothing if it can't be examined. A relative
/// name is looked up in the opened directory @p folder, by default in the working directory.
HVCOREUI_EXPORT std::optional<struct stat> fileStatus(const char* name, int folder = AT_FDCWD);

/// Whether @p name is a directory or a link to one.
HVCOREUI_EXPORT bool isDirectory(const char* name, int folder = AT_FDCWD);

/// Whether this process may read the file, or list the directory.
HVCOREUI_EXPORT bool isReadable(const std::string& path);
/// Whether this process may write the file, or make files in the directory.
HVCOREUI_EXPORT bool isWritable(const std::string& path);

/// Makes a directory and those above it; true if it is there afterwards.
HVCOREUI_EXPORT bool makeDirectories(const std::string& path);
/// Removes a file, or a directory with all in it, but never what links point to. True if nothing is left.
HVCOREUI_EXPORT bool removeAll(const std::string& path);
/// Gives a file or directory another name, in one step that replaces a file of that name.
HVCOREUI_EXPORT bool renameFile(const std::string& from, const std::string& to);

/// Calls @p visit with the path of everything below @p folder, directories before what is in them, in the
/// order of the disk. Links are visited, not followed. Folders below that can't be read are skipped. False if
/// @p folder can't be read.
HVCOREUI_EXPORT bool walk(const std::string& folder,
                          const std::function<void(const std::string& path)>& visit);

} // namespace Halvern::Base
