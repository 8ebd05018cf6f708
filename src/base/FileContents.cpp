#include "base/FileContents.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Halvern::Base {

namespace {

constexpr mode_t AllPermissions = 07777;

class File
{
public:
    File(const std::string& path, int flags, mode_t mode = 0)
        : descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode))
    {
    }
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return descriptor >= 0; }
    int number() const { return descriptor; }
    /// Some file systems report a failed write only here.
    bool close()
    {
        const bool closed = descriptor < 0 || ::close(descriptor) == 0;
        descriptor = -1;
        return closed;
    }
    bool write(const std::string& contents) const
    {
        for (std::size_t done = 0; done < contents.size();) {
            const ssize_t count = ::write(descriptor, contents.data() + done, contents.size() - done);
            if (count < 0 && errno != EINTR)
                return false;
            done += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
        return true;
    }

private:
    int descriptor;
};

std::string folderOf(const std::string& path)
{
    const std::size_t separator = path.rfind('/');
    return separator == std::string::npos ? std::string() : path.substr(0, separator + 1);
}

// Follows the links that the last component is, also to a file that is not there yet.
int followLinks(std::string& path)
{
    constexpr int MostLinks = 40;
    char target[PATH_MAX];
    for (int link = 0; link < MostLinks; ++link) {
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : errno;
        const std::string to(target, static_cast<std::size_t>(length));
        path = to[0] == '/' ? to : folderOf(path).append(to);
    }
    return ELOOP;
}

bool fill(File& file, const std::string& contents, const struct stat* old)
{
    if (!file.write(contents))
        return false;
    if (old) {
        // Only the superuser gives files away; anyone may give them to a group of their own.
        const bool given = ::fchown(file.number(), old->st_uid, old->st_gid) == 0 ||
                           ::fchown(file.number(), static_cast<uid_t>(-1), old->st_gid) == 0;
        static_cast<void>(given);
        if (::fchmod(file.number(), old->st_mode & AllPermissions) != 0)
            return false;
    }
    return ::fsync(file.number()) == 0 && file.close();
}

// Writes into the old file where @p error says that no new one could take its place. Its blocks are had, and
// written over, before it is cut: a full disk leaves it as it was, if its file system can reserve space.
int overwrite(const std::string& path, const std::string& contents, int error)
{
    if (error != EACCES && error != EPERM && error != EROFS && error != EBUSY)
        return error;
    File file(path, O_WRONLY | O_NONBLOCK);
    if (!file.isOpen())
        return error;
    const auto size = static_cast<off_t>(contents.size());
    const bool full =
        ::fallocate(file.number(), FALLOC_FL_KEEP_SIZE, 0, size) != 0 && (errno == ENOSPC || errno == EDQUOT);
    const bool written = !full && file.write(contents) && ::ftruncate(file.number(), size) == 0 &&
                         ::fsync(file.number()) == 0 && file.close();
    return written ? 0 : errno;
}

// Renames a new file over the old one; null where there is no old one.
int exchange(const std::string& path, const std::string& contents, const struct stat* old)
{
    constexpr int MostTries = 100;
    const std::string prefix = folderOf(path) + ".save-" + std::to_string(::getpid()) + '-';
    // A process of this number may have been killed while it saved and have left its file behind.
    for (int number = 0; number < MostTries; ++number) {
        const std::string name = prefix + std::to_string(number);
        File file(name, O_WRONLY | O_CREAT | O_EXCL, 0666);
        if (!file.isOpen()) {
            if (errno == EEXIST)
                continue;
            return overwrite(path, contents, errno);
        }
        const bool filled = fill(file, contents, old);
        if (filled && std::rename(name.c_str(), path.c_str()) == 0) {
            const File folder(folderOf(path) + '.', O_RDONLY | O_DIRECTORY);
            if (folder.isOpen())
                ::fsync(folder.number());
            return 0;
        }
        const int error = errno;
        ::unlink(name.c_str());
        return filled ? overwrite(path, contents, error) : error;
    }
    return EEXIST;
}

} // namespace

int readFile(const std::string& path, std::string& contents)
{
    constexpr std::size_t BlockSize = 65536;
    contents.clear();
    // Without blocking: opening a pipe waits for whoever writes to it.
    File file(path, O_RDONLY | O_NONBLOCK);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return S_ISDIR(status.st_mode) ? EISDIR : 0;
    std::string block(BlockSize, '\0');
    for (;;) {
        const ssize_t count = ::read(file.number(), &block[0], block.size());
        if (count == 0)
            return 0;
        if (count > 0)
            contents.append(block, 0, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
    }
}

int replaceFile(const std::string& path, const std::string& contents)
{
    std::string target = path;
    if (const int error = followLinks(target))
        return error;
    struct stat old = {};
    if (::stat(target.c_str(), &old) != 0)
        return errno == ENOENT ? exchange(target, contents, nullptr) : errno;
    if (!S_ISREG(old.st_mode)) {
        File file(target, O_WRONLY | O_NONBLOCK | O_NOCTTY);
        return file.isOpen() && file.write(contents) && file.close() ? 0 : errno;
    }
    // Renaming asks for permission on the folder only.
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        return errno;
    return exchange(target, contents, &old);
}

} // namespace Halvern::Base
