#pragma once

#include <QElapsedTimer>
#include <QString>
#include <vector>

/// Shared by the benchmarks.
namespace Measuring {

constexpr int FramesPerSequence = 1000;

/// Milliseconds since the timer was started.
double milliseconds(const QElapsedTimer& timer);

double median(std::vector<double> values);

/// Makes files of one byte in @p folder, "shot_000.0001.exr" and so on, in sequences of FramesPerSequence
/// frames. False if that fails.
bool makeTree(const QString& folder, int files);

/// Prints the median, the least and the greatest of the values, and the median divided by @p baseline.
void print(const char* what, const std::vector<double>& values, double baseline);

enum class Kind
{
    Time, ///< a time, or a ratio of two: depends on what else the machine does
    Count ///< bytes or a number of things
};

/// Prints a value, its limit and whether the value is within the limit, and returns that. 0 means no limit.
/// If other programs used more than a quarter of a core since the program started, a time above its limit
/// says nothing: "measured beside other load" is printed, and true is returned.
bool printVerdict(const char* what, double value, double limit, Kind kind = Kind::Time);

} // namespace Measuring
