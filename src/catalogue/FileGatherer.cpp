#include "catalogue/FileGatherer.h"

#include "base/FileSystem.h"
#include "base/SlowCalls.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <new>
#include <unistd.h>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr std::size_t PatientlyWaiting = 4; // batches that keep the GUI thread busy
static_assert(FileGatherer::NameBatchSize % FileGatherer::InfoBatchSize == 0,
              "the attributes of a batch of names fill batches");

// The type of an entry for which the file system gave none.
int queriedKind(int folder, const char* name)
{
    const auto status = Base::fileStatus(name, folder);
    if (!status)
        return DT_UNKNOWN;
    return S_ISDIR(status->st_mode) ? DT_DIR : DT_REG;
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

void FileGatherer::prepare(const std::string& directory, std::optional<KnownFiles> known)
{
    m_directory = directory;
    m_known = std::move(known);
    forget();
    m_endAnnounced = false;
    // Not in run(): a run that is stopped before its thread has begun must not begin after all.
    m_keepRunning = true;
}

void FileGatherer::forget()
{
    m_names.clear();
    m_infos.clear();
    m_allNamesRead = false;
    m_isUnchanged = false;
    m_error = 0;
    m_namesAnnounced = false;
}

void FileGatherer::start(const std::string& directory, std::optional<KnownFiles> known)
{
    prepare(directory, std::move(known));
    QThread::start();
    if (isRunning() || isFinished())
        return;
    m_keepRunning = false;
    m_endAnnounced = true;
    m_error = EAGAIN;
    m_allNamesRead = true;
}

void FileGatherer::readNow(const std::string& directory)
{
    prepare(directory, std::nullopt);
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
    forget();
    m_endAnnounced = true;
}

FileGatherer::InfoQueue::BatchPointer FileGatherer::takeInfos()
{
    return m_namesAnnounced ? m_infos.take() : nullptr;
}

bool FileGatherer::takeNamesFinished()
{
    if (m_namesAnnounced || !m_allNamesRead || hasNames())
        return false;
    m_namesAnnounced = true;
    return true;
}

bool FileGatherer::hasArrivals() const
{
    if (m_namesAnnounced)
        return m_infos.waiting() > 0;
    return hasNames() || m_allNamesRead;
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
    m_runsEnded.fetch_add(1, std::memory_order_release);
}

// Stopping waits for one call to the file system at most: after each call that may be slow, the run checks
// m_keepRunning.
void FileGatherer::read()
{
    m_filling.reset();
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
    if (m_known)
        readAgain(file);
    finishNames();
    readAttributes(file);
}

void FileGatherer::readNames(DIR* stream, int folder)
{
    std::vector<Untyped> untyped; // a type is missing; names after it wait too, to stay in order
    while (m_keepRunning) {
        const dirent* entry = Base::uninterrupted([stream] { return ::readdir(stream); });
        if (!entry)
            m_error = errno;
        if (!entry || !m_keepRunning)
            break;
        if (entry->d_type != DT_UNKNOWN && untyped.empty())
            addName(entry->d_name, entry->d_type == DT_DIR);
        else
            untyped.push_back({entry->d_name, entry->d_type});
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
        endBatch();
    } catch (const std::bad_alloc&) {
        m_error = ENOMEM; // without the names of the last batch
    }
    if (!m_keepRunning)
        return;
    m_allNamesRead = true;
    announce([this] { emit fileNameFinished(false); });
    prepareWhileWaited(0);
}

void FileGatherer::addName(const char* name, bool isDirectory)
{
    if (!m_filling)
        m_filling = std::make_shared<NameBatch>();
    m_filling->add(name, isDirectory);
    ++m_readCount;
    if (m_filling->size() == NameBatchSize) {
        endBatch();
        prepareWhileWaited(PatientlyWaiting);
    }
}

void FileGatherer::endBatch()
{
    if (!m_filling)
        return;
    m_filling->squeeze();
    m_readNames.push_back(std::exchange(m_filling, nullptr));
    if (m_known)
        return;
    m_names.put(m_readNames.back());
    announce([this] { emit fileNameBatchReady(); });
}

// The GUI thread takes longer to make entries of names than the worker to read them, above all because the
// system is slow to give memory.
void FileGatherer::prepareWhileWaited(std::size_t mostWaiting)
{
    while (m_preparation && m_keepRunning && m_names.waiting() > mostWaiting && m_preparation(m_readCount)) {
    }
}

void FileGatherer::addUntyped(int folder, std::vector<Untyped>& names)
{
    Base::callEach(names.size(), [&](std::size_t index) {
        if (m_keepRunning && names[index].kind == DT_UNKNOWN)
            names[index].kind = queriedKind(folder, names[index].name.c_str());
    });
    if (!m_keepRunning)
        return;
    for (const Untyped& untyped : names)
        addName(untyped.name.c_str(), untyped.kind == DT_DIR);
    names.clear();
}

// A query that fails gives a record too, so that the records after it keep their places. A folder stays a
// folder.
FileInfoWrapper FileGatherer::queriedInfo(int folder, const NameBatch::Name& name)
{
    const auto status = Base::fileStatus(name.text, folder);
    if (!status)
        return {0, name.isDirectory, 0};
    return {static_cast<unsigned long long>(status->st_size), S_ISDIR(status->st_mode), status->st_mtime};
}

void FileGatherer::readAttributes(int folder)
{
    for (auto& names : m_readNames) {
        for (std::size_t begin = 0; begin < names->size(); begin += InfoBatchSize) {
            const std::size_t count = std::min(InfoBatchSize, names->size() - begin);
            const auto infos = std::make_shared<std::vector<FileInfoWrapper>>(count);
            Base::callEach(count, [&](std::size_t index) {
                if (m_keepRunning)
                    (*infos)[index] = queriedInfo(folder, (*names)[begin + index]);
            });
            if (!m_keepRunning)
                return;
            m_infos.put(infos);
            announce([this] { emit fileInfoBatchReady(); });
        }
        names.reset();
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
