#include "catalogue/FileInfo.h"

#include "base/FileSystem.h"
#include "frames/Placeholder.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <string>
#include <utility>

namespace Halvern::UI {

using Base::copyTruncated;

namespace {

std::uint64_t extensionHash(const char* extension)
{
    if (!extension)
        return 0;
    if (*extension == '.')
        ++extension;
    std::uint64_t hash = 0;
    for (; *extension; ++extension)
        hash = hash * 65599 + static_cast<unsigned char>(Base::lowerCase(*extension));
    return hash;
}

/// The registered extensions, for all threads. Extensions with equal hashes count as the same.
struct ExtensionRegistry
{
    std::shared_mutex mutex;
    std::set<std::uint64_t> hashes; ///< guarded by mutex
};

ExtensionRegistry& extensionRegistry()
{
    static ExtensionRegistry registry;
    return registry;
}

} // namespace

// The buffers are not cleared after their terminators: entries are made by the hundred thousand.
FileInfo::FileInfo()
{
    m_fileName[0] = m_sequenceName[0] = m_sortName[0] = '\0';
}

FileInfo::FileInfo(const char* name, bool isSequence)
    : FileInfo()
{
    set(Sequence, isSequence);
    takeName(name);
}

FileInfo::FileInfo(const QFileInfo& info)
    : FileInfo()
{
    set(Directory, info.isDir());
    set(Writable, info.isWritable());
    set(InfoValid, true);
    m_size = static_cast<unsigned long long>(info.size());
    const QDateTime modified = info.lastModified();
    m_modificationTime = modified.isValid() ? modified.toSecsSinceEpoch() : 0;
    takeName(info.fileName().toUtf8().constData());
}

void FileInfo::takeName(const char* name)
{
    m_fileNameLength = copyTruncated(m_fileName, name);
    platformSpecificInitialization();
}

// A longer name keeps the key that the entry had, which is empty in a new one.
void FileInfo::platformSpecificInitialization()
{
    if (m_fileNameLength >= SortNameSize)
        return;
    char lowered[SortNameSize];
    std::transform(m_fileName, m_fileName + m_fileNameLength + 1, lowered, Base::lowerCase);
    // In most locales the key is several times as long as the name, and strxfrm() leaves a buffer undefined
    // if it is too small. So the key is made whole, and cut.
    char key[SortNameSize * 16];
    const std::size_t length = std::strxfrm(key, lowered, sizeof key);
    std::string longKey(length < sizeof key ? 0 : length + 1, '\0');
    if (!longKey.empty())
        std::strxfrm(longKey.data(), lowered, longKey.size());
    copyTruncated(m_sortName, longKey.empty() ? key : longKey.c_str());
}

void FileInfo::setFileName(const char* name)
{
    set(InfoValid, false);
    set(AutoSequenceChecked, false);
    takeName(name);
}

void FileInfo::setBasicInformation(const char* name, bool isSequence)
{
    m_startFrame = 0;
    m_endFrame = 0;
    m_parentSequence = nullptr;
    m_flags = 0;
    set(Sequence, isSequence);
    clearSequenceList();
    m_frameRanges.clear();
    takeName(name);
}

void FileInfo::setAdditionalInfo(const FileInfoWrapper& info)
{
    m_size = info.size;
    m_modificationTime = info.modificationTime;
    set(Directory, info.isDirectory);
    set(InfoValid, true);
}

void FileInfo::setAdditionalInfo(unsigned long long size, long modificationTime, bool isDirectory,
                                 bool writable)
{
    setAdditionalInfo({size, isDirectory, modificationTime});
    set(Writable, writable);
}

void FileInfo::updateFromMember(unsigned long long previousSize, const FileInfo& member)
{
    m_size += member.m_size - previousSize;
    m_modificationTime = std::max(m_modificationTime, member.m_modificationTime);
}

void FileInfo::setIsSequence(bool sequence)
{
    set(Sequence, sequence);
    set(InfoValid, false);
    set(AutoSequenceChecked, false);
}

void FileInfo::setFrameInformation(int start, int end, int hashes)
{
    m_startFrame = start;
    m_endFrame = end;
    m_numberOfHashes = hashes;
}

void FileInfo::setNumberOfHashes(int digits, bool padded, bool assumeZeroPadding)
{
    if (padded)
        set(ZeroPadded, true);
    if (isZeroPadded())
        m_numberOfHashes = std::max(m_numberOfHashes, digits);
    else if (m_numberOfHashes == 0 && assumeZeroPadding)
        m_numberOfHashes = digits;
    else if (m_numberOfHashes == 0 || m_numberOfHashes != digits)
        m_numberOfHashes = 1;
}

void FileInfo::insertSequenceFile(int frame, FileInfo* file)
{
    m_sequenceFiles.try_emplace(m_sequenceFiles.end(), frame, file);
    ++m_sequenceFileCount;
}

std::map<int, FileInfo*> FileInfo::takeMembers()
{
    m_sequenceFileCount = 0;
    return std::exchange(m_sequenceFiles, {});
}

void FileInfo::clearSequenceList()
{
    m_sequenceFiles.clear();
    m_sequenceFileCount = 0;
}

void FileInfo::synchSequenceData()
{
    const auto addMembers = [this](auto from, auto to) {
        for (; from != to; ++from) {
            if (from->second)
                updateFromMember(0, *from->second);
        }
    };
    if (isSequence() && m_sequenceFileCount >= 2) {
        m_size = 0;
        m_modificationTime = 0;
        addMembers(m_sequenceFiles.begin(), m_sequenceFiles.end());
    } else if (m_parentSequence && m_startFrame < m_endFrame) {
        const auto& members = m_parentSequence->m_sequenceFiles;
        addMembers(members.lower_bound(m_startFrame), members.upper_bound(m_endFrame));
    }
}

// Returns whether there are gaps; without any, the ranges stay empty.
bool FileInfo::collectFrameRanges()
{
    m_frameRanges.clear();
    if (m_sequenceFiles.empty())
        return false;
    int runStart = m_sequenceFiles.begin()->first;
    // If the number of frames is that from the first to the last, nothing is missing.
    const long long span = static_cast<long long>(m_sequenceFiles.rbegin()->first) - runStart + 1;
    if (span == static_cast<long long>(m_sequenceFiles.size()))
        return false;
    int previous = runStart;
    for (const auto& member : m_sequenceFiles) {
        if (static_cast<long long>(member.first) - previous >= 2) {
            m_frameRanges.push_back({runStart, previous, 1});
            runStart = member.first;
        }
        previous = member.first;
    }
    if (m_frameRanges.empty())
        return false;
    m_frameRanges.push_back({runStart, previous, 1});
    return true;
}

void FileInfo::constructSequenceName()
{
    if (!isSequence() || isSequenceNameBuilt())
        return;
    set(SequenceNameBuilt, true);
    if (m_sequenceFileCount == 1) {
        setSequenceName(m_fileName);
        return;
    }
    if (m_sequenceFileCount != 0)
        set(HasGaps, collectFrameRanges());

    int first = m_startFrame;
    int last = m_endFrame;
    if (first == 0 && last == 0 && !m_sequenceFiles.empty()) {
        first = m_sequenceFiles.begin()->first;
        last = m_sequenceFiles.rbegin()->first;
    }
    const std::string name = Placeholder::widened({m_fileName, m_fileNameLength}, m_numberOfHashes) + ' ' +
                             Placeholder::rangeText(first, last);
    setSequenceName(name.c_str());
}

QString FileInfo::getSequenceLongName() const
{
    return QString::fromLatin1((m_sequenceName + Placeholder::runsText(m_frameRanges)).c_str());
}

void FileInfo::detectAutoSequence()
{
    bool registered = false;
    if (isSequence() && m_sequenceFileCount != 1) {
        const char* dot = std::strrchr(m_fileName, '.');
        if (dot != m_fileName)
            registered = isSequenceExtension(dot);
    }
    set(AutoSequence, registered);
    set(AutoSequenceChecked, true);
}

bool FileInfo::isDirSafe(const QDir& dir) const
{
    if (isSequence())
        return isDirectory();
    const QFileInfo info(dir, QString::fromLatin1(m_fileName));
    if (info.isDir())
        return true;
    if (info.exists())
        return false;
    // The Latin-1 reading of a name outside ASCII rarely names it on disk; its bytes do.
    const QByteArray path = QFile::encodeName(dir.absolutePath()) + '/' + m_fileName;
    return Base::isDirectory(path.constData());
}

void FileInfo::addSequenceFileExtension(const char* extension)
{
    ExtensionRegistry& registry = extensionRegistry();
    const std::unique_lock lock(registry.mutex);
    registry.hashes.insert(extensionHash(extension));
}

bool FileInfo::isSequenceExtension(const char* extension)
{
    ExtensionRegistry& registry = extensionRegistry();
    const std::shared_lock lock(registry.mutex);
    return registry.hashes.count(extensionHash(extension)) != 0;
}

} // namespace Halvern::UI
