#pragma once

#include "base/Export.h"
#include "base/FileHandle.h"
#include "catalogue/FileInfo.h"

#include <QObject>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace Halvern::UI {

class KnownFiles;
class NameOrder;

/// The catalogue of one directory: reads it on a worker thread, turns the names into entries as they arrive,
/// groups numbered files into sequences and builds the lists that a browser shows.
///
/// Lives on the GUI thread; only the FileGatherer that it owns works elsewhere. Every `FileInfo*` it hands
/// out is borrowed and dies with the next read or with the manager (see generation()). Names are bytes.
/// Nothing throws; readError() tells why a directory could not be read. A forked process may destroy the
/// manager, or read again with it; it never waits for a thread of its parent.
class HVCOREUI_EXPORT FileManager : public QObject
{
    Q_OBJECT

public:
    /// An empty manager. The first one in a process registers the built-in sequence extensions.
    FileManager();
    /// Stops a running read, which waits for the worker's present call to the file system.
    ~FileManager() override;

    /// Begins to read @p path on the worker thread, after stopping a read that is under way. Emits
    /// refreshList() when the names are complete, then infoUpdated() for every thousand attributes.
    ///
    /// False, and nothing begins, if @p path is the current directory, its listing is under way or succeeded,
    /// and @p force is false. Also false if @p path cannot be opened: it becomes the current directory, with
    /// its entries if it was so before, else without entries, and the next request for it tries again. Also
    /// false from within a synchronous read.
    bool getFilesFromFolder(const std::string& path, bool force) { return read(path, force, true); }
    /// The same on the calling thread: everything is read, and the signals are emitted, when it returns. The
    /// manager must not be destroyed in answer to these.
    bool getFilesFromFolderSynchronously(const std::string& path, bool force) { return read(path, force); }
    /// Begins to read a directory again. Only the worker asks the disk. At refreshList() all is read; there
    /// are no files if it isUnchanged(), or if readError() tells that it can't be opened or went away. False
    /// if nothing begins, for lack of memory or from within a synchronous read.
    bool readAgain(const std::string& path, KnownFiles known);
    bool isUnchanged() const;      ///< Whether readAgain() found just what was known.
    KnownFiles knownFiles() const; ///< What the last read found; empty if it failed or is under way.
    /// Forgets every entry, and gives back their memory but for what the next small directory needs.
    void release();
    /// Why the listing of the current directory is empty or incomplete: an error number of the system, ENOMEM
    /// if there was no memory, EAGAIN if there was no thread for the worker. 0 during a read and after one
    /// that succeeded. Set before refreshList() announces the names, and before a request answers false.
    /// ENOMEM may also come with infoUpdated(): then the attributes that are missing do not arrive.
    int readError() const;
    /// Reads @p path at once and returns a text for each row, in bytes as they were read. A registered
    /// sequence has one row, or with @p splitGaps one for each run: "shot.####.exr 1-9 ( 1-4 6-9 )" with @p
    /// longNames, else "shot.####.exr 1-9". Folders, with "." and "..", and names that begin with "." are
    /// listed on request. Empty if @p path cannot be read.
    std::vector<std::string> getFilenameList(const std::string& path, bool splitGaps, bool longNames,
                                             bool includeDirectories, bool includeHidden);

    /// Takes these names in place of those of a directory. No read may be under way; insertFiles() follows.
    void setFiles(const std::list<std::string>& names);
    /// Makes entries of the names that are pending and adds them to the catalogue.
    void insertFiles();
    /// Forgets every entry and ends a read that is under way. The memory is kept for the next read.
    void cleanData();
    /// Applies attributes to the first entries that have none yet, in reading order, and brings sequences up
    /// to date. Records beyond the last entry are ignored, and so is a null batch. With @p announce it emits
    /// infoUpdated(), or refreshList() while re-evaluation is on.
    void updateInfo(const std::vector<FileInfoWrapper>* batch, bool announce);
    /// Whether unpadded frame numbers of one width count as padded to it, in new sequences (default: no).
    void setAssumeZeroPadding(bool assume);
    /// Whether every batch of attributes groups all files anew first (default: no).
    void setReevaluationEnabled(bool enabled);

    /// Groups all files into sequences anew. The "#" width of a sequence is then that of its first member.
    void reevaluateSequences();
    /// Adds @p member to the sequence of @p pattern, which is @p sequence if no entry has that pattern yet.
    void createSecondarySequence(FileInfo* sequence, const char* pattern, int digits, bool padded, int frame,
                                 FileInfo* member);
    /// Makes an entry for each run of several frames of the sequences with gaps, if that is not done yet.
    void createSplitSequences();
    /// Replaces the content of @p out by the rows of the given list type, borrowed. Between two batches these
    /// are the rows of the names that have arrived. Without memory for them it is empty.
    void buildRunningList(std::vector<FileInfo*>* out, Base::FileHandle::ListType type);

    /// Reads @p name as a frame. On true, @p frame is the number, @p pattern (at least 1024 bytes) the name
    /// with the digits replaced by one "#", @p digits their number, @p padded whether the first of several is
    /// "0". Example: "img.0042.exr" gives 42, "img.#.exr", 4 and true.
    static bool isSequence(const char* name, int& frame, char* pattern, int& digits, bool& padded);
    /// See FileInfo::addSequenceFileExtension().
    static void addSequenceFileExtension(const char* extension);

    /// A new entry of the manager, which is in no list. Throws `std::bad_alloc`.
    FileInfo* createEntry();
    bool owns(const FileInfo* entry) const; ///< Whether it is one of this manager.
    /// Keeps the memory of all entries while it is held, also after the manager is destroyed. The next read
    /// may still use them again.
    std::shared_ptr<const void> entryStorage() const;
    /// Keeps an entry from createEntry() in step with its members as attributes arrive.
    void followMembers(FileInfo* sequence);
    /// Ends the following of everything that followMembers() was called for.
    void forgetFollowers();
    /// Whether names are ordered while they arrive (default: no); true takes effect with the next read.
    void setNamesOrdered(bool ordered);
    /// The order of all names, once for each read. Empty before refreshList(), and if names are not ordered.
    NameOrder takeNameOrder();
    bool isInfoComplete() const; ///< Whether every entry has its attributes.
    /// Changes whenever all entries die. Pointers taken under another value must not be followed.
    unsigned generation() const;

signals:
    /// The list of names changed: running lists want to be built anew.
    void refreshList();
    /// @p count entries from the index @p first on, in reading order, got their size and time.
    void infoUpdated(int first, int count);

public slots:
    /// Takes the worker's next complete batch of names.
    void fileNameBatchReady();
    /// Takes the worker's next complete batch of attributes and announces it.
    void fileInfoBatchReady();
    /// Announces the list; with @p withInfo it applies the next batch of attributes first.
    void fileNameFinished(bool withInfo);
    /// Does nothing.
    void fileGatheringFinished() {}

private slots:
    void takeArrivals();

private:
    struct Private;

    bool read(const std::string& path, bool force, bool asynchronous = false);
    void connectWorker();
    void leaveToParentProcess();
    void leaveParentProcess();
    void takeNextArrival();

    std::unique_ptr<Private> d;
};

} // namespace Halvern::UI
