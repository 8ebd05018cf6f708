#include "catalogue/FileManager.h"

#include "base/FileSystem.h"
#include "base/SlowCalls.h"
#include "base/Text.h"
#include "catalogue/FileGatherer.h"
#include "catalogue/NameOrder.h"
#include "catalogue/SequenceIndex.h"
#include "frames/FrameName.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <dirent.h>
#include <new>
#include <unistd.h>
#include <utility>

namespace Halvern::UI {

namespace {

constexpr qint64 TurnShare = 8; // milliseconds

constexpr const char* builtInSequenceExtensions[] = {
    "arri",  "ari",   "bmp",   "cin", "crw",  "cr2",  "dpx",   "dng",    "exr", "fpi",
    "ftif",  "ftiff", "gif",   "hdr", "hdri", "iff",  "iff16", "it8",    "jpg", "jpeg",
    "pic",   "png",   "png16", "psd", "rgb",  "rgba", "rgbe",  "rgbea",  "rla", "sgi",
    "sgi16", "sxr",   "targa", "tga", "tif",  "tiff", "tif16", "tiff16", "xpm", "yuv"};

void setInitialSequenceExtensions()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    for (const char* extension : builtInSequenceExtensions)
        FileInfo::addSequenceFileExtension(extension);
}

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

struct FileManager::Private
{
    // Qt delivers all that was posted before it looks at the mouse or a timer again, and the worker can post
    // as fast as this thread takes it. So there is a share for each turn of the event loop; what is beyond it
    // waits for the timer, which becomes due in the turn and is served in the next.
    void beginTurn()
    {
        turn.start();
        arrivalsTimer.start(1);
    }
    bool turnIsOver() const { return !readingSynchronously && turn.elapsed() >= TurnShare; }

    // False if memory for it could not be had, which ends the read.
    template <class Work>
    bool attempt(Work work)
    {
        try {
            work();
            return true;
        } catch (const std::bad_alloc&) {
            gatherer.stop();
            nameOrder.reset();
            readError = ENOMEM;
            return false;
        }
    }

    void insert(const std::vector<FileNameRecord>& names);
    void takeNames();
    bool prepareList();
    void trimPool();

