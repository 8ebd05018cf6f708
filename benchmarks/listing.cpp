// Times how long a directory of numbered frames takes to be shown, beside the system calls alone and beside
// Qt's own model, all in one run. Prints whether each value is within its limit. Usage:
//
//     listing-benchmark [ROUNDS [FILES]]                makes its trees in the working directory
//     listing-benchmark --measure KIND FOLDER FILES     one measurement of an existing tree
//
// If the environment has LISTING_WATCHED, the browsers watch their folder.
//
// The first form runs the second one for every value. Use the second form with a profiler.

#include "ListingMeasurements.h"
#include "Measuring.h"
#include "browser/FileBrowser.h"

#include <QApplication>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

using namespace Measuring;
using ListingMeasurements::Values;

namespace {

constexpr int TypingFiles = 10000;
constexpr int ManyFiles = 100000;
constexpr int MostFiles = 1000000;

/// A limit; 0 for none.
struct Limits
{
    double rows;
    double attributes;
    double attributesBesideQt;
    double turn;
    double expandedTurn;
    double key;
    double bytes;
};

constexpr Limits LimitsForMany = {3, 1.5, 0.33, 50, 120, 100, 300};
constexpr Limits LimitsForMost = {3.5, 1.6, 0.12, 100, 0, 0, 300};

/// All values of one size for every round, under names like "collapsed rows".
using Rounds = std::map<QString, std::vector<double>>;

bool measure(const QString& kind, const QString& folder, int files, Rounds& rounds)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--measure"), kind, folder, QString::number(files)});
    process.waitForFinished(-1);
    bool any = false;
    for (const QByteArray& line : process.readAllStandardOutput().split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() != 2)
            continue;
        rounds[kind + QLatin1Char(' ') + QString::fromLatin1(words[0])].push_back(words[1].toDouble());
        any = true;
    }
    if (!any)
        std::fprintf(stderr, "listing-benchmark: no %s of %d files\n", qPrintable(kind), files);
    return any;
}

bool measureTree(int files, int rounds, const QStringList& kinds, Rounds& values)
{
    const QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/listing-XXXXXX"));
    if (!tree.isValid() || !makeTree(tree.path(), files)) {
        std::fprintf(stderr, "listing-benchmark: cannot make %d files below the working directory\n", files);
        return false;
    }
    // Synchronise first: writing a million new files to the disk would disturb the measurements.
    ::sync();
    for (int round = 0; round < rounds; ++round) {
        for (const QString& kind : kinds) {
            if (!measure(kind, tree.path(), files, values))
                return false;
        }
    }
    return true;
}

double middle(const Rounds& values, const char* name)
{
    const auto found = values.find(QLatin1String(name));
    return found == values.end() ? NAN : median(found->second);
}

void printValues(const Rounds& values)
{
    std::printf("%-30s %11s %11s %11s\n", "measured (ms, bytes, counts)", "median", "least", "most");
    for (const auto& [name, all] : values)
        std::printf("%-30s %11.2f %11.2f %11.2f\n", qPrintable(name), median(all),
                    *std::min_element(all.begin(), all.end()), *std::max_element(all.begin(), all.end()));
}

bool judge(const Rounds& values, const Limits& limits)
{
    const auto of = [&values](const char* name) { return middle(values, name); };
    std::printf("\n%-62s %9s %9s\n", "judged", "value", "limit");
    bool holds =
        printVerdict("rows collapsed / readdir", of("collapsed rows") / of("system names"), limits.rows);
    holds &= printVerdict("attributes collapsed / readdir + fstatat",
                          of("collapsed attributes") / of("system attributes"), limits.attributes);
    holds &= printVerdict("attributes collapsed / QFileSystemModel with QTreeView",
                          of("collapsed attributes") / of("qt attributes"), limits.attributesBesideQt);
    holds &= printVerdict("longest turn collapsed, ms", of("collapsed turn"), limits.turn);
    holds &= printVerdict("longest turn, a file on each row, ms", of("expanded turn"), limits.expandedTurn);
    holds &= printVerdict("key typed, a file on each row, ms", of("expanded key"), limits.key);
    holds &= printVerdict("bytes of memory for each file beyond its records, collapsed",
                          of("collapsed bytes"), limits.bytes, Kind::Count);
    holds &= printVerdict("the same, a file on each row", of("expanded bytes"), limits.bytes, Kind::Count);
    holds &= printVerdict("entries newly made by a second read", of("expanded entries"), 0.5, Kind::Count);
    return holds;
}

bool judgeGrowth(const Rounds& many, const Rounds& most)
{
    constexpr double LargestGrowth = 12;
    std::printf("\n%-62s %9s %9s\n", "growth from 100,000 to 1,000,000 files", "value", "limit");
    bool holds = true;
    for (const char* name : {"collapsed rows", "collapsed attributes", "collapsed turn", "expanded rows",
                             "expanded attributes", "expanded turn", "expanded key"})
        holds &= printVerdict(name, middle(most, name) / middle(many, name), LargestGrowth);
    return holds;
}

int printTable(int rounds, int most)
{
    // A virtual machine gives idle memory back to its host. Touching as much memory before a listing gets it
    // back, so the listing does not include that time.
    const QStringList kinds = {QStringLiteral("system"),    QStringLiteral("memory"),
                               QStringLiteral("collapsed"), QStringLiteral("memory-again"),
                               QStringLiteral("expanded"),  QStringLiteral("qt")};
    Rounds few;
    if (!measureTree(TypingFiles, rounds, {QStringLiteral("expanded")}, few))
        return 2;
    bool holds = printVerdict("key typed, 10,000 rows, ms", middle(few, "expanded key"), 16);
    Rounds many;
    if (!measureTree(ManyFiles, rounds, kinds, many))
        return 2;
    std::printf("\n%d files, %d rounds\n", ManyFiles, rounds);
    printValues(many);
    holds &= judge(many, LimitsForMany);
    std::fflush(stdout);
    if (most < MostFiles)
        return holds ? 0 : 1;
    Rounds all;
    if (!measureTree(MostFiles, rounds, kinds + QStringList(QStringLiteral("switch")), all))
        return 2;
    std::printf("\n%d files, %d rounds\n", MostFiles, rounds);
    printValues(all);
    holds &= judge(all, LimitsForMost);
    holds &= printVerdict("leaving in mid-read, ms", middle(all, "switch switch"), 20);
    holds &= judgeGrowth(many, all);
    return holds ? 0 : 1;
}

int printMeasurement(int argc, char** argv)
{
    const QTemporaryDir settings;
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(settings.path()));
    const QApplication application(argc, argv);
    Halvern::UI::FileBrowser::SetPreferencesPath(settings.path() + QStringLiteral("/favorites"),
                                                 QStringLiteral("benchmark"));
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    const Values values = ListingMeasurements::measure(QString::fromLocal8Bit(argv[2]),
                                                       QString::fromLocal8Bit(argv[3]), std::atoi(argv[4]));
    for (const auto& [name, value] : values)
        std::printf("%s %.3f\n", qPrintable(name), value);
    return values.empty() ? 2 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 5 && qstrcmp(argv[1], "--measure") == 0)
        return printMeasurement(argc, argv);
    const QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    const int files = argc > 2 ? std::atoi(argv[2]) : MostFiles;
    if (rounds < 1 || (files != ManyFiles && files != MostFiles)) {
        std::fprintf(stderr, "usage: listing-benchmark [ROUNDS [%d or %d]]\n", ManyFiles, MostFiles);
        return 2;
    }
    return printTable(rounds, files);
}
