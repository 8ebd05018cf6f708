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

// Several threads may make the first managers at once.
void setInitialSequenceExtensions()
{
    [[maybe_unused]] static const bool done = [] {
        for (const char* extension : builtInSequenceExtensions)
            FileInfo::addSequenceFileExtension(extension);
        return true;
    }();
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
    if (d->m_process != ::getpid())
        leaveToParentProcess();
}

void FileManager::connectWorker()
{
    d->m_self = this;
    d->m_arrivalsTimer.setSingleShot(true);
    d->m_arrivalsTimer.setTimerType(Qt::PreciseTimer);
    connect(&d->m_arrivalsTimer, SIGNAL(timeout()), this, SLOT(takeArrivals()));
    connect(&d->m_gatherer, SIGNAL(fileNameBatchReady()), this, SLOT(takeArrivals()));
    connect(&d->m_gatherer, SIGNAL(fileInfoBatchReady()), this, SLOT(takeArrivals()));
    connect(&d->m_gatherer, SIGNAL(fileNameFinished(bool)), this, SLOT(takeArrivals()));
}

int FileManager::readError() const
{
    return d->m_readError;
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
        d->m_pendingNames = std::move(batch);
    });
}

void FileManager::insertFiles()
{
    if (const auto names = std::exchange(d->m_pendingNames, nullptr))
        d->attempt([&] { d->insert(*names); });
}

void FileManager::updateInfo(const std::vector<FileInfoWrapper>* batch, bool announce)
{
    if (!batch)
        return;
    const auto first = static_cast<int>(d->m_index.knownCount());
    d->attempt([&] {
        if (d->m_reevaluationEnabled)
            d->m_index.regroup();
        d->m_index.apply(*batch);
    });
    if (!announce)
        return;
    if (d->m_reevaluationEnabled)
        emit refreshList();
    else
        emit infoUpdated(first, static_cast<int>(d->m_index.knownCount()) - first);
}

void FileManager::setAssumeZeroPadding(bool assume)
{
    d->m_index.setAssumeZeroPadding(assume);
}

void FileManager::setReevaluationEnabled(bool enabled)
{
    d->m_reevaluationEnabled = enabled;
}

void FileManager::reevaluateSequences()
{
    d->attempt([this] { d->m_index.regroup(); });
}

void FileManager::createSecondarySequence(FileInfo* sequence, const char* pattern, int digits, bool padded,
                                          int frame, FileInfo* member)
{
    d->attempt([&] { d->m_index.makeSequence(sequence, pattern, digits, padded, frame, member); });
}

void FileManager::createSplitSequences()
{
    d->attempt([this] { d->m_index.split(); });
}

void FileManager::buildRunningList(std::vector<FileInfo*>* out, Base::FileHandle::ListType type)
{
    try {
        d->m_index.rows(*out, type);
    } catch (const std::bad_alloc&) {
        out->clear();
        d->m_readError = ENOMEM;
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
    return d->m_index.storage();
}

FileInfo* FileManager::createEntry()
{
    return d->m_index.createEntry();
}

bool FileManager::owns(const FileInfo* entry) const
{
    return d->m_index.pool().owns(entry);
}

void FileManager::followMembers(FileInfo* sequence)
{
    d->attempt([&] { d->m_index.follow(sequence); });
}

void FileManager::forgetFollowers()
{
    d->m_index.forgetFollowers();
}

void FileManager::setNamesOrdered(bool ordered)
{
    d->m_namesOrdered = ordered;
    if (!ordered)
        d->m_nameOrder.reset();
}

NameOrder FileManager::takeNameOrder()
{
    const auto taken = std::move(d->m_nameOrder);
    return taken && taken->isFinished() ? std::move(*taken) : NameOrder();
}

bool FileManager::isInfoComplete() const
{
    return d->m_index.knownCount() == d->m_index.size();
}

unsigned FileManager::generation() const
{
    return d->m_generation;
}

} // namespace Halvern::UI
