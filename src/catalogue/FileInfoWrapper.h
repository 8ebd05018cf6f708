#pragma once

/// What one file-system query found out about one file: made on the worker thread, applied to an entry on the
/// GUI thread. A query that failed leaves all three at their defaults.
struct FileInfoWrapper
{
    unsigned long long size = 0;    ///< Bytes.
    bool isDirectory = false;       ///< Symbolic links are followed.
    long long modificationTime = 0; ///< Seconds since the Unix epoch.
};
