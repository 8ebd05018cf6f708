#pragma once

#include "catalogue/BatchQueue.h"
#include "catalogue/FileInfoWrapper.h"
#include "catalogue/KnownFiles.h"
#include "catalogue/NameBatch.h"

#include <QThread>
#include <atomic>
#include <dirent.h>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Halvern::UI {

/// Reads one directory at a time for a FileManager: first all names, then the attributes of each, both in
/// batches. The object belongs to the manager and lives on its thread; run() works on the other thread. If
/// the file system is slow, further threads help.
///
/// The signals only say that something can be taken. A signal that a stopped run left in the event queue is
/// harmless: nothing of that run is left, and what is there of the next run may be taken.
class FileGatherer : public QThread
{
    Q_OBJECT

public:
    static constexpr std::size_t NameBatchSize = 2000;
    static constexpr std::size_t InfoBatchSize = 1000;

    using NameQueue = BatchQueue<NameBatch>;
    using InfoQueue = BatchQueue<std::vector<FileInfoWrapper>>;

    /// What the worker does while the GUI thread has batches to work on, a little with each call. It gets the
    /// number of names that have been read, and returns false if nothing is left to do.
    using Preparation = std::function<bool(std::size_t names)>;

    explicit FileGatherer(Preparation preparation = nullptr);
    ~FileGatherer() override;

    /// Begins to read @p directory on the worker thread. No run may be under way. If the system has no
    /// thread, the run has ended when this returns, without names and signals, and error() is EAGAIN.
    void startReading(const std::string& directory) { start(directory, std::nullopt); }
    /// The same for a directory of which @p known is known. Nothing can be taken before all is read. Then
    /// there is nothing to take if isUnchanged(), or if there is an error, which is also that the directory
    /// is not there any more. A name that vanishes meanwhile is left out.
    void startReadingAgain(const std::string& directory, KnownFiles known)
    {
        start(directory, std::move(known));
    }
    /// Reads @p directory on the calling thread and returns when all is read.
    void readNow(const std::string& directory);
    /// Ends a run: it sends no further signals, and what was not taken of it is gone. Waits, without a time
    /// limit, for the worker, which is in one call to the file system at most.
    void stop();

    /// The next complete batch of names, or null.
    NameQueue::BatchPointer takeNames() { return m_names.take(); }
    /// The next complete batch of attributes, or null. It is null until takeNamesFinished() has returned
    /// true, so that attributes never arrive before their names.
    InfoQueue::BatchPointer takeInfos();
    /// True once in a run: when all its names were read and taken.
    bool takeNamesFinished();
    /// Whether takeNamesFinished() has returned true in this run.
    bool areNamesAnnounced() const { return m_namesAnnounced; }
    /// Why names or attributes of the run are missing: an error number of the system, else 0.
    int error() const { return m_error; }
    /// Whether the directory was read again and has the known files, with the known attributes.
    bool isUnchanged() const { return m_isUnchanged; }
    /// Whether takeNames() has a batch.
    bool hasNames() const { return m_names.waiting() > 0; }
    /// Whether one of the three functions that take has something.
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
    /// A name whose type the file system may not have given.
    struct Untyped
    {
        std::string name;
        int kind;
    };

    /// Names that have not vanished, and their attributes.
    struct PresentFiles
    {
        NameQueue::BatchPointer names;
        std::shared_ptr<std::vector<FileInfoWrapper>> infos;
        std::size_t unchanged; ///< How many are as they were known.
    };

    void start(const std::string& directory, std::optional<KnownFiles> known);
    void prepare(const std::string& directory, std::optional<KnownFiles> known);
    void forget();
    void read();
    void readNames(DIR* stream, int folder);
    void finishNames();
    void addName(const char* name, bool isDirectory);
    void endBatch();
    void addUntyped(int folder, std::vector<Untyped>& names);
    static FileInfoWrapper queriedInfo(int folder, const NameBatch::Name& name);
    void readAttributes(int folder);

    // FileGathererAgain.cpp
    void readAgain(int folder);
    PresentFiles presentFiles(const NameQueue::BatchPointer& batch, const KnownFiles::File* known,
                              int folder) const;

    void prepareWhileWaited(std::size_t mostWaiting);
    template <class Announcement>
    void announce(Announcement announcement);

    // Set by the GUI thread while no worker runs, read by the worker.
    std::string m_directory;
    std::optional<KnownFiles> m_known; // null unless the directory is read again

    // Worker only.
    const Preparation m_preparation;
    std::shared_ptr<NameBatch> m_filling;
    std::vector<NameQueue::BatchPointer> m_readNames;
    std::size_t m_readCount = 0;

    // Shared by both threads.
    std::atomic<bool> m_keepRunning{false};
    std::atomic<bool> m_allNamesRead{false};
    std::atomic<bool> m_isUnchanged{false};
    std::atomic<int> m_error{0};
    // Passes what a run wrote to the thread that waited for it. Qt's lock does so too, but race detectors do
    // not see it.
    std::atomic<unsigned> m_runsEnded{0};
    NameQueue m_names;
    InfoQueue m_infos;

    // GUI thread only.
    bool m_namesAnnounced = false;
    bool m_endAnnounced = true;
};

} // namespace Halvern::UI
