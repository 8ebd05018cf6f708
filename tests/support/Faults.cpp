#include "support/Faults.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

std::atomic<int> faults[FaultCount];
std::atomic<const char*> faultyCall;
std::atomic<const char*> faultyFolder;

namespace {

// Of the first thread only. Never destroyed: files are asked for until the process ends.
QStringList* calls = nullptr;

constexpr const char* Opened = "(opened before)"; // in place of a path

void delay()
{
    ++faults[DelayedCalls];
    const int now = ++faults[NowDelayed];
    int most = faults[MostDelayed];
    while (most < now && !faults[MostDelayed].compare_exchange_weak(most, now)) {
    }
    ::usleep(static_cast<useconds_t>(faults[CallDelay].load()));
    --faults[NowDelayed];
}

bool isFaulty(const char* name, const char* path, int file)
{
    const char* faulty = faultyCall;
    if (!faulty || (std::strcmp(name, faulty) != 0 && std::strcmp("*", faulty) != 0))
        return false;
    const char* const folder = faultyFolder;
    if (!folder)
        return true;
    char opened[PATH_MAX] = "";
    if (file >= 0) {
        const std::string link = "/proc/self/fd/" + std::to_string(file);
        ::syscall(SYS_readlinkat, AT_FDCWD, link.c_str(), opened, sizeof opened - 1);
        path = opened;
    }
    return path && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

// Whether the call is to fail, with errno set. Calls without a path are not counted.
bool fails(const char* name, const char* path, int file = -1)
{
    const bool onWorker = ::gettid() != ::getpid();
    const bool counts = path && *path;
    if (counts && onWorker)
        ++faults[Calls];
    else if (counts && calls)
        calls->append(QString::fromLatin1(name) + QLatin1Char(' ') + QString::fromLocal8Bit(path));
    if (!isFaulty(name, path, file))
        return false;
    if (onWorker && faults[CallDelay] != 0)
        delay();
    if (faults[CallError] == 0 || faults[CallPlace] < 0)
        return false;
    if (faults[CallPlace] > 0) {
        if (faults[CallPlace]-- > 1)
            return false;
        faults[CallPlace] = -1;
    }
    errno = faults[CallError];
    return true;
}

// Of this thread. This access model makes no allocation.
__attribute__((tls_model("initial-exec"))) thread_local bool canLackMemory = false;

[[maybe_unused]] bool allocationFails()
{
    if (faults[FirstAllocation] == 0 && faults[WorkerAllocation] == 0)
        return false;
    const bool onWorker = ::gettid() != ::getpid();
    auto& place = faults[onWorker ? WorkerAllocation : FirstAllocation];
    if (place == 0 || (onWorker && !canLackMemory) || --place != 0)
        return false;
    errno = ENOMEM;
    return true;
}

template <class Entry>
Entry* readName(const char* name, DIR* stream, Entry* (*next)(DIR*))
{
    canLackMemory = true;
    if (fails(name, Opened, ::dirfd(stream)))
        return nullptr;
    if (faults[MostNames] != 0 && --faults[MostNames] == 0) {
        faults[MostNames] = 1;
        errno = EIO;
        return nullptr;
    }
    Entry* entry = next(stream);
    if (entry && faults[NoTypes] != 0)
        entry->d_type = DT_UNKNOWN;
    return entry;
}

} // namespace

void endFaults()
{
    faultyCall = nullptr;
    faultyFolder = nullptr;
    for (auto& fault : faults)
        fault = 0;
}

void failCalls(const char* call, int error, int place)
{
    endFaults();
    faults[CallError] = error;
    faults[CallPlace] = place;
    faultyCall = call;
}

void delayCalls(const char* call, int microseconds)
{
    failCalls(call, 0);
    faults[CallDelay] = microseconds;
}

QStringList takeCalls()
{
    if (!calls)
        calls = new QStringList;
    return std::exchange(*calls, {});
}

// clang-format off
// NOLINTBEGIN(bugprone-macro-parentheses)
// Under a name of their own, so that the mode, which callers pass only with some flags, is a parameter like others.
#define HOOK(Result, name, parameters, body) \
    extern "C" __attribute__((visibility("default"))) Result faulty_##name parameters __asm__(#name); \
    Result faulty_##name parameters \
    { \
        static const auto next = reinterpret_cast<Result(*) parameters>(::dlsym(RTLD_NEXT, #name)); \
        body \
    }
#define CALL(Result, name, path, parameters, arguments, failed) \
    HOOK(Result, name, parameters, return fails(#name, path) ? failed : next arguments;)
CALL(int, open, path, (const char* path, int flags, mode_t mode), (path, flags, mode), -1)
CALL(int, open64, path, (const char* path, int flags, mode_t mode), (path, flags, mode), -1)
CALL(DIR*, opendir, path, (const char* path), (path), nullptr)
CALL(DIR*, fdopendir, Opened, (int file), (file), nullptr)
HOOK(dirent*, readdir, (DIR* stream), return readName("readdir", stream, next);)
HOOK(dirent64*, readdir64, (DIR* stream), return readName("readdir64", stream, next);)
CALL(int, stat, path, (const char* path, struct stat* to), (path, to), -1)
CALL(int, stat64, path, (const char* path, struct stat64* to), (path, to), -1)
CALL(int, lstat64, path, (const char* path, struct stat64* to), (path, to), -1)
CALL(int, fstatat, path, (int at, const char* path, struct stat* to, int how), (at, path, to, how), -1)
CALL(int, statx, path, (int at, const char* path, int how, unsigned what, struct statx* to), (at, path, how, what, to), -1)
CALL(int, access, path, (const char* path, int mode), (path, mode), -1)
CALL(ssize_t, readlink, path, (const char* path, char* to, size_t size), (path, to, size), -1)
CALL(char*, realpath, path, (const char* path, char* to), (path, to), nullptr)
CALL(int, rename, path, (const char* path, const char* to), (path, to), -1)
CALL(int, mkdir, path, (const char* path, mode_t mode), (path, mode), -1)
CALL(int, unlink, path, (const char* path), (path), -1)
HOOK(int, inotify_add_watch, (int queue, const char* path, unsigned events), canLackMemory = true;
     return fails("inotify_add_watch", path) ? -1 : next(queue, path, events);)
#define FILE_CALL(Result, name, parameters, arguments) \
    HOOK(Result, name, parameters, return fails(#name, nullptr, file) ? -1 : next arguments;)
FILE_CALL(ssize_t, read, (int file, void* to, size_t size), (file, to, size))
FILE_CALL(int, fsync, (int file), (file))
FILE_CALL(int, fchmod, (int file, mode_t mode), (file, mode))
FILE_CALL(int, fstat, (int file, struct stat* to), (file, to))
HOOK(int, close, (int file), const bool failed = fails("close", nullptr, file); const int error = errno;
     const int result = next(file);
     if (failed) errno = error;
     return failed ? -1 : result;)
HOOK(ssize_t, write, (int file, const void* bytes, size_t size),
     const auto left = static_cast<size_t>(faults[ShortWrites]);
     if (left != 0 && left < size)
         return next(file, bytes, size - left);
     return fails("write", nullptr, file) ? -1 : next(file, bytes, size);)
HOOK(int, pthread_create, (pthread_t* thread, const pthread_attr_t* how, void* (*run)(void*), void* with),
     return fails("pthread_create", nullptr) ? errno : next(thread, how, run, with);)
HOOK(int, closedir, (DIR* stream), canLackMemory = false; return next(stream);)

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const bool failsAllocations = false;
#else
const bool failsAllocations = true;
// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own
extern "C" void* __libc_malloc(size_t);
extern "C" void* __libc_realloc(void*, size_t);
extern "C" void* __libc_memalign(size_t, size_t);
extern "C" __attribute__((visibility("default"))) void* malloc(size_t size) { return allocationFails() ? nullptr : __libc_malloc(size); }
extern "C" __attribute__((visibility("default"))) void* realloc(void* old, size_t size) { return allocationFails() ? nullptr : __libc_realloc(old, size); }
extern "C" __attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t size) { return allocationFails() ? nullptr : __libc_memalign(alignment, size); }
// NOLINTEND(bugprone-reserved-identifier)
#endif
// NOLINTEND(bugprone-macro-parentheses)
// clang-format on
