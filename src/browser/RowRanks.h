#pragma once

#include <vector>

namespace Halvern::UI {

class FileInfo;

/// The places of rows in the order of a column, one number for each row: the lower comes first, rows that are
/// equal have equal ranks. Sorting compares every row with many others; ranks make each of these comparisons
/// one of two numbers that stand close together, where the entries are kilobytes apart.
namespace RowRanks {

/// What has no rank: null rows, and entries whose names cannot be ordered by their sort keys.
constexpr int None = -1;

/// Whether the sort keys of two entries decide their order by name: both names are shorter than 129 bytes.
bool isKeyed(const FileInfo& info);

/// By sort key.
std::vector<int> byName(const std::vector<FileInfo*>& rows);
/// Directories first, then by size and last by @p names, which are the ranks by name.
std::vector<int> bySize(const std::vector<FileInfo*>& rows, const std::vector<int>& names);
/// By modification time.
std::vector<int> byTime(const std::vector<FileInfo*>& rows);

} // namespace RowRanks

} // namespace Halvern::UI
