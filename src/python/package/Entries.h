#pragma once

#include "python/Conversions.h"

#include <QDir>
#include <new>
#include <vector>

namespace Halvern::UI {
class FileInfo;
} // namespace Halvern::UI

/// What the Python package asks about folders, names and frames. Each answer is made of Python's own values,
/// so that it lives without the library's entries. The rules of python/Conversions.h hold.
///
/// A row is the tuple (name, is_directory, is_sequence, runs, padding, size, modified, names). Runs are
/// triples of first frame, last frame and step, one after the other in one tuple. Names are decoded as Python
/// decodes file names.
namespace Python {

/// The answer of @p call, or null with a Python error if there was no memory for it.
template <class Call>
PyObject* guarded(Call call)
{
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return PyErr_NoMemory();
    }
}

/// Reads a folder and returns a list of its rows without "." and "..", in the order of their names. A
/// sequence has the names of its files, by frame. Raises OSError if the folder cannot be read. Other Python
/// threads run meanwhile.
PyObject* listDirectory(PyObject* path, bool collapse, bool split, bool hidden);

/// The row of one entry, without the names of a sequence's files: those may be gone. If its attributes have
/// not arrived, the disk is asked whether it is a directory in @p folder.
PyObject* describe(const Halvern::UI::FileInfo& info, const QDir& folder);

/// Groups files by the built-in rules. Returns a list of (pattern, hashes, frames, indexes in @p files): the
/// pattern of a sequence as bytes, "shot.#.exr", or None for a row that is a file. Null entries are left out.
PyObject* group(const std::vector<Halvern::UI::FileInfo*>& files, bool split);

/// Gives a sequence that has a pattern as its name the name of the built-in rules: "shot.####.exr 1-100".
void nameAsBuiltIn(Halvern::UI::FileInfo& sequence, int hashes);

/// The runs of a text like "1-10x2,15". Raises ValueError for other text.
PyObject* parseRuns(const char* text);
/// The runs of the frames that are in any of @p runs. Raises ValueError for runs that are none.
PyObject* uniteRuns(const std::vector<int>& runs);

/// The functions of frames/Placeholder.h, of which @p change is one. Paths are text or an os.PathLike, and
/// keep their bytes. Folders before a name stay as they are.
PyObject* withChangedName(PyObject* path, QString (*change)(const QString& name));
PyObject* withFrame(PyObject* path, int frame);
/// "shot.####.exr 1-100" gives ("shot.####.exr", 1, 100), a name without a range None.
PyObject* splitRange(PyObject* path);
/// "shot.0042.exr" gives ("shot.####.exr", 42), a name without a frame None.
PyObject* splitFrame(PyObject* path);

} // namespace Python
