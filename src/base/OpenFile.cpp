#include "base/OpenFile.h"

#include "base/FileSystem.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Halvern::Base {

OpenFile::OpenFile(const std::string& path, int flags, mode_t mode)
    : m_descriptor(uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); }))
{
}

OpenFile::OpenFile(OpenFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

OpenFile& OpenFile::operator=(OpenFile&& other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
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

int OpenFile::lock() const
{
    constexpr auto Patience = std::chrono::seconds(5);
    constexpr auto Pause = std::chrono::milliseconds(5);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    const auto deadline = std::chrono::steady_clock::now() + Patience;
    while (uninterrupted([&] { return ::fcntl(m_descriptor, F_OFD_SETLK, &whole); }) != 0) {
        if (errno != EAGAIN && errno != EACCES)
            return 0;
        if (std::chrono::steady_clock::now() >= deadline)
            return ETIMEDOUT;
        std::this_thread::sleep_for(Pause);
    }
    return 0;
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
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

} // namespace Halvern::Base
