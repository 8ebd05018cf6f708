#include "paths/Filename.h"

#include "base/FileSystem.h"
#include "base/Text.h"
#include "paths/Glob.h"

#include <QFile>
#include <QString>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

using Halvern::Base::startsWith;

namespace {

/// The status of @p name, asked for again only after another name; null if it can't be examined.
const struct stat* examine(const char* name)
{
    static std::optional<std::string> lastName;
    static std::optional<struct stat> status;
    if (!name)
        return nullptr;
    if (lastName != name) {
        lastName = name;
        const QByteArray encoded = QFile::encodeName(QString::fromUtf8(name));
        status = Halvern::Base::fileStatus(encoded.constData());
        // A name that is not UTF-8, or not expressible in the locale, is still a name on disk.
        if (!status && encoded != name)
            status = Halvern::Base::fileStatus(name);
    }
    return status ? &*status : nullptr;
}

int writeText(char* to, int size, const std::string& text)
{
    return static_cast<int>(Halvern::Base::copyTruncated(to, static_cast<std::size_t>(size), text.c_str()));
}

int writeJoined(char* to, int size, std::string base, std::string_view rest)
{
    base.resize(std::min(base.size(), static_cast<std::size_t>(std::max(size - 2, 0))));
    if (base.empty() || base.back() != '/')
        base += '/';
    base += rest;
    return writeText(to, size, base);
}

void cutToPreviousSeparator(std::string& base)
{
    const std::size_t separator = base.rfind('/');
    base.resize(separator == std::string::npos ? 0 : separator);
}

std::string workingDirectory()
{
    if (const char* logical = std::getenv("PWD"))
        return logical;
    const std::unique_ptr<char, decltype(&std::free)> physical(::getcwd(nullptr, 0), &std::free);
    return physical ? std::string(physical.get()) : std::string();
}

} // namespace

const char* filename_name(const char* path)
{
    const char* separator = path ? std::strrchr(path, '/') : nullptr;
    return separator ? separator + 1 : path;
}

int filename_absolute(char* to, int size, const char* from, const char* cwd)
{
    if (!to || size < 1)
        return 0;
    // The buffers may be the same, so nothing is written before the text is complete.
    std::string_view rest(from ? from : "");
    if (startsWith(rest, "/"))
        return writeText(to, size, std::string(rest));

    std::string base;
    if (cwd) {
        base = cwd;
    } else if (startsWith(rest, "~")) {
        const char* home = std::getenv("HOME");
        if (!home)
            return writeText(to, size, std::string(rest));
        base = home;
        if (base.empty())
            return writeJoined(to, size, base, rest);
        if (rest == "~")
            return writeJoined(to, size, base, {});
        if (startsWith(rest, "~/")) {
            rest.remove_prefix(2);
        } else {
            cutToPreviousSeparator(base);
            rest.remove_prefix(1);
        }
    } else {
        base = workingDirectory();
    }

    for (;;) {
        if (startsWith(rest, "./")) {
            rest.remove_prefix(2);
        } else if (startsWith(rest, "../") && !base.empty()) {
            cutToPreviousSeparator(base);
            rest.remove_prefix(3);
        } else {
            break;
        }
    }
    return writeJoined(to, size, base, rest);
}

bool filename_match(const char* name, const char* pattern)
{
    return name && pattern && globMatches(name, pattern);
}

bool filename_isdir(const char* name)
{
    const struct stat* status = examine(name);
    return status && S_ISDIR(status->st_mode);
}

bool filename_exists(const char* name)
{
    return name && *name && examine(name);
}

std::int64_t filename_size(const char* name)
{
    const struct stat* status = examine(name);
    return status ? status->st_size : 0;
}

std::int64_t filename_mtime(const char* name)
{
    const struct stat* status = examine(name);
    if (!status)
        return 0;
    if (status->st_mtime != 0)
        return status->st_mtime;
    return status->st_atime != 0 ? status->st_atime : status->st_ctime;
}