    const pid_t process = ::getpid();
    QPointer<FileManager> self; // copied without an allocation
    std::string currentDirectory;
    SequenceIndex index;
    FileGatherer gatherer;
    QTimer arrivalsTimer; // its timeout begins the next turn
    QElapsedTimer turn;
    FileGatherer::NameQueue::BatchPointer pendingNames;
    std::unique_ptr<NameOrder> nameOrder; // of all files; null if it is not wanted
    int readError = 0;
    unsigned generation = 0;
    bool reevaluationEnabled = false;
    bool namesOrdered = false;
    bool readingSynchronously = false;
};

void FileManager::Private::insert(const std::vector<FileNameRecord>& names)
{
    if (nameOrder && nameOrder->isFinishing())
        nameOrder.reset();
    for (const FileNameRecord& record : names) {
        const FileInfo* file = index.add(record.name, record.kind == DT_DIR);
        if (nameOrder)
            nameOrder->add(file);
    }
    auto left = index.pool().takeOldMembers();
    if (!left.empty())
        Base::callInBackground([left = std::move(left)] {});
}

void FileManager::Private::takeNames()
{
    if (auto names = gatherer.takeNames()) {
        insert(*names);
        gatherer.giveBackNames(std::move(names));
    }
}

// What is left to do when all names are taken; false if the turn is over and not all is done.
bool FileManager::Private::prepareList()
{
    constexpr std::size_t AtOnce = 1000;
    while (!index.settle(AtOnce) || (nameOrder && !nameOrder->finish(AtOnce))) {
        if (turnIsOver())
            return false;
    }
    return true;
}

void FileManager::Private::trimPool()
{
    if (auto trimming = index.pool().trimming())
        Base::callInBackground(std::move(trimming));
}

FileManager::FileManager()
    : d(std::make_unique<Private>())
{
    setInitialSequenceExtensions();
    connectWorker();
}

FileManager::~FileManager()
{
    if (d->process != ::getpid())
        leaveToParentProcess();
}

void FileManager::connectWorker()
{
    d->self = this;
    d->arrivalsTimer.setSingleShot(true);
    d->arrivalsTimer.setTimerType(Qt::PreciseTimer);
    connect(&d->arrivalsTimer, SIGNAL(timeout()), this, SLOT(takeArrivals()));
    connect(&d->gatherer, SIGNAL(fileNameBatchReady()), this, SLOT(takeArrivals()));
    connect(&d->gatherer, SIGNAL(fileInfoBatchReady()), this, SLOT(takeArrivals()));
    connect(&d->gatherer, SIGNAL(fileNameFinished(bool)), this, SLOT(takeArrivals()));
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
    own->currentDirectory = d->currentDirectory;
    own->index.setAssumeZeroPadding(d->index.assumesZeroPadding());
    own->generation = d->generation + 1;
    own->reevaluationEnabled = d->reevaluationEnabled;
    own->namesOrdered = d->namesOrdered;
    leaveToParentProcess();
    d = std::move(own);
    connectWorker();
}

bool FileManager::getFilesFromFolder(const std::string& path, bool force)
{
    return getFilesFromFolderPrivate(path, force, true);
}

bool FileManager::getFilesFromFolderSynchronously(const std::string& path, bool force)
{
    return getFilesFromFolderPrivate(path, force, false);
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

int FileManager::readError() const
{
    return d->readError;
}

std::vector<std::string> FileManager::getFilenameList(const std::string& path, bool splitGaps, bool longNames,
                                                      bool includeDirectories, bool includeHidden)
{
    std::vector<std::string> names;
    if (!getFilesFromFolderSynchronously(path, true))
        return names;
    std::vector<FileInfo*> entries;
    buildRunningList(&entries, splitGaps ? Base::FileHandle::RegisteredSplitSequences
                                         : Base::FileHandle::RegisteredSequences);
    d->attempt([&] {
        for (const FileInfo* entry : entries) {
            if ((entry->isDirectory() && !includeDirectories) ||
                (entry->displayName()[0] == '.' && !includeHidden))
                continue;
            if (entry->isSequence() && longNames)
                names.push_back(entry->getSequenceLongName().toLatin1().toStdString());
            else
                names.emplace_back(entry->displayName());
        }
    });
    return names;
}

void FileManager::setFiles(const std::list<std::string>& names)
{
    d->attempt([&] {
        auto records = std::make_shared<std::vector<FileNameRecord>>(names.size());
        auto record = records->begin();
        for (const std::string& name : names) {
            Base::copyTruncated(record->name, name.c_str());
            record->kind = 0;
            ++record;
        }
        d->pendingNames = std::move(records);
    });
}

void FileManager::insertFiles()
{
    if (const auto names = std::exchange(d->pendingNames, nullptr))
        d->attempt([&] { d->insert(*names); });
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

void FileManager::updateInfo(const std::vector<FileInfoWrapper>* batch, bool announce)
{
    if (!batch)
        return;
    const auto first = static_cast<int>(d->index.knownCount());
    d->attempt([&] {
        if (d->reevaluationEnabled)
            d->index.regroup();
        d->index.apply(*batch);
    });
    if (!announce)
        return;
    if (d->reevaluationEnabled)
        emit refreshList();
    else
        emit infoUpdated(first, static_cast<int>(d->index.knownCount()) - first);
}

void FileManager::setAssumeZeroPadding(bool assume)
{
    d->index.setAssumeZeroPadding(assume);
}

void FileManager::setReevaluationEnabled(bool enabled)
{
    d->reevaluationEnabled = enabled;
}

void FileManager::reevaluateSequences()
{
    d->attempt([this] { d->index.regroup(); });
}

void FileManager::createSecondarySequence(FileInfo* sequence, const char* pattern, int digits, bool padded,
                                          int frame, FileInfo* member)
{
    d->attempt([&] { d->index.makeSequence(sequence, pattern, digits, padded, frame, member); });
}

void FileManager::createSplitSequences()
{
    d->attempt([this] { d->index.split(); });
}

void FileManager::buildRunningList(std::vector<FileInfo*>* out, Base::FileHandle::ListType type)
{
    try {
        d->index.rows(*out, type);
    } catch (const std::bad_alloc&) {
        out->clear();
        d->readError = ENOMEM;
    }
}

bool FileManager::isSequence(const char* name, int& frame, char* pattern, int& digits, bool& padded)
{
    return FrameName::read(name, frame, pattern, digits, padded);
}

void FileManager::addSequenceFileExtension(const char* extension)
{
    FileInfo::addSequenceFileExtension(extension);
}

std::shared_ptr<const void> FileManager::entryStorage() const
{
    return d->index.storage();
}

FileInfo* FileManager::createEntry()
{
    return d->index.createEntry();
}

void FileManager::followMembers(FileInfo* sequence)
{
    d->attempt([&] { d->index.follow(sequence); });
}

void FileManager::forgetFollowers()
{
    d->index.forgetFollowers();
}

void FileManager::setNamesOrdered(bool ordered)
{
    d->namesOrdered = ordered;
    if (!ordered)
        d->nameOrder.reset();
}

NameOrder FileManager::takeNameOrder()
{
    const auto taken = std::move(d->nameOrder);
    if (!taken || !taken->isFinishing())
        return NameOrder();
    return std::move(*taken);
}

bool FileManager::isInfoComplete() const
{
    return d->index.knownCount() == d->index.size();
}

unsigned FileManager::generation() const
{
    return d->generation;
}

void FileManager::takeArrivals()
{
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

} // namespace Halvern::UI
