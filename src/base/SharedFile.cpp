#include "base/SharedFile.h"

#include "base/FileSystem.h"
#include "base/OpenFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>
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

// Gives the new file what others may do with the old one, or less. What a file system refuses stays at the
// mode that the new file was made with, which is that of a private file.
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

// Writes into the old file. Its blocks are had, and written over, before it is cut: a full disk leaves it as
// it was, if its file system can reserve space.
int overwrite(const OpenFile& file, const std::string& contents)
{
    const auto size = static_cast<off_t>(contents.size());
    if (uninterrupted([&] { return ::fallocate(file.number(), FALLOC_FL_KEEP_SIZE, 0, size); }) != 0 &&
        (errno == ENOSPC || errno == EDQUOT))
        return errno;
    const bool written = file.write(contents) &&
                         uninterrupted([&] { return ::ftruncate(file.number(), size); }) == 0 && file.flush();
    return written ? 0 : errno;
}

// Whether a file can be written over that no other file can take the place of.
bool isBoundToItsPlace(int error)
{
    return error == EACCES || error == EPERM || error == EROFS || error == EBUSY || error == EXDEV;
}

/// The two locked files of one change.
class Change
{
public:
    explicit Change(std::string path)
        : m_path(std::move(path))
        , m_newPath(folderOf(m_path) + '.' + m_path.substr(nameBegin(m_path)) + ".new")
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
    int begin();
    int openOld();
    int openNew();
    int replace(const std::string& contents);

    const std::string m_path;
    const std::string m_newPath;
    OpenFile m_old; // closed if there is no old file
    OpenFile m_new; // closed if no new file can be made
    Status m_oldStatus = {};
};

// Each try fails only because another program was quicker.
int Change::begin()
{
    constexpr int MostTries = 1000;
    for (int attempt = 0; attempt < MostTries; ++attempt) {
        int error = openOld();
        if (error == 0 && (!m_old.isOpen() || isRegular()))
            error = openNew();
        if (error != EAGAIN)
            return error;
    }
    return EAGAIN;
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
    const int error = m_old.lock();
    return error == 0 && !m_old.isNamed(m_path) ? EAGAIN : error;
}

int Change::openNew()
{
    const bool hadOld = m_old.isOpen();
    m_new = OpenFile(m_newPath, O_WRONLY | O_CREAT | O_NOFOLLOW, hadOld ? PrivateMode : NewFileMode);
    if (!m_new.isOpen())
        return hadOld && isBoundToItsPlace(errno) ? 0 : errno;
    if (const int error = m_new.lock())
        return error;
    Status status = {};
    if (!m_new.isNamed(m_newPath) || !m_new.status(status))
        return EAGAIN;
    // A process that was killed left it, perhaps for others to read.
    const bool isOpenToOthers = (status.st_mode & ~m_oldStatus.st_mode & AllPermissions) != 0;
    if (status.st_size != 0 || (hadOld && isOpenToOthers)) {
        if (::unlink(m_newPath.c_str()) == 0)
            return EAGAIN;
        const int error = errno;
        m_new.close();
        return hadOld ? 0 : error;
    }
    // Without an old file nothing was locked until now, and another program may have made one.
    if (hadOld)
        return 0;
    if (uninterrupted([&] { return ::stat(m_path.c_str(), &status); }) == 0)
        return EAGAIN;
    return errno == ENOENT ? 0 : errno;
}

int Change::run(const Edit& edit)
{
    if (const int error = begin())
        return error;
    std::string contents;
    const int readError = m_old.isOpen() ? read(m_path, contents) : ENOENT;
    const std::string before = contents;
    if (const int error = edit(readError, contents))
        return error;
    if (m_old.isOpen() && !isRegular())
        return m_old.write(contents) ? 0 : errno;
    if (readError == 0 && contents == before)
        return 0;
    return m_new.isOpen() ? replace(contents) : overwrite(m_old, contents);
}

int Change::replace(const std::string& contents)
{
    if (!m_new.write(contents))
        return errno;
    if (m_old.isOpen())
        copyPermissions(m_new, m_path, m_oldStatus);
    if (!m_new.flush())
        return errno;
    // Another program can only have taken its name if the file system has no locks.
    if (!m_new.isNamed(m_newPath))
        return EAGAIN;
    if (uninterrupted([&] { return std::rename(m_newPath.c_str(), m_path.c_str()); }) != 0) {
        const int error = errno;
        // A server may have renamed it though its answer was lost.
        if (!m_new.isNamed(m_path))
            return m_old.isOpen() && isBoundToItsPlace(error) ? overwrite(m_old, contents) : error;
    }
    const OpenFile folder(folderOf(m_path) + '.', O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.number());
    return 0;
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

int change(const std::string& path, const Edit& edit)
{
    const auto attempt = [&] {
        std::string target = path;
        const int error = followLinks(target);
        return error == 0 ? Change(target).run(edit) : error;
    };
    // What failed once may pass. Whoever waited for long has waited enough.
    const int error = attempt();
    return error == 0 || error == ETIMEDOUT ? error : attempt();
}

} // namespace Halvern::Base::SharedFile
