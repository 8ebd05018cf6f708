#pragma once

#include <QString>
#include <map>

/// What the listing benchmark measures of one directory of numbered frames. Each kind is to be measured in a
/// process of its own, so that none finds the memory of another.
namespace ListingMeasurements {

/// Names of values: milliseconds, but for bytes and counts.
using Values = std::map<QString, double>;

/// The kinds:
///
///     system     names (readdir into strings), attributes (that and fstatat of each)
///     qt         attributes (QFileSystemModel with a QTreeView)
///     collapsed  rows, attributes (all are right), turn (the longest time away from the event loop), bytes
///                (peak memory for each file beyond its record and its name record), and again-rows and
///                again-attributes of a second read, which has its memory already
///     expanded   rows, attributes, turn and bytes with a row for each file, key (the slowest of some keys
///                typed in the filename field, until the list is painted), entries (that a second read made
///                newly)
///     memory     touched (to have the memory of the entries alone from the system, whatever the directory);
///                so does every kind that begins with this
///     switch     switch (the slowest of some changes to another directory in mid-read)
///
/// Needs a QApplication. An unknown kind, a directory of another number of files and a measurement that came
/// to no end give nothing.
Values measure(const QString& kind, const QString& folder, int files);

} // namespace ListingMeasurements
