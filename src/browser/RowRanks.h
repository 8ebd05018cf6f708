#pragma once

#include <vector>

namespace Halvern::UI {

class FileInfo;
class NameOrder;

/// The places of rows in the order of a column, one number for each row: the lower comes first. Ranks make
/// each of the many comparisons of a sorting one of two numbers that stand close together.
namespace RowRanks {

/// Directories first, then by size and last by name. Rows that are equal have equal ranks, those whose names
/// have no rank get NameOrder::NoRank.
std::vector<int> bySize(const std::vector<FileInfo*>& rows, const NameOrder& names);
/// By modification time, rows of one time by @p places where it is not empty. Rows that are equal have equal
/// ranks; null rows get NameOrder::NoRank.
std::vector<int> byTime(const std::vector<FileInfo*>& rows, const std::vector<int>& places);

} // namespace RowRanks

} // namespace Halvern::UI
