#pragma once

#include <string>

namespace Halvern::Base {

/// Reads a whole file into @p contents. Returns 0, or the system's error number, with what was read until
/// then in @p contents. A device or pipe reads as empty.
int readFile(const std::string& path, std::string& contents);

/// Puts @p contents in the place of the file @p path, or makes it.
///
/// Whatever interrupts it, the file holds either all of the old or all of the new contents: a new file is
/// written and brought to the disk beside the old one, and then takes its name. It gets the permissions of
/// the old one and, where the system allows it, its owner and group. A symbolic link stays: the file that it
/// leads to is replaced. A device or pipe is written to as it is.
///
/// Where the system lets no other file take its place (its folder may not be written, it is mounted by
/// itself), an old file that may be written is written over instead, and an interruption of that can leave it
/// in part.
///
/// Returns 0, or the system's error number, and then the old file is there as it was, unless the disk failed
/// or, where it can't reserve space, was full while it was written over: EACCES where it may not be
/// written, ENOSPC where the disk is full.
int replaceFile(const std::string& path, const std::string& contents);

} // namespace Halvern::Base
