#pragma once

#include "catalogue/KnownFiles.h"

#include <string>

namespace Halvern::UI {

/// What the system tells of the changes in one directory.
///
/// Not a QFileSystemWatcher: that one prints a warning with each directory that the system refuses to watch,
/// lists it every second on the thread that it lives on if the system has no inotify left, and does not tell
/// when a file was written.
class DirectoryNotices
{
public:
    static constexpr int None = -1;

    DirectoryNotices();
    ~DirectoryNotices();
    DirectoryNotices(const DirectoryNotices&) = delete;
    DirectoryNotices& operator=(const DirectoryNotices&) = delete;

    /// Can be read if there are notices; None if the system has no inotify left.
    int descriptor() const { return m_descriptor; }
    /// From now on there are notices of the directory that has this name now, and of no other. Asks the disk.
    /// Returns a number of the directory, which no other gets, or None if the system refuses. Any thread may
    /// call it, one at a time.
    int follow(const std::string& path);
    /// Takes all notices and adds the names in them to @p names. These become nothing if more than the files
    /// of these names may have changed. Any thread may call it.
    void take(ChangedNames& names) const;

private:
    const int m_descriptor;
    int m_followed = None;
};

} // namespace Halvern::UI
