#include "catalogue/FileManager.h"

#include "base/Text.h"
#include "catalogue/FileManagerPrivate.h"
#include "frames/FrameName.h"

#include <utility>

namespace Halvern::UI {

namespace {

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

} // namespace

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
        auto batch = std::make_shared<NameBatch>();
        for (const std::string& name : names)
            batch->add(name.c_str(), false);
        d->pendingNames = std::move(batch);
    });
}

void FileManager::insertFiles()
{
    if (const auto names = std::exchange(d->pendingNames, nullptr))
        d->attempt([&] { d->insert(*names); });
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
    return taken && taken->isFinished() ? std::move(*taken) : NameOrder();
}

bool FileManager::isInfoComplete() const
{
    return d->index.knownCount() == d->index.size();
}

unsigned FileManager::generation() const
{
    return d->generation;
}

} // namespace Halvern::UI
