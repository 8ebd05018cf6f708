// A program that reads pictures for the tests, and misbehaves if the name of the file says so. What it reads
// is red, 1920 x 1080 pixels large, and bears the process's number as its time code.

#include "pictures/program/Service.h"

#include <QFile>
#include <QThread>
#include <csignal>
#include <unistd.h>

using namespace Halvern::UI;
using namespace Halvern::UI::PictureProtocol;

static void send(const QByteArray& bytes)
{
    if (write(STDOUT_FILENO, bytes.constData(), size_t(bytes.size())) < 0)
        _exit(1);
}

static Answer readPicture(const Request& request)
{
    const auto named = [&](const char* word) {
        return request.path.mid(request.path.lastIndexOf('/') + 1).startsWith(word);
    };
    Answer answer;
    if (named("hang"))
        QThread::sleep(1000);
    if (named("slow"))
        QThread::msleep(400);
    if (named("die"))
        abort();
    if (named("stop"))
        raise(SIGSTOP);
    while (named("flood"))
        send(QByteArray(0x10000, '\xff'));
    if (named("chatter"))
        send(frame(answer));
    if (named("nonsense"))
        send(QByteArray("\0\0\0\3abc", 7));
    if (named("broken")) {
        answer.reason = QStringLiteral("The file is broken.");
        return answer;
    }
    answer.fullSize = QSize(1920, 1080);
    answer.size = answer.fullSize.scaled(int(request.width), int(request.height), Qt::KeepAspectRatio);
    const char pixel[] = {char(200), 0, 0, char(255)};
    for (int i = answer.size.width() * answer.size.height(); i > 0; --i)
        answer.pixels.append(named("clear") ? "\0\0\0\0" : pixel, 4);
    answer.channels = QStringList{"R", "G", "B", "A"};
    answer.depth = QStringLiteral("half float");
    answer.colourSpace = QStringLiteral("ACEScg");
    answer.timeCode = QString::number(getpid());
    answer.frameRate = 50;
    return answer;
}

int main()
{
    if (qEnvironmentVariableIsSet("FAKE_OTHER_VERSION"))
        send(QByteArray("\0\0\0\4CUPX", 8));
    return serve(STDIN_FILENO, STDOUT_FILENO, readPicture) ? 0 : 1;
}
