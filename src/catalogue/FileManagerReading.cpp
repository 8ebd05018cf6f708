// How a manager reads: the worker, turns of the event loop, and what happens in a forked process.

#include "base/FileSystem.h"
#include "base/SlowCalls.h"
#include "catalogue/FileManagerPrivate.h"

#include <dirent.h>
#include <utility>

namespace Halvern::UI {

namespace {

// 0 if the directory can be opened, else the system's error number.
int errorOfOpening(const std::string& path)
{
    DIR* directory = Base::uninterrupted([&] { return ::opendir(path.c_str()); });
    if (!directory)
        return errno;
    ::closedir(directory);
    return 0;
}

} // namespace

void FileManager::Private::insert(const NameBatch& names)
{
    if (m_nameOrder && m_nameOrder->isFinished())
        m_nameOrder.reset();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const FileInfo* file = m_index.add(names[i].text, names[i].isDirectory);
        if (m_nameOrder)
            m_nameOrder->add(file);
    }
    auto left = m_index.pool().takeOldMembers();
    if (!left.empty())
        Base::callInBackground([left = std::move(left)] {});
}

void FileManager::Private::takeNames()
{
    if (const auto names = m_gatherer.takeNames())
        insert(*names);
}

// Does what is left to do when all names are taken; false if the turn is over before all is done.
bool FileManager::Private::prepareList()
{
    constexpr std::size_t AtOnce = 1000;
    while (!m_index.settle(AtOnce)) {
        if (turnIsOver())
            return false;
    }
    if (m_nameOrder)
        m_nameOrder->finish();
    return true;
}

void FileManager::Private::trimPool()
{
    // Others may still look at the entries that they hold.
    if (m_index.isStorageShared())
        return;
    try {
        if (auto trimming = m_index.pool().trimming())
            Base::callInBackground(std::move(trimming));
    } catch (const std::bad_alloc&) {
        // The next read tries again.
    }
}

bool FileManager::read(const std::string& path, bool force, bool asynchronous)
{
    if (d->m_readingSynchronously)
        return false;
    leaveParentProcess();
    const int error = errorOfOpening(path);
    const bool samePath = path == d->m_currentDirectory;
    if (samePath && !force && error == 0 && d->m_readError == 0)
        return false;
    d->m_gatherer.stop();
    if (error == 0 || !samePath)
        cleanData();
    if (!d->attempt([&] { d->m_currentDirectory = path; }))
        return false;
    d->m_readError = error;
    if (error != 0) {
        d->trimPool();
        return false;
    }
    d->m_readingSynchronously = !asynchronous;
    const bool begun = d->attempt([&] {
        if (asynchronous) {
            d->beginTurn();
            d->m_gatherer.startReading(path);
        } else {
            d->m_gatherer.readNow(path);
        }
    });
    d->m_readingSynchronously = false;
    return begun;
}

bool FileManager::readAgain(const std::string& path, KnownFiles known)
{
    if (d->m_readingSynchronously)
        return false;
    cleanData();
    d->m_readError = 0;
    return d->attempt([&] {
        d->m_currentDirectory = path;
        d->beginTurn();
        d->m_gatherer.startReadingAgain(path, std::move(known));
    });
}

bool FileManager::isUnchanged() const
{
    return d->m_gatherer.isUnchanged();
}

KnownFiles FileManager::knownFiles() const
{
    if (d->m_readError != 0 || !isInfoComplete())
        return {};
    try {
        KnownFiles files;
        std::vector<FileInfo*> entries;
        d->m_index.rows(entries, Base::FileHandle::AllFiles);
        for (const FileInfo* entry : entries)
            files.add(entry->fileName(), {entry->size(), entry->isDirectory(), entry->modificationTime()});
        return files;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

void FileManager::release()
{
    cleanData();
    d->m_currentDirectory.clear();
    d->m_nameOrder.reset();
    d->trimPool();
}

void FileManager::cleanData()
{
    leaveParentProcess();
    d->m_gatherer.stop(); // what is still to come belongs to entries that go
    auto left = d->m_index.clear();
    // Freeing a node for each of a million files takes longer than a click may.
    if (left.isLarge())
        Base::callInBackground([left = std::move(left)] {});
    d->m_nameOrder.reset();
    if (d->m_namesOrdered)
        d->attempt([this] { d->m_nameOrder = std::make_unique<NameOrder>(); });
    ++d->m_generation;
}

void FileManager::takeArrivals()
{
    if (d->m_process != ::getpid())
        return;
    const bool beginsTurn =
        d->m_gatherer.hasArrivals() && !d->m_readingSynchronously && !d->m_arrivalsTimer.isActive();
    if (beginsTurn && !d->attempt([this] { d->beginTurn(); })) {
        emit refreshList();
        return;
    }
    const QPointer<FileManager> alive = d->m_self;
    while (alive && d->m_gatherer.hasArrivals() && !d->turnIsOver())
        takeNextArrival();
    if (alive && d->m_gatherer.areNamesAnnounced() && d->m_gatherer.error() != 0 && d->m_readError == 0) {
        d->m_readError = d->m_gatherer.error();
        emit infoUpdated(static_cast<int>(d->m_index.knownCount()), 0);
    }
}

void FileManager::takeNextArrival()
{
    if (d->m_gatherer.areNamesAnnounced()) {
        fileInfoBatchReady();
        return;
    }
    bool complete = false;
    const bool done = d->attempt([&] {
        if (d->m_gatherer.hasNames())
            d->takeNames();
        else
            complete = d->prepareList();
    });
    if (done && !complete)
        return;
    if (done) {
        d->m_gatherer.takeNamesFinished();
        d->m_readError = d->m_gatherer.error();
        d->trimPool();
    }
    emit refreshList();
}

void FileManager::fileNameBatchReady()
{
    d->attempt([this] { d->takeNames(); });
}

void FileManager::fileInfoBatchReady()
{
    const auto infos = d->m_gatherer.takeInfos();
    updateInfo(infos.get(), true);
}

void FileManager::fileNameFinished(bool withInfo)
{
    if (withInfo) {
        const auto infos = d->m_gatherer.takeInfos();
        updateInfo(infos.get(), false);
    }
    const QPointer<FileManager> alive = d->m_self;
    emit refreshList();
    if (withInfo && alive)
        emit infoUpdated(0, -1);
}

// The worker runs in the process that forked this one. Here nobody would end it or unlock its locks.
void FileManager::leaveToParentProcess()
{
    [[maybe_unused]] static Private* left; // for leak checkers
    left = d.release();
}

void FileManager::leaveParentProcess()
{
    if (d->m_process == ::getpid())
        return;
    auto own = std::make_unique<Private>();
    own->m_index.setAssumeZeroPadding(d->m_index.assumesZeroPadding());
    own->m_generation = d->m_generation + 1;
    own->m_reevaluationEnabled = d->m_reevaluationEnabled;
    own->m_namesOrdered = d->m_namesOrdered;
    leaveToParentProcess();
    d = std::move(own);
    connectWorker();
}

} // namespace Halvern::UI
