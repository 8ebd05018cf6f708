#pragma once

#include "catalogue/BatchQueue.h"
#include "catalogue/FileInfoWrapper.h"

#include <QThread>
#include <atomic>
#include <dirent.h>
#include <functional>
#include <string>
#include <vector>

namespace Halvern::UI {

/// One name as the directory gave it, not yet an entry.
struct FileNameRecord
{
    char name[1024]; ///< Bytes, terminated; longer names are cut.
    int kind;        ///< The directory-entry type: 4 (DT_DIR) for a directory.
};

/// Reads one directory at a time for a FileManager, first all names and then the attributes of each, and
/// hands both over in batches. The object lives on the manager's thread and belongs to it; run() is what
/// works on the other thread; if the file system is slow, others ask with it. The signals only say that
/// something can be taken: one that a stopped run left in the queue finds nothing of that run, and what it
/// takes of the next run would have been taken a moment later.
class FileGatherer : public QThread
{
    Q_OBJECT

public:
    static constexpr std::size_t NameBatchSize = 2000;
    static constexpr std::size_t InfoBatchSize = 1000;

    using NameQueue = BatchQueue<FileNameRecord>;
    using InfoQueue = BatchQueue<FileInfoWrapper>;

    /// What the worker does while the GUI thread lags behind, a little at each call, for the given number of
    /// names that have been read; false if nothing is left to do.
    using Preparation = std::function<bool(std::size_t names)>;

    explicit FileGatherer(Preparation preparation = nullptr);
    ~FileGatherer() override;

    /// Begins to read @p directory on the worker thread. No run may be under way. If the system has no
    /// thread, the run has ended when this returns: without names, with EAGAIN as error(), and without
    /// signals.
    void startReading(const std::string& directory);
    /// Reads @p directory on the calling thread and returns when all is read.
    void readNow(const std::string& directory);
    /// Ends a run: it sends no further signals, and what was not taken of it is gone. Waits for the worker,
    /// which is one call to the file system at most, without a time limit.
    void stop();

    /// The next complete batch of names, or null.
    NameQueue::BatchPointer takeNames() { return m_names.take(); }
    /// A batch of names that was taken is not needed any more.
    void giveBackNames(NameQueue::BatchPointer batch) { m_names.giveBack(std::move(batch)); }
    /// The next complete batch of attributes, or null; null also before takeNamesFinished() has said true, so
    /// that attributes never arrive before their names.
    InfoQueue::BatchPointer takeInfos();
    /// True once in a run: when all its names were read and taken.
    bool takeNamesFinished();
    /// Whether takeNamesFinished() has said true in this run.
    bool areNamesAnnounced() const { return m_namesAnnounced; }
    /// Whether all names of the run were read and taken.
    bool areNamesTaken() const { return m_allNamesRead && !m_names.hasNext(); }
    /// Why names or attributes of the run are missing: an error number of the system, 0 if none is known to
    /// be.
    int error() const { return m_error; }
    /// Whether takeNames() has something to give.
    bool hasNames() const { return m_names.hasNext(); }
    /// Whether one of the three has something to give.
    bool hasArrivals() const;

signals:
    /// A batch of names is complete.
    void fileNameBatchReady();
    /// A batch of attributes is complete, or error() has changed.
    void fileInfoBatchReady();
    /// The names are complete. The argument is false: their attributes are still to come.
    void fileNameFinished(bool withInfo);
    /// The run has ended of itself.
    void finishedGatheringFiles();

protected:
    void run() override;

private slots:
    void threadFinished();

private:
    void prepare(const std::string& directory);
    void discardBatches();
    void read();
    void readNames(DIR* stream, int folder);
    void finishNames();
    void addName(const FileNameRecord& record);
    void addUntyped(int folder, std::vector<FileNameRecord>& records);
    void readAttributes(int folder);
    void readAttributes(int folder, const std::vector<const char*>& names);
    void prepareWhileWaited(std::size_t mostWaiting);
    template <class Announcement>
    void announce(Announcement announcement);

    std::string m_directory; // set by the GUI thread while no worker runs, read by the worker

    // Worker only.
    const Preparation m_preparation;
    std::vector<std::string> m_readNames; // a text for each batch: of each file its kind, name and terminator
    std::size_t m_readCount = 0;

    // Shared by both threads.
    std::atomic<bool> m_keepRunning{false};
    std::atomic<bool> m_allNamesRead{false};
    std::atomic<int> m_error{0};
    // Carries what a run wrote to the thread that waited for it. Qt's lock does that too, unseen by race
    // detectors.
    std::atomic<unsigned> m_runsEnded{0};
    NameQueue m_names{NameBatchSize};
    InfoQueue m_infos{InfoBatchSize};

    // GUI thread only.
    bool m_namesAnnounced = false;
    bool m_endAnnounced = true;
};

} // namespace Halvern::UI
