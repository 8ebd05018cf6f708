#include "python/package/Entries.h"

#include "browser/FileBrowser.h"
#include "catalogue/FileInfo.h"
#include "catalogue/FileManager.h"
#include "frames/FrameRanges.h"
#include "frames/Placeholder.h"
#include "python/package/Path.h"

#include <QString>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <list>
#include <optional>
#include <unordered_map>

namespace Python {

using Halvern::Base::FileHandle;
using Halvern::Base::FrameRange;
using Halvern::Base::FrameRanges;
using Halvern::UI::FileBrowser;
using Halvern::UI::FileInfo;
using Halvern::UI::FileManager;
namespace Placeholder = Halvern::UI::Placeholder;
using Members = std::map<int, FileInfo*>;

namespace {

PyObject* fromName(const char* name)
{
    return PyUnicode_DecodeFSDefault(name);
}

// Each byte is a character meanwhile, so that a name survives whatever its encoding is.
template <class Change>
PyObject* changed(PyObject* path, Change change)
{
    const auto bytes = toBytes(path);
    return bytes ? fromName(change(QString::fromLatin1(*bytes)).toLatin1().constData()) : nullptr;
}

PyObject* fromRuns(const FrameRanges& ranges)
{
    std::vector<int> numbers;
    for (const FrameRange& run : ranges.runs())
        numbers.insert(numbers.end(), {run.first, run.last, run.step});
    return fromNumbers(numbers);
}

PyObject* fromRunsOrError(const std::optional<FrameRanges>& ranges, const std::string& error)
{
    if (ranges)
        return fromRuns(*ranges);
    PyErr_SetString(PyExc_ValueError, error.c_str());
    return nullptr;
}

/// Takes the reference to @p item. False with a Python error if there is none, or no memory.
bool append(const Owned& list, PyObject* item)
{
    const Owned taken(item);
    return item && PyList_Append(list.get(), item) == 0;
}

/// The members that an entry shows: a run shows those of its sequence that it covers.
Members shownMembers(const FileInfo& info)
{
    if (!info.parentSequence())
        return info.sequenceFiles();
    const Members& all = info.parentSequence()->sequenceFiles();
    return {all.lower_bound(info.startFrame()), all.upper_bound(info.endFrame())};
}

PyObject* fromMemberNames(const Members& members)
{
    Owned names(PyTuple_New(static_cast<Py_ssize_t>(members.size())));
    Py_ssize_t index = 0;
    for (auto member = members.begin(); names && member != members.end(); ++member) {
        PyObject* name = fromName(member->second->fileName());
        if (!name)
            return nullptr;
        PyTuple_SetItem(names.get(), index++, name);
    }
    return names.release();
}

// The width of the placeholder in the name that is shown. An evaluator's row has only the name.
int paddingOf(const FileInfo& info)
{
    if (!info.isSequence())
        return 0;
    return info.numberOfHashes() > 0 ? info.numberOfHashes()
                                     : static_cast<int>(std::strspn(
                                           info.displayName() + std::strcspn(info.displayName(), "#"), "#"));
}

// Takes the reference to names.
PyObject* makeRow(const FileInfo& info, bool isDirectory, const std::vector<FrameRange>& frames,
                  PyObject* names)
{
    return Py_BuildValue("(NNNNiKLN)", fromName(info.displayName()), PyBool_FromLong(isDirectory),
                         PyBool_FromLong(info.isSequence()), fromRuns(*FrameRanges::unite(frames)),
                         paddingOf(info), info.size(), info.modificationTime(), names);
}

std::vector<FrameRange> framesOf(const Members& members)
{
    std::vector<FrameRange> frames;
    for (const auto& member : members)
        frames.push_back({member.first, member.first, 1});
    return frames;
}

FileHandle::ListType listType(bool collapse, bool split)
{
    if (!collapse)
        return FileHandle::AllFiles;
    return split ? FileHandle::RegisteredSplitSequences : FileHandle::RegisteredSequences;
}

std::vector<FileInfo*> rowsOf(FileManager& manager, FileHandle::ListType type)
{
    std::vector<FileInfo*> rows;
    manager.buildRunningList(&rows, type);
    return rows;
}

// False with a Python error if the folder cannot be read.
bool read(FileManager& manager, PyObject* path)
{
    const auto folder = toBytes(path);
    if (!folder)
        return false;
    PyThreadState* thread = PyEval_SaveThread();
    manager.getFilesFromFolderSynchronously(folder->toStdString(), true);
    PyEval_RestoreThread(thread);
    if (manager.readError() == 0)
        return true;
    errno = manager.readError();
    PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, path);
    return false;
}

} // namespace

PyObject* listDirectory(PyObject* path, bool collapse, bool split, bool hidden)
{
    FileManager manager;
    manager.setAssumeZeroPadding(FileBrowser::GetAssumeZeroPadding());
    if (!read(manager, path))
        return nullptr;
    std::vector<FileInfo*> entries = rowsOf(manager, listType(collapse, split));
    std::sort(entries.begin(), entries.end(), [](const FileInfo* a, const FileInfo* b) {
        return std::strcmp(a->displayName(), b->displayName()) < 0;
    });
    Owned rows(PyList_New(0));
    for (auto entry = entries.begin(); rows && entry != entries.end(); ++entry) {
        const char* name = (*entry)->displayName();
        const bool isDots = std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
        if (isDots || (name[0] == '.' && !hidden))
            continue;
        const Members members = (*entry)->isSequence() ? shownMembers(**entry) : Members();
        if (!append(rows,
                    makeRow(**entry, (*entry)->isDirectory(), framesOf(members), fromMemberNames(members))))
            return nullptr;
    }
    return rows.release();
}

