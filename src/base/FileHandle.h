#pragma once

namespace Halvern::Base {

/// Names the ways in which the entries of one directory can be listed.
class FileHandle
{
public:
    /// How FileManager::buildRunningList() turns entries into rows.
    enum ListType
    {
        /// Every file on its own row, in the order in which it was read.
        AllFiles = 0,
        /// Every sequence of two or more files on one row.
        Sequences = 1,
        /// As Sequences, with one row for each run of consecutive frames.
        SplitSequences = 2,
        /// As Sequences, but only for registered sequence extensions; other numbered files keep their rows.
        RegisteredSequences = 3,
        /// As SplitSequences, with the restriction of RegisteredSequences.
        RegisteredSplitSequences = 4
    };
};

} // namespace Halvern::Base
