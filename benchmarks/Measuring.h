#pragma once

#include <QElapsedTimer>
#include <QString>
#include <vector>

/// What the benchmarks share.
namespace Measuring {

constexpr int FramesPerSequence = 1000;

/// Milliseconds since the timer was started.
double milliseconds(const QElapsedTimer& timer);

double median(std::vector<double> values);

/// Makes files of one byte in @p folder, "shot_000.0001.exr" and so on, in sequences of FramesPerSequence
/// frames; false where the system refuses one.
bool makeTree(const QString& folder, int files);

/// Prints the median, the least and the greatest of the values, and the median in proportion to @p baseline.
void print(const char* what, const std::vector<double>& values, double baseline);

/// Prints a value beside the most that it may be, and whether it holds; returns that. A limit of 0 stands for
/// none.
bool printVerdict(const char* what, double value, double limit);

} // namespace Measuring