PyObject* describe(const FileInfo& info, const QDir& folder)
{
    std::vector<FrameRange> frames;
    if (info.isSequence()) {
        frames = framesOf(info.sequenceFiles());
        if (frames.empty() && info.parentSequence())
            frames.push_back({info.startFrame(), info.endFrame(), 1});
    }
    const bool isKnown = info.isInfoValid() || info.isDirectory();
    return makeRow(info, isKnown ? info.isDirectory() : info.isDirSafe(folder), frames, PyTuple_New(0));
}

PyObject* group(const std::vector<FileInfo*>& files, bool split)
{
    FileManager rules;
    rules.setAssumeZeroPadding(FileBrowser::GetAssumeZeroPadding());
    std::list<std::string> names;
    std::vector<int> indexes;
    Owned rows(PyList_New(0));
    const auto appendFile = [&rows](int index) {
        return append(rows, Py_BuildValue("(Oi()(i))", Py_None, 0, index));
    };
    for (int i = 0; rows && i < static_cast<int>(files.size()); ++i) {
        const FileInfo* file = files[static_cast<std::size_t>(i)];
        if (!file)
            continue;
        if (!file->isDirectory() && !file->isSequence()) {
            names.emplace_back(file->fileName());
            indexes.push_back(i);
        } else if (!appendFile(i)) {
            return nullptr;
        }
    }
    rules.setFiles(names);
    rules.insertFiles();
    std::unordered_map<const FileInfo*, int> indexOf;
    const std::vector<FileInfo*> all = rowsOf(rules, FileHandle::AllFiles);
    for (std::size_t i = 0; i < all.size(); ++i)
        indexOf[all[i]] = indexes[i];
    for (const FileInfo* row : rowsOf(rules, listType(true, split))) {
        if (!rows || (!row->isSequence() && !appendFile(indexOf[row])))
            return nullptr;
        if (!row->isSequence())
            continue;
        std::vector<int> frames;
        std::vector<int> members;
        for (const auto& [frame, member] : shownMembers(*row)) {
            frames.push_back(frame);
            members.push_back(indexOf[member]);
        }
        const FileInfo* whole = row->parentSequence() ? row->parentSequence() : row;
        if (!append(rows, Py_BuildValue("(yiNN)", whole->fileName(), row->numberOfHashes(),
                                        fromNumbers(frames), fromNumbers(members))))
            return nullptr;
    }
    return rows.release();
}

void nameAsBuiltIn(FileInfo& sequence, int hashes)
{
    sequence.setFrameInformation(0, 0, hashes);
    sequence.invalidateSequenceName();
    sequence.constructSequenceName();
}

PyObject* parseRuns(const char* text)
{
    std::string error;
    return fromRunsOrError(FrameRanges::parse(text, &error), error);
}

PyObject* uniteRuns(const std::vector<int>& runs)
{
    std::vector<FrameRange> ranges;
    for (std::size_t i = 0; i + 2 < runs.size(); i += 3)
        ranges.push_back({runs[i], runs[i + 1], runs[i + 2]});
    std::string error;
    return fromRunsOrError(FrameRanges::unite(ranges, &error), error);
}

PyObject* withChangedName(PyObject* path, QString (*change)(const QString&))
{
    return changed(path, [change](const QString& text) {
        const auto begin = text.lastIndexOf(QLatin1Char('/')) + 1;
        return QString(text.left(begin) + change(text.mid(begin)));
    });
}

PyObject* withFrame(PyObject* path, int frame)
{
    return changed(path, [frame](const QString& name) { return Placeholder::withFrame(name, frame); });
}

PyObject* splitRange(PyObject* path)
{
    const auto name = toBytes(path);
    if (!name)
        return nullptr;
    const auto split = Placeholder::splitRange(QString::fromLatin1(*name));
    if (!split)
        Py_RETURN_NONE;
    return Py_BuildValue("(Nii)", fromName(split->name.toLatin1().constData()), split->first, split->last);
}

PyObject* splitFrame(PyObject* path)
{
    const auto text = toBytes(path);
    if (!text)
        return nullptr;
    const auto begin = text->lastIndexOf('/') + 1; // 0 if there is none
    char pattern[FileInfo::NameSize];
    int frame = 0;
    int digits = 0;
    bool padded = false;
    if (static_cast<std::size_t>(text->size() - begin) >= FileInfo::NameSize ||
        !FileManager::isSequence(text->constData() + begin, frame, pattern, digits, padded))
        Py_RETURN_NONE;
    const std::string hashes = Placeholder::widened(pattern, digits);
    return Py_BuildValue("(Ni)", fromName((text->left(begin) + hashes.c_str()).constData()), frame);
}

} // namespace Python
