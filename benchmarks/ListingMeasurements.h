#pragma once

#include <QString>
#include <map>

/// The measurements of the listing benchmark, of one directory of numbered frames. Measure each kind in a
/// process of its own, so that no measurement uses the memory of another.
namespace ListingMeasurements {

/// Values by name, in milliseconds, bytes or counts.
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
///     memory     touched (the time to get the memory of the entries from the system, for any directory),
///     also
///                for every kind that begins with this
///     switch     switch (the slowest of some changes to another directory in mid-read)
///
/// Needs a QApplication. Returns nothing for an unknown kind, for a directory with another number of files,
/// and if a measurement takes too long.
Values measure(const QString& kind, const QString& folder, int files);

} // namespace ListingMeasurements
