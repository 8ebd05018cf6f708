#include "catalogue/FileGatherer.h"

#include "base/FileSystem.h"
#include "base/SlowCalls.h"
#include "base/Text.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <unistd.h>

namespace Halvern::UI {

namespace {

constexpr std::size_t PatientlyWaiting = 4; // batches that keep the GUI thread busy

constexpr char DirectoryMark = 'd';
constexpr char OtherMark = 'f';

// The type of an entry for which the file system gave none.
int queriedKind(int folder, const char* name)
{
    const auto status = Base::fileStatus(name, folder);
    if (!status)
        return DT_UNKNOWN;
    return S_ISDIR(status->st_mode) ? DT_DIR : DT_REG;
}

// A query that fails gives a record too, so that the records after it keep their places. A folder stays a
// folder.
FileInfoWrapper queriedInfo(int folder, const char* name, bool isDirectory)
{
    const auto status = Base::fileStatus(name, folder);
    if (!status)
        return {0, isDirectory, 0};
    return {static_cast<unsigned long long>(status->st_size), S_ISDIR(status->st_mode), status->st_mtime};
}

} // namespace

FileGatherer::FileGatherer(Preparation preparation)
    : m_preparation(std::move(preparation))
{
    setObjectName(QStringLiteral("FileGatherer"));
    connect(this, SIGNAL(finished()), this, SLOT(threadFinished()));
}

FileGatherer::~FileGatherer()
{
    stop();
}

void FileGatherer::prepare(const std::string& directory)
{
    m_directory = directory;
    discardBatches();
    m_endAnnounced = false;
    // Not in run(): a run that is stopped before its thread has begun must not begin after all.
    m_keepRunning = true;
}

void FileGatherer::discardBatches()
{
    auto left = m_names.reset();
    if (!left.empty())
        Base::callInBackground([left = std::move(left)] {});
    m_infos.reset();
    m_allNamesRead = false;
    m_error = 0;
    m_namesAnnounced = false;
}

void FileGatherer::startReading(const std::string& directory)
{
    prepare(directory);
    start();
    if (isRunning() || isFinished())
        return;
    m_keepRunning = false;
    m_endAnnounced = true;
    m_error = EAGAIN;
    m_allNamesRead = true;
}

void FileGatherer::readNow(const std::string& directory)
{
    prepare(directory);
    run();
    threadFinished();
}

void FileGatherer::stop()
{
    const bool wereBlocked = blockSignals(true);
    m_keepRunning = false;
    wait();
    m_runsEnded.load(std::memory_order_acquire);
    blockSignals(wereBlocked);
    discardBatches();
    m_endAnnounced = true;
}

FileGatherer::InfoQueue::BatchPointer FileGatherer::takeInfos()
{
    return m_namesAnnounced ? m_infos.take() : nullptr;
}

bool FileGatherer::takeNamesFinished()
{
    if (m_namesAnnounced || !areNamesTaken())
        return false;
    m_namesAnnounced = true;
    return true;
}

bool FileGatherer::hasArrivals() const
{
    if (m_namesAnnounced)
        return m_infos.hasNext();
    return m_names.hasNext() || m_allNamesRead;
}

void FileGatherer::run()
{
    try {
        read();
    } catch (const std::bad_alloc&) {
        m_error = ENOMEM;
        m_readNames.clear();
        if (m_allNamesRead)
            announce([this] { emit fileInfoBatchReady(); });
        else
            finishNames();
    }
    m_names.dropSpares();
    m_runsEnded.fetch_add(1, std::memory_order_release);
}

// Stopping waits for one call to the file system at most: after each that may be slow the run looks whether
// it is still wanted.
void FileGatherer::read()
{
    m_readNames.clear();
    m_readCount = 0;
    const int file = Base::uninterrupted(
        [this] { return ::open(m_directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    DIR* const opened =
        file >= 0 && m_keepRunning ? Base::uninterrupted([file] { return ::fdopendir(file); }) : nullptr;
    if (!opened)
        m_error = errno;
    if (!opened && file >= 0)
        ::close(file);
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opened, &::closedir);
    if (folder)
        readNames(folder.get(), file);
    finishNames();
    readAttributes(file);
}

void FileGatherer::readNames(DIR* stream, int folder)
{
    FileNameRecord record;
    std::vector<FileNameRecord> untyped; // a type is missing; those after it wait too, for the order's sake
    while (m_keepRunning) {
        const dirent* entry = Base::uninterrupted([stream] { return ::readdir(stream); });
        if (!entry)
            m_error = errno;
        if (!entry || !m_keepRunning)
            break;
        Base::copyTruncated(record.name, entry->d_name);
        record.kind = entry->d_type;
        if (record.kind != DT_UNKNOWN && untyped.empty())
            addName(record);
        else
            untyped.push_back(record);
        if (untyped.size() == NameBatchSize)
            addUntyped(folder, untyped);
    }
    addUntyped(folder, untyped);
}

void FileGatherer::finishNames()
{
    if (!m_keepRunning)
        return;
    try {
        if (m_names.finish())
            announce([this] { emit fileNameBatchReady(); });
    } catch (const std::bad_alloc&) {
        m_error = ENOMEM; // without the names of the last batch
    }
    if (!m_keepRunning)
        return;
    m_allNamesRead = true;
    announce([this] { emit fileNameFinished(false); });
    prepareWhileWaited(0);
}

void FileGatherer::addName(const FileNameRecord& record)
{
    if (m_readCount++ % NameBatchSize == 0)
        m_readNames.emplace_back();
    std::string& names = m_readNames.back();
    names.push_back(record.kind == DT_DIR ? DirectoryMark : OtherMark);
    names.append(record.name).push_back('\0');
    if (m_names.append(record)) {
        announce([this] { emit fileNameBatchReady(); });
        prepareWhileWaited(PatientlyWaiting);
    }
}

// Making entries of names takes longer than reading them, above all for want of memory to make them in.
void FileGatherer::prepareWhileWaited(std::size_t mostWaiting)
{
    while (m_preparation && m_keepRunning && m_names.waiting() > mostWaiting && m_preparation(m_readCount)) {
    }
}

void FileGatherer::addUntyped(int folder, std::vector<FileNameRecord>& records)
{
    Base::callEach(records.size(), [&](std::size_t index) {
        FileNameRecord& record = records[index];
        if (m_keepRunning && record.kind == DT_UNKNOWN)
            record.kind = queriedKind(folder, record.name);
    });
    if (!m_keepRunning)
        return;
    for (const FileNameRecord& record : records)
        addName(record);
    records.clear();
}

void FileGatherer::readAttributes(int folder)
{
    std::vector<const char*> names; // with their marks
    for (std::string& batch : m_readNames) {
        const char* const end = batch.data() + batch.size();
        for (const char* name = batch.data(); name != end;) {
            if (!m_keepRunning)
                return;
            names.clear();
            for (; name != end && names.size() < InfoBatchSize; name += std::strlen(name) + 1)
                names.push_back(name);
            readAttributes(folder, names);
        }
        batch = std::string();
    }
    if (m_keepRunning && m_infos.finish())
        announce([this] { emit fileInfoBatchReady(); });
}

void FileGatherer::readAttributes(int folder, const std::vector<const char*>& names)
{
    std::vector<FileInfoWrapper> infos(names.size());
    Base::callEach(names.size(), [&](std::size_t index) {
        if (m_keepRunning)
            infos[index] = queriedInfo(folder, names[index] + 1, *names[index] == DirectoryMark);
    });
    if (!m_keepRunning)
        return;
    for (const FileInfoWrapper& info : infos) {
        if (m_infos.append(info))
            announce([this] { emit fileInfoBatchReady(); });
    }
}

// A signal to another thread needs memory. Without it nobody would ever learn of the end.
template <class Announcement>
void FileGatherer::announce(Announcement announcement)
{
    while (true) {
        try {
            announcement();
            return;
        } catch (const std::bad_alloc&) {
            if (QThread::currentThread() != this)
                throw;
            if (!m_keepRunning)
                return;
            msleep(1);
        }
    }
}

void FileGatherer::threadFinished()
{
    // Left in the queue by a run that was stopped, or by one that ended just before another was started.
    if (isRunning() || m_endAnnounced)
        return;
    m_endAnnounced = true;
    m_keepRunning = false;
    emit finishedGatheringFiles();
}

} // namespace Halvern::UI
