#pragma once

#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <utility>

namespace Halvern::Base {

/// A descriptor of a file, closed with the object. Interrupted calls are made again. Failures set `errno`.
class OpenFile
{
public:
    OpenFile() = default;
    /// Opens @p path. @p flags are those of `open`, @p mode is for a file that is made.
    OpenFile(const std::string& path, int flags, mode_t mode = 0);
    ~OpenFile() { close(); }
    OpenFile(OpenFile&& other) noexcept { *this = std::move(other); }
    OpenFile& operator=(OpenFile&& other) noexcept;

    bool isOpen() const { return m_descriptor >= 0; }
    int number() const { return m_descriptor; }
    bool status(struct stat& to) const;
    /// Whether @p path is a name of this very file.
    bool isNamed(const std::string& path) const;
    enum class Lock
    {
        Held,       ///< Until close(), or until the process ends.
        Busy,       ///< Another program holds it.
        Unsupported ///< The file system has no locks.
    };
    Lock lock();
    bool write(const std::string& contents) const;
    /// Brings what was written to the disk; false if that failed. The lock stays.
    bool flush() const;
    void close();

private:
    int m_descriptor = -1;
    bool m_isLocked = false;
};

} // namespace Halvern::Base
