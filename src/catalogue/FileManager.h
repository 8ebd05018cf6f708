#pragma once

#include "base/Export.h"
#include "base/FileHandle.h"
#include "catalogue/EntryPool.h"

#include <QElapsedTimer>
#include <QObject>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class QTimer;

namespace Halvern::UI {

class FileGatherer;
class NameOrder;
struct FileNameRecord;

/// The catalogue of one directory: reads it on a worker thread, turns the names into entries as they arrive,
/// groups numbered files into sequences and builds the lists that a browser shows.
///
/// Lives on the GUI thread; only the FileGatherer that it owns works elsewhere. Every `FileInfo*` it hands
/// out is borrowed and dies with the next read or with the manager (see generation()). Names are bytes.
/// Nothing throws; readError() tells why a directory could not be read.
class HVCOREUI_EXPORT FileManager : public QObject
{
    Q_OBJECT

public:
    /// An empty manager. The first one in a process registers the built-in sequence extensions.
    FileManager();
    /// Stops a running read, which waits for the worker's present call to the file system.
    ~FileManager() override;

    /// Begins to read @p path on the worker thread, after stopping a read that is under way. Emits
    /// refreshList() when the names are complete and infoUpdated() for every thousand attributes after that.
    /// False, and nothing begins, when @p path is the current directory, its listing is under way or
    /// succeeded and @p force is false. False too when @p path cannot be opened: it is the current directory
    /// from now on, with the entries it had if it was so before, else without entries. What failed is read
    /// again by the next request for it. A call from within a synchronous read is refused.
    bool getFilesFromFolder(const std::string& path, bool force);
    /// The same on the calling thread: everything is read, and the signals are emitted, when it returns. The
    /// manager must not be destroyed in answer to these.
    bool getFilesFromFolderSynchronously(const std::string& path, bool force);
    /// Why the listing of the current directory is empty or incomplete: the system's error number, as of
    /// `opendir`, `open` or `readdir`. 0 while a read is under way and after a listing that succeeded. Set
    /// before refreshList() announces the names, and before a request answers false.
    int readError() const { return m_readError; }
    /// Reads @p path at once and returns a text for every row: registered sequences on one row, or on a row
    /// for every run of frames with @p splitGaps; sequences as "shot.####.exr 1-9 ( 1-4 6-9 )" with @p
    /// longNames, else as "shot.####.exr 1-9". Directories ("." and ".." among them) and names that begin
    /// with "." come where the switches ask for them. Empty where @p path cannot be read. Texts are bytes as
    /// they were read.
    std::vector<std::string> getFilenameList(const std::string& path, bool splitGaps, bool longNames,
                                             bool includeDirectories, bool includeHidden);

    /// Takes the caller's names, in their order, in place of names read from a directory; insertFiles() makes
    /// entries of them. No read may be under way.
    void setFiles(const std::list<std::string>& names);
    /// Makes entries of the names that are pending and adds them to the catalogue.
    void insertFiles();
    /// Forgets every entry and ends a read that is under way. The memory is kept for the next read.
    void cleanData();
    /// Applies attributes to the entries behind the last that have any, in reading order, and brings
    /// sequences up to date. Records beyond the last entry are ignored, and so is a null batch. With @p
    /// announce it emits infoUpdated(), or refreshList() while re-evaluation is on.
    void updateInfo(const std::vector<FileInfoWrapper>* batch, bool announce);
    /// Whether unpadded frame numbers of one width count as padded to it (default: no). Concerns sequences
    /// built from then on.
    void setAssumeZeroPadding(bool assume) { assumeZeroPadding = assume; }
    /// Whether every batch of attributes groups all files afresh first (default: no).
    void setReevaluationEnabled(bool enabled) { reevaluationEnabled = enabled; }

    /// Groups all files into sequences afresh. The "#" width of a sequence is then that of its first member.
    void reevaluateSequences();
    /// Makes @p sequence the sequence of @p pattern with a first member; where an entry stands under that
    /// pattern already, the member goes to that one.
    void createSecondarySequence(FileInfo* sequence, const char* pattern, int digits, bool padded, int frame,
                                 FileInfo* member);
    /// Makes an entry for every run of several frames of the sequences with gaps, once for the present
    /// entries.
    void createSplitSequences();
    /// Replaces the content of @p out by the rows of the given list type, borrowed. May be called between two
    /// batches; the list is then that of the names that have arrived.
    void buildRunningList(std::vector<FileInfo*>* out, Base::FileHandle::ListType type);

    /// Reads @p name as a frame. On true, @p frame is the number, @p pattern (at least 1024 bytes) the name
    /// with the digits replaced by one "#", @p digits their number and @p padded whether they begin with "0".
    /// Example: "img.0042.exr" gives 42, "img.#.exr", 4 and true.
    static bool isSequence(const char* name, int& frame, char* pattern, int& digits, bool& padded);
    /// See FileInfo::addSequenceFileExtension().
    static void addSequenceFileExtension(const char* extension);

