#include "catalogue/FileManager.h"

#include "base/FileSystem.h"
#include "base/Text.h"
#include "catalogue/FileGatherer.h"
#include "catalogue/NameOrder.h"

#include <QPointer>
#include <QTimer>
#include <cerrno>
#include <dirent.h>

namespace Halvern::UI {

namespace {

constexpr std::size_t TypicalFileCount = 4000;
constexpr qint64 TurnShare = 8; // milliseconds

constexpr const char* builtInSequenceExtensions[] = {
    "arri",  "ari",   "bmp",   "cin", "crw",  "cr2",  "dpx",   "dng",    "exr", "fpi",
    "ftif",  "ftiff", "gif",   "hdr", "hdri", "iff",  "iff16", "it8",    "jpg", "jpeg",
    "pic",   "png",   "png16", "psd", "rgb",  "rgba", "rgbe",  "rgbea",  "rla", "sgi",
    "sgi16", "sxr",   "targa", "tga", "tif",  "tiff", "tif16", "tiff16", "xpm", "yuv"};

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

FileManager::FileManager()
    : gatherer(std::make_unique<FileGatherer>([this](std::size_t names) { return pool.prepare(names); }))
    , arrivalsTimer(new QTimer(this))
{
    arrivalsTimer->setSingleShot(true);
    arrivalsTimer->setTimerType(Qt::PreciseTimer);
    connect(arrivalsTimer, SIGNAL(timeout()), this, SLOT(takeArrivals()));
    files.reserve(TypicalFileCount);
    sequenceOf.reserve(TypicalFileCount);
    setInitialSequenceExtensions();
    connect(gatherer.get(), SIGNAL(fileNameBatchReady()), this, SLOT(fileNameBatchReady()));
    connect(gatherer.get(), SIGNAL(fileInfoBatchReady()), this, SLOT(fileInfoBatchReady()));
    connect(gatherer.get(), SIGNAL(fileNameFinished(bool)), this, SLOT(fileNameFinished(bool)));
}

FileManager::~FileManager()
{
    gatherer->stop();
}

void FileManager::setInitialSequenceExtensions()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    for (const char* extension : builtInSequenceExtensions)
        addSequenceFileExtension(extension);
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
    if (readingSynchronously)
        return false;
    const int error = errorOfOpening(path);
    const bool samePath = path == currentDirectory;
    if (samePath && !force && error == 0 && m_readError == 0)
        return false;
    gatherer->stop();
    currentDirectory = path;
    m_readError = error;
    if (error != 0) {
        if (!samePath)
            cleanData();
        return false;
    }
    if (asynchronous) {
        leaveToWorker(entriesByName);
        leaveToWorker(splitFollowers);
        leaveToWorker(hostFollowers);
    }
    cleanData();
    if (asynchronous) {
        gatherer->startReading(path);
    } else {
        readingSynchronously = true;
        gatherer->readNow(path);
        readingSynchronously = false;
    }
    return true;
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
    for (const FileInfo* entry : entries) {
        if ((entry->isDirectory() && !includeDirectories) ||
            (entry->displayName()[0] == '.' && !includeHidden))
            continue;
        if (entry->isSequence() && longNames)
            names.push_back(entry->getSequenceLongName().toLatin1().toStdString());
        else
            names.emplace_back(entry->displayName());
    }
    return names;
}

void FileManager::setFiles(const std::list<std::string>& names)
{
    auto records = std::make_shared<std::vector<FileNameRecord>>(names.size());
    auto record = records->begin();
    for (const std::string& name : names) {
        Base::copyTruncated(record->name, name.c_str());
        record->kind = 0;
        ++record;
    }
    pendingNames = std::move(records);
}

void FileManager::insertFiles()
{
    const auto names = std::exchange(pendingNames, nullptr);
    if (!names || names->empty())
        return;
    forgetSplitSequences();
    if (nameOrder && nameOrder->isFinishing())
        nameOrder.reset();
    for (const FileNameRecord& record : *names) {
        FileInfo* file = pool.create();
        file->setBasicInformation(record.name, false);
        file->setIsDirectory(record.kind == DT_DIR);
        files.push_back(file);
        sequenceOf.push_back(nullptr);
        if (nameOrder)
            nameOrder->add(file);
        enterFile(files.size() - 1, true);
    }
}

void FileManager::cleanData()
{
    gatherer->stop(); // what is still to come belongs to entries that go
    grownPatterns.clear();
    patterns.clear();
    entriesByName.clear();
    splitFollowers.clear();
    hostFollowers.clear();
    files.clear();
    sequenceOf.clear();
    sequences.clear();
    sequencesInUse = 0;
    forgetSplitSequences();
    nameOrder = namesOrdered ? std::make_unique<NameOrder>() : nullptr;
    unsummed.clear();
    infoCursor = 0;
    splitIndex = 0;
    pool.clear();
    ++entryGeneration;
}

// Freeing a node for each of a million files takes longer than a click may.
template <class Container>
void FileManager::leaveToWorker(Container& container)
{
    if (container.empty())
        return;
    const auto left = std::make_shared<Container>(std::exchange(container, Container()));
    gatherer->disposeOf([left] {
        constexpr int Slice = 4096;
        for (int i = 0; i < Slice && !left->empty(); ++i)
            left->erase(left->begin());
        return !left->empty();
    });
}

void FileManager::updateInfo(const std::vector<FileInfoWrapper>* batch, bool announce)
{
    if (!batch)
        return;
    if (reevaluationEnabled)
        reevaluateSequences();
    addArrivedMembers();
    const int first = infoCursor;
    for (const FileInfoWrapper& info : *batch) {
        const auto index = static_cast<std::size_t>(infoCursor);
        if (index == files.size())
            break;
        applyInfo(index, info);
        ++infoCursor;
    }
    for (FileInfo* sequence : unsummed)
        sequence->synchSequenceData();
    unsummed.clear();
    if (!announce)
        return;
    if (reevaluationEnabled)
        emit refreshList();
    else
        emit infoUpdated(first, infoCursor - first);
}

// What contains the file follows the one change. Summing over all members again at every batch would make the
// work grow with the square of the directory.
void FileManager::applyInfo(std::size_t index, const FileInfoWrapper& info)
{
    FileInfo* file = files[index];
    const unsigned long long previousSize = file->size();
    // Set by a host, in which case the sums know nothing of it.
    const bool wasSet = file->isInfoValid();
    file->setAdditionalInfo(info);
    FileInfo* sequence = sequenceOf[index];
    if (sequence && wasSet)
        unsummed.insert(sequence);
    else if (sequence && sequence->sequenceFileCount() >= 2)
        sequence->updateFromMember(previousSize, *file);
    for (const Followers* followers : {&splitFollowers, &hostFollowers}) {
        const auto range = followers->equal_range(file);
        for (auto follower = range.first; follower != range.second; ++follower)
            follower->second->updateFromMember(previousSize, *file);
    }
}

FileInfo* FileManager::createEntry()
{
    return pool.create();
}

void FileManager::followMembers(FileInfo* sequence)
{
    if (isInfoComplete())
        return;
    for (const auto& member : sequence->sequenceFiles()) {
        if (member.second)
            hostFollowers.emplace(member.second, sequence);
    }
}

void FileManager::forgetFollowers()
{
    hostFollowers.clear();
}

// Qt delivers all that was posted before it looks at the mouse or a timer again, and the worker can post as
// fast as this thread works it off. So there is a share for each turn of the event loop; what is beyond it
// waits for the timer, which becomes due in the turn and is served in the next.
bool FileManager::mayTakeNow()
{
    if (readingSynchronously || sender() != gatherer.get())
        return true;
    if (!arrivalsTimer->isActive())
        beginTurn();
    return !turnIsOver();
}

void FileManager::beginTurn()
{
    turn.start();
    arrivalsTimer->start(1);
}

bool FileManager::turnIsOver() const
{
    return turn.elapsed() >= TurnShare;
}

void FileManager::takeArrivals()
{
    if (!gatherer->hasArrivals())
        return;
    beginTurn();
    const QPointer<FileManager> alive(this);
    while (alive && gatherer->hasArrivals() && !turnIsOver()) {
        if (gatherer->hasNames())
            takeNames();
        else if (!prepareListInTurn())
            return;
        else if (takeNamesFinished())
            announceNames(false);
        else if (const auto infos = gatherer->takeInfos())
            updateInfo(infos.get(), true);
    }
}

// What is left to do when all names are taken; false when the turn is over and not all is done.
bool FileManager::prepareListInTurn()
{
    constexpr std::size_t NamesAtOnce = 1000;
    if (!addArrivedMembersInTurn())
        return false;
    while (nameOrder && !nameOrder->finish(NamesAtOnce)) {
        if (!readingSynchronously && turnIsOver())
            return false;
    }
    return true;
}

void FileManager::setNamesOrdered(bool ordered)
{
    namesOrdered = ordered;
    if (!ordered)
        nameOrder.reset();
}

NameOrder FileManager::takeNameOrder()
{
    if (!nameOrder || !nameOrder->isFinishing())
        return NameOrder();
    const auto taken = std::exchange(nameOrder, nullptr);
    taken->finish();
    return std::move(*taken);
}

void FileManager::takeNames()
{
    if (auto names = gatherer->takeNames()) {
        pendingNames = names;
        insertFiles();
        gatherer->giveBackNames(std::move(names));
    }
}

void FileManager::fileNameBatchReady()
{
    if (mayTakeNow())
        takeNames();
}

void FileManager::fileInfoBatchReady()
{
    if (!mayTakeNow())
        return;
    const auto infos = gatherer->takeInfos();
    updateInfo(infos.get(), true);
}

void FileManager::fileNameFinished(bool withInfo)
{
    const bool announced = sender() == gatherer.get();
    if (!mayTakeNow())
        return;
    // A stopped run may have left its announcement in the queue, and names may still wait for their turn.
    if (announced && (!gatherer->areNamesTaken() || !prepareListInTurn() || !takeNamesFinished()))
        return;
    announceNames(withInfo);
}

bool FileManager::takeNamesFinished()
{
    if (!gatherer->takeNamesFinished())
        return false;
    m_readError = gatherer->error();
    return true;
}

void FileManager::announceNames(bool withInfo)
{
    if (withInfo) {
        const auto infos = gatherer->takeInfos();
        updateInfo(infos.get(), false);
    }
    const QPointer<FileManager> self(this);
    emit refreshList();
    if (withInfo && self)
        emit infoUpdated(0, -1);
}

void FileManager::addSequenceFileExtension(const char* extension)
{
    FileInfo::addSequenceFileExtension(extension);
}

} // namespace Halvern::UI
