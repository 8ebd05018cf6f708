#include "support/Faults.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

std::atomic<int> faults[FaultCount];
std::atomic<const char*> failingCall;

namespace {

// Of the first thread only. Files are asked for before it is made and, as it is never destroyed, to the end.
QStringList* calls = nullptr;

// Whether the call is to fail, with errno set.
bool fails(const char* name, const char* path)
{
    const char* failing = failingCall;
    int error = failing && std::strcmp(name, failing) == 0 ? faults[CallError].load() : 0;
    if (::gettid() == ::getpid()) {
        if (calls && path && *path)
            calls->append(QString::fromLatin1(name) + QLatin1Char(' ') + QString::fromLocal8Bit(path));
    } else if (std::strstr(name, "stat")) {
        ++faults[Questions];
        ::usleep(static_cast<useconds_t>(faults[QuestionDelay].load()));
        error = faults[QuestionError];
    }
    if (error != 0)
        errno = error;
    return error != 0;
}

} // namespace

void endFaults()
{
    failingCall = nullptr;
    for (auto& fault : faults)
        fault = 0;
}

QStringList takeCalls()
{
    if (!calls)
        calls = new QStringList;
    return std::exchange(*calls, {});
}

// clang-format off
// NOLINTBEGIN(bugprone-macro-parentheses)
#define CALL(Result, name, path, parameters, arguments, failed) \
    extern "C" __attribute__((visibility("default"))) Result name parameters \
    { \
        static const auto next = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name)); \
        return fails(#name, path) ? failed : next arguments; \
    }
CALL(int, open, path, (const char* path, int flags, ...), (path, flags, 0600), -1)
CALL(int, open64, path, (const char* path, int flags, ...), (path, flags, 0600), -1)
CALL(DIR*, opendir, path, (const char* path), (path), nullptr)
CALL(int, stat, path, (const char* path, struct stat* to) noexcept, (path, to), -1)
CALL(int, lstat64, path, (const char* path, struct stat64* to) noexcept, (path, to), -1)
CALL(int, fstatat, path, (int at, const char* path, struct stat* to, int how) noexcept, (at, path, to, how), -1)
CALL(int, statx, path, (int at, const char* path, int how, unsigned what, struct statx* to) noexcept, (at, path, how, what, to), -1)
CALL(int, access, path, (const char* path, int mode) noexcept, (path, mode), -1)
CALL(ssize_t, readlink, path, (const char* path, char* to, size_t size) noexcept, (path, to, size), -1)
CALL(char*, realpath, path, (const char* path, char* to) noexcept, (path, to), nullptr)
CALL(int, rename, path, (const char* path, const char* to) noexcept, (path, to), -1)
CALL(int, fsync, nullptr, (int file), (file), -1)
CALL(ssize_t, write, nullptr, (int file, const void* bytes, size_t size), (file, bytes, size), -1)
// NOLINTEND(bugprone-macro-parentheses)
// clang-format on

extern "C" __attribute__((visibility("default"))) dirent* readdir(DIR* stream)
{
    static const auto next = reinterpret_cast<decltype(&::readdir)>(::dlsym(RTLD_NEXT, "readdir"));
    if (faults[MostNames] != 0 && --faults[MostNames] == 0) {
        faults[MostNames] = 1;
        errno = EIO;
        return nullptr;
    }
    dirent* entry = next(stream);
    if (entry && faults[NoTypes] != 0)
        entry->d_type = DT_UNKNOWN;
    return entry;
}
