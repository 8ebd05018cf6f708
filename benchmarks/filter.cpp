// Times the filter of the file list for a letter typed into the filename field: many wildcard patterns, many
// names. The baseline has one expression for each pattern. Usage: filter-benchmark [NAMES]

#include "browser/NameFilter.h"

#include <QDir>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using Halvern::UI::NameFilter;

namespace {

std::vector<QString> makeNames(int count)
{
    std::vector<QString> names;
    names.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        names.push_back(QString::asprintf("shot_%03d_beauty.%04d.exr", i / 250, i % 250 + 1));
    return names;
}

// Only the last one matches.
QString makePatterns(const char* form, int count)
{
    QString text;
    for (int i = 0; i + 1 < count; ++i)
        text += QString::asprintf(form, i) + QLatin1Char(' ');
    return text + QStringLiteral("*.exr");
}

template <class Matches>
double millisecondsOf(const std::vector<QString>& names, Matches matches)
{
    QElapsedTimer timer;
    timer.start();
    const auto found = std::count_if(names.begin(), names.end(), matches);
    const double time = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    if (static_cast<std::size_t>(found) != names.size())
        std::abort();
    return time;
}

void measure(const char* form, int count, const std::vector<QString>& names)
{
    const QString text = makePatterns(form, count);
    QElapsedTimer timer;
    timer.start();
    const NameFilter filter(text);
    const double making = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const double time = millisecondsOf(names, [&](const QString& name) { return filter.matches(name); });

    std::vector<QRegularExpression> expressions;
    for (const QString& pattern : QDir::nameFiltersFromString(text))
        expressions.emplace_back(QRegularExpression::wildcardToRegularExpression(pattern),
                                 QRegularExpression::CaseInsensitiveOption);
    const std::vector<QString> fewer(names.begin(), names.begin() + static_cast<int>(names.size() / 100 + 1));
    const double baseline = millisecondsOf(fewer, [&](const QString& name) {
        return std::any_of(expressions.begin(), expressions.end(),
                           [&](const QRegularExpression& one) { return one.match(name).hasMatch(); });
    });
    const double all = baseline * static_cast<double>(names.size()) / static_cast<double>(fewer.size());
    std::printf("%-14s %8d %12.1f %12.1f %14.0f\n", form, count, making, time, all);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<QString> names = makeNames(argc > 1 ? std::atoi(argv[1]) : 100000);
    std::printf("%zu names, milliseconds; the baseline is extrapolated from 1 of 100 names\n", names.size());
    std::printf("%-14s %8s %12s %12s %14s\n", "patterns like", "count", "to read", "to match", "one by one");
    for (const char* form : {"*.e%05d", "take_%05d*.?xr", "*_crypto%05d*", "*.[Ee]%05d"}) {
        for (const int count : {1, 100, 250, 10000})
            measure(form, count, names);
    }
}
