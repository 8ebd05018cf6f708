#include "Measuring.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <numeric>
#include <unistd.h>

namespace Measuring {

namespace {

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

long long sum(const QByteArrayList& numbers)
{
    return std::accumulate(
        numbers.begin(), numbers.end(), 0LL,
        [](long long total, const QByteArray& number) { return total + number.toLongLong(); });
}

/// Processor time in ticks since the machine was started.
struct ProcessorTime
{
    long long all = 0; ///< of all programs, and what a virtual machine did not get
    long long ours =
        0; ///< of this process group: the benchmark, its children, and an X server started with it

    static ProcessorTime now()
    {
        ProcessorTime time;
        const QByteArrayList cpu =
            contents(QStringLiteral("/proc/stat")).split('\n').first().simplified().split(' ');
        // user, nice, system, then idle and waiting for disks, then interrupts (2) and time stolen
        time.all = sum(cpu.mid(1, 3)) + sum(cpu.mid(6, 3));
        const QDir processes(QStringLiteral("/proc"), QStringLiteral("[0-9]*"));
        for (const QString& process : processes.entryList(QDir::Dirs)) {
            const QByteArray stat = contents(processes.filePath(process + QStringLiteral("/stat")));
            // The name of the program, in brackets, may have blanks.
            const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
            if (fields.value(2).toInt() == ::getpgrp())
                time.ours += sum(fields.mid(11, 4)); // with that of children that have ended
        }
        return time;
    }
};

/// Runs from the start of the program.
struct Run
{
    Run() { timer.start(); }

    QElapsedTimer timer;
    ProcessorTime begin = ProcessorTime::now();
};

const Run run;

// How many cores other programs used since the start of this one, on average.
double coresOfOthers()
{
    const ProcessorTime end = ProcessorTime::now();
    const double ticks = milliseconds(run.timer) / 1000 * static_cast<double>(::sysconf(_SC_CLK_TCK));
    return static_cast<double>((end.all - run.begin.all) - (end.ours - run.begin.ours)) / ticks;
}

} // namespace

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

bool printVerdict(const char* what, double value, double limit, Kind kind)
{
    constexpr double OtherLoad = 0.25; // cores
    if (limit == 0) {
        std::printf("%-62s %9.2f %9s\n", what, value, "-");
        return true;
    }
    std::printf("%-62s %9.2f %9.2f  ", what, value, limit);
    const bool holds = value <= limit;
    const double others = holds || kind == Kind::Count ? 0 : coresOfOthers();
    if (others > OtherLoad)
        std::printf("measured beside other load (%.1f cores)\n", others);
    else
        std::puts(holds ? "holds" : "MISSED");
    return holds || others > OtherLoad;
}

} // namespace Measuring
