#include "base/OpenFile.h"

#include "base/FileSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Halvern::Base {

OpenFile::OpenFile(const std::string& path, int flags, mode_t mode)
    : m_descriptor(uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); }))
{
}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_isLocked, other.m_isLocked);
    return *this;
}

bool OpenFile::status(struct stat& to) const
{
    return uninterrupted([&] { return ::fstat(m_descriptor, &to); }) == 0;
}

bool OpenFile::isNamed(const std::string& path) const
{
    struct stat own = {};
    struct stat other = {};
    return status(own) && uninterrupted([&] { return ::stat(path.c_str(), &other); }) == 0 &&
           own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

// A lock of the open file: one of the process would end when any descriptor of the file is closed.
OpenFile::Lock OpenFile::lock()
{
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    m_isLocked = uninterrupted([&] { return ::fcntl(m_descriptor, F_OFD_SETLK, &whole); }) == 0;
    if (m_isLocked)
        return Lock::Held;
    return errno == EAGAIN || errno == EACCES ? Lock::Busy : Lock::Unsupported;
}

bool OpenFile::write(const std::string& contents) const
{
    for (std::size_t done = 0; done < contents.size();) {
        const ssize_t count = uninterrupted(
            [&] { return ::write(m_descriptor, contents.data() + done, contents.size() - done); });
        if (count < 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

bool OpenFile::flush() const
{
    if (uninterrupted([&] { return ::fsync(m_descriptor); }) != 0 && errno != EINVAL && errno != ENOSYS)
        return false;
    // Some file systems report a failed write only when a descriptor is closed.
    const int copy = uninterrupted([&] { return ::fcntl(m_descriptor, F_DUPFD_CLOEXEC, 0); });
    return copy >= 0 && (::close(copy) == 0 || errno == EINTR);
}

void OpenFile::close()
{
    // A child of this process, which has the descriptor too, must not keep the lock.
    struct flock whole = {};
    whole.l_type = F_UNLCK;
    if (std::exchange(m_isLocked, false))
        ::fcntl(m_descriptor, F_OFD_SETLK, &whole);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

} // namespace Halvern::Base
