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
    if (nameOrder && nameOrder->isFinished())
        nameOrder.reset();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const FileInfo* file = index.add(names[i].text, names[i].isDirectory);
        if (nameOrder)
            nameOrder->add(file);
    }
    auto left = index.pool().takeOldMembers();
    if (!left.empty())
        Base::callInBackground([left = std::move(left)] {});
}

void FileManager::Private::takeNames()
{
    if (const auto names = gatherer.takeNames())
        insert(*names);
}

// What is left to do when all names are taken; false if the turn is over and not all is done.
bool FileManager::Private::prepareList()
{
    constexpr std::size_t AtOnce = 1000;
    while (!index.settle(AtOnce)) {
        if (turnIsOver())
            return false;
    }
    if (nameOrder)
        nameOrder->finish();
    return true;
}

void FileManager::Private::trimPool()
{
    // Others may still look at the entries that they hold.
    if (index.isStorageShared())
        return;
    try {
        if (auto trimming = index.pool().trimming())
            Base::callInBackground(std::move(trimming));
    } catch (const std::bad_alloc&) {
        // The next read tries again.
    }
}

bool FileManager::getFilesFromFolderPrivate(const std::string& path, bool force, bool asynchronous)
{
    if (d->readingSynchronously)
        return false;
    leaveParentProcess();
    const int error = errorOfOpening(path);
    const bool samePath = path == d->currentDirectory;
    if (samePath && !force && error == 0 && d->readError == 0)
        return false;
    d->gatherer.stop();
    if (error == 0 || !samePath)
        cleanData();
    if (!d->attempt([&] { d->currentDirectory = path; }))
        return false;
    d->readError = error;
    if (error != 0) {
        d->trimPool();
        return false;
    }
    d->readingSynchronously = !asynchronous;
    const bool begun = d->attempt([&] {
        if (asynchronous) {
            d->beginTurn();
            d->gatherer.startReading(path);
        } else {
            d->gatherer.readNow(path);
        }
    });
    d->readingSynchronously = false;
    return begun;
}

void FileManager::cleanData()
{
    leaveParentProcess();
    d->gatherer.stop(); // what is still to come belongs to entries that go
    auto left = d->index.clear();
    // Freeing a node for each of a million files takes longer than a click may.
    if (left.isLarge())
        Base::callInBackground([left = std::move(left)] {});
    d->nameOrder.reset();
    if (d->namesOrdered)
        d->attempt([this] { d->nameOrder = std::make_unique<NameOrder>(); });
    ++d->generation;
}

void FileManager::takeArrivals()
{
    if (d->process != ::getpid())
        return;
    const bool beginsTurn =
        d->gatherer.hasArrivals() && !d->readingSynchronously && !d->arrivalsTimer.isActive();
    if (beginsTurn && !d->attempt([this] { d->beginTurn(); })) {
        emit refreshList();
        return;
    }
    const QPointer<FileManager> alive = d->self;
    while (alive && d->gatherer.hasArrivals() && !d->turnIsOver())
        takeNextArrival();
    if (alive && d->gatherer.areNamesAnnounced() && d->gatherer.error() != 0 && d->readError == 0) {
        d->readError = d->gatherer.error();
        emit infoUpdated(static_cast<int>(d->index.knownCount()), 0);
    }
}

void FileManager::takeNextArrival()
{
    if (d->gatherer.areNamesAnnounced()) {
        fileInfoBatchReady();
        return;
    }
    bool complete = false;
    const bool done = d->attempt([&] {
        if (d->gatherer.hasNames())
            d->takeNames();
        else
            complete = d->prepareList();
    });
    if (done && !complete)
        return;
    if (done) {
        d->gatherer.takeNamesFinished();
        d->readError = d->gatherer.error();
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
    const auto infos = d->gatherer.takeInfos();
    updateInfo(infos.get(), true);
}

void FileManager::fileNameFinished(bool withInfo)
{
    if (withInfo) {
        const auto infos = d->gatherer.takeInfos();
        updateInfo(infos.get(), false);
    }
    const QPointer<FileManager> alive = d->self;
    emit refreshList();
    if (withInfo && alive)
        emit infoUpdated(0, -1);
}

// The worker runs in the process that forked this one. Here nobody would ever end it, and the locks that it
// held stay locked.
void FileManager::leaveToParentProcess()
{
    [[maybe_unused]] static Private* left; // for leak checkers
    left = d.release();
}

void FileManager::leaveParentProcess()
{
    if (d->process == ::getpid())
        return;
    auto own = std::make_unique<Private>();
    own->index.setAssumeZeroPadding(d->index.assumesZeroPadding());
    own->generation = d->generation + 1;
    own->reevaluationEnabled = d->reevaluationEnabled;
    own->namesOrdered = d->namesOrdered;
    leaveToParentProcess();
    d = std::move(own);
    connectWorker();
}

} // namespace Halvern::UI
