#pragma once

#include <QString>

namespace Halvern::UI {

class FileInfo;

/// What a sequence lacks, a line each: its frames without a byte, of which the first are named, and the
/// ranges of missing frames. Empty for a sequence that lacks nothing, and for other entries. Takes time in
/// proportion to the number of frames.
/// Example: "3 frames are empty: 1007, 1012, 1013" and "Missing: 1020-1024, 1030".
QString textOfFaults(const FileInfo& info);

} // namespace Halvern::UI
