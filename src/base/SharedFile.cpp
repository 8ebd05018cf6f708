#include "base/SharedFile.h"

#include "base/FileSystem.h"
#include "base/OpenFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits.h>
#include <map>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Halvern::Base::SharedFile {

namespace {

using Status = struct stat;

constexpr mode_t AllPermissions = 07777;
constexpr mode_t NewFileMode = 0666;
constexpr mode_t PrivateMode = 0600;

std::size_t nameBegin(const std::string& path)
{
    const std::size_t separator = path.rfind('/');
    return separator == std::string::npos ? 0 : separator + 1;
}

std::string folderOf(const std::string& path)
{
    return path.substr(0, nameBegin(path));
}

// Follows the links that the last component is, also to a file that is not there yet.
int followLinks(std::string& path)
{
    constexpr int MostLinks = 40;
    char target[PATH_MAX];
    for (int link = 0; link < MostLinks; ++link) {
        const ssize_t length = uninterrupted([&] { return ::readlink(path.c_str(), target, sizeof target); });
        if (length < 0)
            return errno == EINVAL || errno == ENOENT ? 0 : errno;
        const std::string to(target, static_cast<std::size_t>(length));
        path = to[0] == '/' ? to : folderOf(path).append(to);
    }
    return ELOOP;
}

// False if the file system keeps an access list that the new file does not get.
bool copyAttributes(const std::string& from, int to)
{
    bool complete = true;
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t length = ::listxattr(from.c_str(), names.data(), names.size());
    if (length < 0 && errno != ENOTSUP && errno != ENOSYS)
        return false;
    names.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    std::string value(XATTR_SIZE_MAX, '\0');
    for (std::size_t at = 0; at < names.size(); at += std::char_traits<char>::length(&names[at]) + 1) {
        const char* const name = &names[at];
        // The system's own, which may depend on the contents.
        if (std::string(name).rfind("security.", 0) == 0)
            continue;
        const ssize_t size = ::getxattr(from.c_str(), name, value.data(), value.size());
        const bool copied =
            size >= 0 && ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(size), 0) == 0;
        complete = complete && (copied || std::string(name).find("acl") == std::string::npos);
    }
    return complete;
}

// Gives the new file the permissions of the old one, or fewer. If the file system refuses, it stays private.
void copyPermissions(const OpenFile& file, const std::string& path, const Status& old)
{
    constexpr mode_t GroupRights = 02070;
    mode_t mode = old.st_mode & AllPermissions;
    const auto give = [&](uid_t owner, gid_t group) {
        return uninterrupted([&] { return ::fchown(file.number(), owner, group); }) == 0;
    };
    // Only the superuser gives files away; anyone may give them to a group of their own.
    const bool sameOwner = give(old.st_uid, old.st_gid);
    if (!sameOwner)
        mode &= ~static_cast<mode_t>(S_ISUID);
    if (!sameOwner && !give(static_cast<uid_t>(-1), old.st_gid))
        mode &= ~GroupRights;
    // The rights of the group bound those of the access list. Without the list they would be the group's own.
    if (!copyAttributes(path, file.number()))
        mode &= ~GroupRights;
    const bool given = uninterrupted([&] { return ::fchmod(file.number(), mode); }) == 0;
    static_cast<void>(given);
}

// Writes over the file, with its blocks reserved first if possible, so that a full disk leaves it as it was.
bool writeOver(const OpenFile& file, const std::string& contents)
{
    const auto size = static_cast<off_t>(contents.size());
    const bool isFull =
        uninterrupted([&] { return ::fallocate(file.number(), FALLOC_FL_KEEP_SIZE, 0, size); }) != 0 &&
        (errno == ENOSPC || errno == EDQUOT);
    return !isFull && ::lseek(file.number(), 0, SEEK_SET) == 0 && file.write(contents) &&
           uninterrupted([&] { return ::ftruncate(file.number(), size); }) == 0 && file.flush();
}

// Whether a file can be written over that no other file can take the place of.
bool isBoundToItsPlace(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EXDEV;
}

// Contents of files before they were written over in part, by path. The next change begins with them.
std::map<std::string, std::string>& interruptedFiles()
{
    static std::map<std::string, std::string> files;
    return files;
}

using Clock = std::chrono::steady_clock;

