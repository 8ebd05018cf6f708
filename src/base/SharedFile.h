#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

/// Small files that several programs, on several machines, read and write. Interrupted calls are made again.
namespace Halvern::Base::SharedFile {

/// What is larger is refused.
inline constexpr std::size_t MostBytes = 16 << 20;

/// Reads a whole file into @p contents. Returns 0, or the system's error number with @p contents empty:
/// ENOENT only if there is no such file, EFBIG for more than MostBytes. A device or pipe reads as empty.
int read(const std::string& path, std::string& contents);

/// Turns the old contents of a file into the new ones. @p error is what read() returned; @p contents holds
/// what it read, and takes what is to be written. Returns 0, or an error number to leave the file as it is.
using Edit = std::function<int(int error, std::string& contents)>;

/// Changes the file @p path, or makes it. Other programs that call change() for the same file wait from
/// before @p edit is called until the new contents are in place, @p patience at most. A process that ends
/// keeps no lock. On a file system without locks, what a killed process left is taken for its work until
/// @p patience is over.
///
/// Whatever interrupts the change, the file holds either all of the old or all of the new contents: a new
/// file, ".NAME.new", is written beside the old one, brought to the disk, and then renamed. What a process
/// that was killed leaves of it is removed by the next change. Whatever else has that name is removed. A
/// symbolic link stays: the file that it leads to is replaced. A device or pipe is written to.
///
/// The new file gets the permissions, the access list and the other attributes of the old one and, if the
/// system allows it, its owner and group. What cannot be kept makes it less accessible, never more.
///
/// If the system lets no other file take its place (its folder may not be written, it is mounted by itself),
/// an old file that may be written is written over instead. Only a crash can leave it in part: if the disk
/// fails, the old contents are put back, now or by the next change.
///
/// A change that fails is tried once more, with another call of @p edit.
///
/// Returns 0, or the error number of what failed: EACCES if the file may not be written, ENOSPC if the disk
/// is full, ETIMEDOUT if another program kept it locked. To be called by one thread of the process.
int change(const std::string& path, const Edit& edit,
           std::chrono::milliseconds patience = std::chrono::seconds(5));

} // namespace Halvern::Base::SharedFile
