#include "pictures/program/Pictures.h"
#include "pictures/program/Service.h"
#ifdef COREUI_WITH_OPENIMAGEIO
#include <OpenImageIO/imageio.h>
#endif

#include <QGuiApplication>
#include <QScopeGuard>
#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

using namespace Halvern::UI;

// Limits the address space to COREUI_PICTURES_MEMORY megabytes, 4096 by default, so that a damaged or huge
// file cannot take the memory of the machine. 0 is no limit. A crash leaves no file.
static void limitMemory()
{
    const rlimit none = {};
    setrlimit(RLIMIT_CORE, &none);
    bool isNumber = false;
    const int chosen = qEnvironmentVariableIntValue("COREUI_PICTURES_MEMORY", &isNumber);
    const rlim_t megabytes = isNumber && chosen >= 0 ? rlim_t(chosen) : 4096;
    rlimit limit = {};
    if (megabytes == 0 || getrlimit(RLIMIT_AS, &limit) != 0)
        return;
    limit.rlim_cur = std::min(limit.rlim_max, megabytes << 20);
    setrlimit(RLIMIT_AS, &limit);
}

// Reading shares the processors with an application that shows what was read.
static void yieldToApplication()
{
    constexpr int niceness = 5; // more than that of the application
    setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) + niceness);
}

// Stacks and heaps of threads count as address space, on a machine with many cores too.
static void limitThreads()
{
#ifdef COREUI_WITH_OPENIMAGEIO
    const int threads = std::clamp(int(std::thread::hardware_concurrency()), 1, 16);
    OIIO::attribute("threads", threads);
    OIIO::attribute("exr_threads", threads);
#endif
    mallopt(M_ARENA_MAX, 4);
}

// Ends this program if a damaged file keeps a library in an endless loop, and the application does not.
static PictureProtocol::Answer readInTime(const PictureProtocol::Request& request)
{
    alarm(request.timeLimit / 1000 + 2);
    const auto stop = qScopeGuard([] { alarm(0); });
    return readPicture(request);
}

int main(int argc, char** argv)
{
    // What a library prints must not get among the answers.
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (output < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        return 1;
    signal(SIGPIPE, SIG_IGN);
    // A picture goes through in two or three pieces. The system may refuse it, which only takes longer.
    fcntl(output, F_SETPIPE_SZ, 1 << 20);
    limitMemory();
    limitThreads();
    yieldToApplication();
    // The application that started this program may have plugins of another Qt, and a display. Fonts need
    // neither.
    qunsetenv("QT_PLUGIN_PATH");
    qputenv("QT_QPA_PLATFORM", "minimal:enable_fonts");
    const QGuiApplication application(argc, argv);
    return serve(STDIN_FILENO, output, readInTime) ? 0 : 1;
}
