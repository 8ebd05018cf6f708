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

/// Prints a value, its limit and whether the value is within the limit, and returns that. 0 means no limit.
bool printVerdict(const char* what, double value, double limit);

} // namespace Measuring