    /// A fresh entry, owned by the manager like all others; it stands in no list.
    FileInfo* createEntry();
    /// Keeps the memory of all entries while it is held, also after the manager is destroyed. It does not
    /// keep the entries from being used again by the next read.
    std::shared_ptr<const void> entryStorage() const { return m_pool; }
    /// Keeps an entry from createEntry() in step with its members as attributes arrive.
    void followMembers(FileInfo* sequence);
    /// Ends the following of everything that followMembers() was called for.
    void forgetFollowers();
    /// Whether names are ordered while they arrive, a little in each turn of the event loop (default: no),
    /// for models of this library. Begins with the next read, and ends at once.
    void setNamesOrdered(bool ordered);
    /// The order of the names of all files, once for each read; its places are those in reading order. Empty
    /// before refreshList() has announced the names, and where they were not ordered.
    NameOrder takeNameOrder();
    /// Whether every entry has its attributes.
    bool isInfoComplete() const { return static_cast<std::size_t>(infoCursor) == files.size(); }
    /// Changes whenever all entries die. Pointers taken under another value must not be followed.
    unsigned generation() const { return entryGeneration; }

signals:
    /// The list of names changed: running lists want to be built anew.
    void refreshList();
    /// @p count entries from the index @p first on, in reading order, got their size and time.
    void infoUpdated(int first, int count);

public slots:
    /// Takes what the worker has for it, now or in the next turn of the event loop. The worker calls them.
    void fileNameBatchReady();
    void fileInfoBatchReady();
    /// @p withInfo tells whether the last attributes are to be applied before the list is announced.
    void fileNameFinished(bool withInfo);
    /// Does nothing.
    void fileGatheringFinished() {}

private slots:
    void takeArrivals();

private:
    using Followers = std::unordered_multimap<const FileInfo*, FileInfo*>;
    using Names = std::map<std::string, FileInfo*, std::less<>>;

    struct Member
    {
        int frame;
        int index; // in files
        FileInfo* file;
    };
    struct Pattern
    {
        FileInfo* entry;
        std::vector<Member> arrived; // emptied when all are members of the entry
        std::size_t added = 0;       // the first so many of arrived are members already
        bool inOrder = false;        // whether arrived stands by frame
    };

    static void setInitialSequenceExtensions();
    bool getFilesFromFolderPrivate(const std::string& path, bool force, bool asynchronous);
    bool mayTakeNow();
    void beginTurn();
    bool turnIsOver() const;
    void takeNames();
    bool takeNamesFinished();
    void announceNames(bool withInfo);
    template <class Container>
    void leaveToWorker(Container& container);
    void applyInfo(std::size_t index, const FileInfoWrapper& info);
    void enterFile(std::size_t index, bool everyMemberSetsWidth);
    FileInfo* nextSequence();
    FileInfo* enterName(const char* name, FileInfo* entry);
    bool addMember(FileInfo* sequence, int frame, FileInfo* member, bool known);
    void addArrivedMembers(Pattern& pattern, std::size_t most);
    void addArrivedMembers();
    bool addArrivedMembersInTurn();
    bool prepareListInTurn();
    void forgetSplitSequences();
    FileInfo* makeSplitSequence(FileInfo* parent, const FrameRange& range);
    void appendSequence(std::vector<FileInfo*>& out, FileInfo* sequence, bool split, bool registeredOnly);

    std::string currentDirectory;
    const std::shared_ptr<EntryPool> m_pool = std::make_shared<EntryPool>();
    EntryPool& pool = *m_pool; // every entry below
    std::unique_ptr<FileGatherer> gatherer;
    QTimer* arrivalsTimer; // its timeout begins the next turn
    QElapsedTimer turn;
    std::shared_ptr<std::vector<FileNameRecord>> pendingNames;

    std::vector<FileInfo*> files;
    // For each of files: the sequence it is or becomes a member of, or null.
    std::vector<FileInfo*> sequenceOf;
    Names entriesByName;
    std::unordered_map<std::string_view, Pattern> patterns; // of those by name: the keys with a "#" in them
    std::vector<Pattern*> grownPatterns;                    // those with arrived members
    std::vector<FileInfo*> sequences;
    std::size_t sequencesInUse = 0; // those behind are left from an earlier evaluation, to be used again
    std::vector<FileInfo*> splitEntries;
    std::unique_ptr<NameOrder> nameOrder;   // of files; null where it is not wanted
    std::unordered_set<FileInfo*> unsummed; // sequences that gained members since they were last summed
    Followers splitFollowers;               // member to split entry
    Followers hostFollowers;                // member to entry of followMembers()

    int m_readError = 0;
    int infoCursor = 0; // how many of files have their attributes
    std::size_t splitIndex = 0;
    unsigned entryGeneration = 0;
    bool splitDone = false;
    bool assumeZeroPadding = false;
    bool reevaluationEnabled = false;
    bool namesOrdered = false;
    bool readingSynchronously = false;
};

} // namespace Halvern::UI
