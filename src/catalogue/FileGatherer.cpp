#include "catalogue/FileGatherer.h"

#include "base/FileSystem.h"
#include "base/SlowCalls.h"
#include "base/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace Halvern::UI {

namespace {

constexpr std::size_t PatientlyWaiting = 4; // batches that keep the GUI thread busy

// The type of an entry for which the file system gave none.
int queriedKind(int folder, const char* name)
{
    const auto status = Base::fileStatus(name, folder);
    if (!status)
        return DT_UNKNOWN;
    return S_ISDIR(status->st_mode) ? DT_DIR : DT_REG;
}

// A query that fails gives a record too, so that the records after it keep their places.
FileInfoWrapper queriedInfo(int folder, const char* name)
{
    const auto status = Base::fileStatus(name, folder);
    if (!status)
        return {};
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
    const auto left = std::make_shared<std::vector<NameQueue::BatchPointer>>(m_names.reset());
    left->erase(std::remove(left->begin(), left->end(), nullptr), left->end());
    if (!left->empty()) {
        disposeOf([left] {
            left->pop_back();
            return !left->empty();
        });
    }
    m_infos.reset();
    m_allNamesRead = false;
    m_error = 0;
    m_namesAnnounced = false;
}

void FileGatherer::startReading(const std::string& directory)
{
    prepare(directory);
    start();
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
    m_readNames.clear();
    m_readCount = 0;
    const int folder = Base::uninterrupted(
        [this] { return ::open(m_directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (folder < 0)
        m_error = errno;
    readNames(folder);
    readAttributes(folder);
    if (folder >= 0)
        ::close(folder);
    m_names.dropSpares();
    while (m_keepRunning && !m_garbage.empty())
        disposeOfSome();
    m_runsEnded.fetch_add(1, std::memory_order_release);
}

void FileGatherer::disposeOfSome()
{
    if (!m_garbage.empty() && !m_garbage.back()())
        m_garbage.pop_back();
}

// Stopping waits for one call to the file system at most: after each that may be slow the run looks whether
// it is still wanted.
void FileGatherer::readNames(int folder)
{
    if (!m_keepRunning)
        return;
    // The stream closes the descriptor it is given, and the attributes are read after it.
    const int copy = folder >= 0 ? ::fcntl(folder, F_DUPFD_CLOEXEC, 0) : -1;
    DIR* stream = copy >= 0 ? Base::uninterrupted([copy] { return ::fdopendir(copy); }) : nullptr;
    if (!stream && folder >= 0)
        m_error = errno;
    if (!stream && copy >= 0)
        ::close(copy);
    FileNameRecord record;
    std::vector<FileNameRecord> untyped; // a type is missing; those behind it wait too, for the order's sake
    while (stream && m_keepRunning) {
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
    if (stream)
        ::closedir(stream);
    addUntyped(folder, untyped);
    if (!m_keepRunning)
        return;
    if (m_names.finish())
        emit fileNameBatchReady();
    m_allNamesRead = true;
    emit fileNameFinished(false);
    prepareWhileWaited(0);
}

void FileGatherer::addName(const FileNameRecord& record)
{
    if (m_readCount++ % NameBatchSize == 0)
        m_readNames.emplace_back();
    m_readNames.back().append(record.name).push_back('\0');
    if (m_names.append(record)) {
        emit fileNameBatchReady();
        disposeOfSome();
        prepareWhileWaited(PatientlyWaiting);
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

// Making entries of names takes longer than reading them, above all for want of memory to make them in.
void FileGatherer::prepareWhileWaited(std::size_t mostWaiting)
{
    while (m_preparation && m_keepRunning && m_names.waiting() > mostWaiting && m_preparation(m_readCount)) {
    }
}

void FileGatherer::readAttributes(int folder)
{
    std::vector<const char*> names;
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
        emit fileInfoBatchReady();
}

void FileGatherer::readAttributes(int folder, const std::vector<const char*>& names)
{
    std::vector<FileInfoWrapper> infos(names.size());
    Base::callEach(names.size(), [&](std::size_t index) {
        if (m_keepRunning)
            infos[index] = queriedInfo(folder, names[index]);
    });
    if (!m_keepRunning)
        return;
    for (const FileInfoWrapper& info : infos) {
        if (m_infos.append(info)) {
            emit fileInfoBatchReady();
            disposeOfSome();
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
