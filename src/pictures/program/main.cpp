#include "pictures/program/QtPictures.h"
#include "pictures/program/Service.h"

#include <QGuiApplication>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

using namespace Halvern::UI;

int main(int argc, char** argv)
{
    // Whatever a library prints must not get among the answers.
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    if (output < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        return 1;
    signal(SIGPIPE, SIG_IGN);
    // The application that started this program may use other plugins, and a display.
    qunsetenv("QT_PLUGIN_PATH");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);

    return serve(STDIN_FILENO, output, readWithQt) ? 0 : 1;
}
