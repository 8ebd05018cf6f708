#include "Measuring.h"

#include <QFile>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace Measuring {

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool makeTree(const QString& folder, int files)
{
    const int directory = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < files; ++i) {
        const QByteArray name =
            QString::asprintf("shot_%03d.%04d.exr", i / FramesPerSequence, i % FramesPerSequence + 1)
                .toLatin1();
        const int file = ::openat(directory, name.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        if (file < 0 || ::ftruncate(file, 1) != 0)
            return false;
        ::close(file);
    }
    return ::close(directory) == 0;
}

void print(const char* what, const std::vector<double>& values, double baseline)
{
    const double middle = median(values);
    std::printf("%-52s %9.1f %9.1f %9.1f %8.2f\n", what, middle,
                *std::min_element(values.begin(), values.end()),
                *std::max_element(values.begin(), values.end()), middle / baseline);
}

bool printVerdict(const char* what, double value, double limit)
{
    const bool holds = limit == 0 || value <= limit;
    if (limit == 0)
        std::printf("%-62s %9.2f %9s\n", what, value, "-");
    else
        std::printf("%-62s %9.2f %9.2f  %s\n", what, value, limit, holds ? "holds" : "MISSED");
    return holds;
}

} // namespace Measuring