/// One change with its two files: the old one, and the new one that takes its place. Other programs are kept
/// away by a lock of the old file, and by the name of the new one, which only one program can make.
class Change
{
public:
    Change(std::string path, Clock::time_point deadline)
        : m_path(std::move(path))
        , m_newPath(folderOf(m_path) + '.' + m_path.substr(nameBegin(m_path)) + ".new")
        , m_deadline(deadline)
    {
    }
    ~Change()
    {
        if (m_new.isOpen() && m_new.isNamed(m_newPath))
            ::unlink(m_newPath.c_str());
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

    int run(const Edit& edit);

private:
    bool isRegular() const { return S_ISREG(m_oldStatus.st_mode); }
    bool hasTime() const { return Clock::now() < m_deadline; }
    int begin();
    int openOld();
    int openNew();
    int removeLeft();
    int replace(const std::string& before, const std::string& contents);
    int overwrite(const std::string& before, const std::string& contents);

    const std::string m_path;
    const std::string m_newPath;
    const Clock::time_point m_deadline;
    OpenFile m_old; // closed if there is no old file
    OpenFile m_new; // closed if no new file can be made
    Status m_oldStatus = {};
};

// EAGAIN says that another program was quicker.
int Change::begin()
{
    constexpr auto Pause = std::chrono::milliseconds(5);
    constexpr auto Grace = std::chrono::seconds(1); // to begin after something was removed
    for (;;) {
        int error = openOld();
        if (error == 0 && (!m_old.isOpen() || isRegular()))
            error = openNew();
        if (error != EAGAIN)
            return error;
        if (Clock::now() > m_deadline + Grace)
            return ETIMEDOUT;
        m_new.close();
        m_old.close();
        std::this_thread::sleep_for(Pause);
    }
}

int Change::openOld()
{
    m_old = OpenFile(m_path, O_WRONLY | O_NONBLOCK);
    if (!m_old.isOpen())
        return errno == ENOENT ? 0 : errno;
    if (!m_old.status(m_oldStatus))
        return errno;
    if (!isRegular())
        return 0;
    if (m_old.lock() == OpenFile::Lock::Busy)
        return hasTime() ? EAGAIN : ETIMEDOUT;
    return m_old.isNamed(m_path) ? 0 : EAGAIN;
}

int Change::openNew()
{
    const bool hadOld = m_old.isOpen();
    const int error = [&] {
        m_new = OpenFile(m_newPath, O_WRONLY | O_CREAT | O_EXCL, hadOld ? PrivateMode : NewFileMode);
        if (!m_new.isOpen())
            return errno == EEXIST ? removeLeft() : errno;
        m_new.lock();
        // Before it was locked, another program may have taken it for one that was left.
        return m_new.isNamed(m_newPath) ? 0 : EAGAIN;
    }();
    if (error != 0)
        return hadOld && isBoundToItsPlace(error) ? 0 : error;
    // Without an old file nothing was locked until now, and another program may have made one.
    Status status = {};
    if (hadOld)
        return 0;
    if (uninterrupted([&] { return ::stat(m_path.c_str(), &status); }) == 0)
        return EAGAIN;
    return errno == ENOENT ? 0 : errno;
}

// Removes what has the name of the new file, unless a program that runs is working on it: what can be locked
// was left by a killed program, and so was, after a while, what has no lock.
int Change::removeLeft()
{
    Status status = {};
    if (::lstat(m_newPath.c_str(), &status) != 0)
        return errno == ENOENT ? EAGAIN : errno;
    if (S_ISREG(status.st_mode)) {
        OpenFile left(m_newPath, O_WRONLY | O_NOFOLLOW | O_NONBLOCK);
        const OpenFile::Lock lock = left.isOpen() ? left.lock() : OpenFile::Lock::Unsupported;
        if (lock != OpenFile::Lock::Held && hasTime())
            return EAGAIN;
        if (lock == OpenFile::Lock::Busy)
            return ETIMEDOUT;
        if (left.isOpen() && !left.isNamed(m_newPath))
            return EAGAIN;
    }
    return ::unlink(m_newPath.c_str()) == 0 || errno == ENOENT ? EAGAIN : errno;
}

int Change::run(const Edit& edit)
{
    if (const int error = begin())
        return error;
    std::string contents;
    int readError = m_old.isOpen() ? read(m_path, contents) : ENOENT;
    if (const auto interrupted = interruptedFiles().find(m_path); interrupted != interruptedFiles().end()) {
        contents = interrupted->second;
        readError = 0;
    }
    const std::string before = contents;
    if (const int error = edit(readError, contents))
        return error;
    if (m_old.isOpen() && !isRegular())
        return m_old.write(contents) ? 0 : errno;
    if (readError == 0 && contents == before && interruptedFiles().count(m_path) == 0)
        return 0;
    const int error = m_new.isOpen() ? replace(before, contents) : overwrite(before, contents);
    if (error == 0)
        interruptedFiles().erase(m_path);
    return error;
}

int Change::replace(const std::string& before, const std::string& contents)
{
    if (!m_new.write(contents))
        return errno;
    if (m_old.isOpen())
        copyPermissions(m_new, m_path, m_oldStatus);
    if (!m_new.flush())
        return errno;
    if (uninterrupted([&] { return std::rename(m_newPath.c_str(), m_path.c_str()); }) != 0) {
        const int error = errno;
        // A server may have renamed it though its answer was lost.
        if (!m_new.isNamed(m_path))
            return m_old.isOpen() && isBoundToItsPlace(error) ? overwrite(before, contents) : error;
    }
    const OpenFile folder(folderOf(m_path) + '.', O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.number());
    return 0;
}

int Change::overwrite(const std::string& before, const std::string& contents)
{
    if (writeOver(m_old, contents))
        return 0;
    const int error = errno;
    if (!writeOver(m_old, before))
        interruptedFiles()[m_path] = before;
    return error;
}

} // namespace

int read(const std::string& path, std::string& contents)
{
    constexpr std::size_t BlockSize = 65536;
    contents.clear();
    // Without blocking: opening a pipe waits for whoever writes to it.
    const OpenFile file(path, O_RDONLY | O_NONBLOCK);
    Status status = {};
    if (!file.isOpen() || !file.status(status))
        return errno;
    if (!S_ISREG(status.st_mode))
        return S_ISDIR(status.st_mode) ? EISDIR : 0;
    std::string text;
    std::string block(BlockSize, '\0');
    while (text.size() <= MostBytes) {
        const ssize_t count =
            uninterrupted([&] { return ::read(file.number(), block.data(), block.size()); });
        if (count < 0)
            return errno;
        if (count == 0) {
            contents = std::move(text);
            return 0;
        }
        text.append(block, 0, static_cast<std::size_t>(count));
    }
    return EFBIG;
}

int change(const std::string& path, const Edit& edit, std::chrono::milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    const auto attempt = [&] {
        std::string target = path;
        const int error = followLinks(target);
        return error == 0 ? Change(target, deadline).run(edit) : error;
    };
    // What failed once may pass.
    const int error = attempt();
    return error == 0 || error == ETIMEDOUT ? error : attempt();
}

} // namespace Halvern::Base::SharedFile
