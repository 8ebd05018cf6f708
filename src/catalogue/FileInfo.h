#pragma once

#include "base/Export.h"
#include "base/Text.h"
#include "catalogue/FileInfoWrapper.h"
#include "frames/FrameRange.h"

#include <QDir>
#include <QString>
#include <cstddef>
#include <map>
#include <vector>

class QFileInfo;

namespace Halvern::UI {

/// One row of a directory: a plain file, a directory, or an image sequence that stands for many numbered
/// files.
///
/// A plain value with fixed-size name buffers, so that large directories stand in contiguous memory. Names
/// are bytes as the file system has them, cut after 1023 bytes. An entry does not own its members nor
/// parentSequence(). Entries are not synchronised: they belong to the thread of their manager or list.
/// Nothing reports errors.
class HVCOREUI_EXPORT FileInfo
{
public:
    static constexpr std::size_t NameSize = 1024;    ///< Bytes of a name buffer, terminator included.
    static constexpr std::size_t SortNameSize = 128; ///< Bytes of the sort key, terminator included.

    /// The bits of flags().
    enum Flag : unsigned
    {
        Directory = 0x001,
        Sequence = 0x002,
        Writable = 0x004,
        InfoValid = 0x008, ///< Size, modification time and the directory bit are known.
        SequenceNameBuilt = 0x010,
        ZeroPadded = 0x020, ///< Some member's frame number had a leading zero.
        HasGaps = 0x040,    ///< The frame numbers are not contiguous.
        AutoSequence = 0x080,
        AutoSequenceChecked = 0x100
    };

    /// An entry without a name: every number 0, every text empty, no members, no parent.
    FileInfo();

    /// An entry of the given name; with @p isSequence the name is a pattern that holds one "#".
    FileInfo(const char* name, bool isSequence);

    /// An entry with size, time and flags taken from @p info, which asks the file system.
    explicit FileInfo(const QFileInfo& info);

    /// The member name, or for a sequence the pattern: "shot.#.exr".
    const char* fileName() const { return m_fileName; }
    /// The display name that constructSequenceName() built: "shot.####.exr 1-100"; empty until then.
    const char* sequenceName() const { return m_sequenceName; }
    /// sequenceName() for a sequence, fileName() for everything else.
    const char* displayName() const { return isSequence() ? m_sequenceName : m_fileName; }
    /// Bytes of fileName().
    std::size_t getFilenameLength() const { return m_fileNameLength; }
    /// The key that names are ordered by with `strcmp`; empty for names of 128 bytes and more.
    const char* getStringSortName() const { return m_sortName; }

    unsigned flags() const { return m_flags; } ///< An OR of Flag.
    bool isDirectory() const { return has(Directory); }
    bool isSequence() const { return has(Sequence); }
    bool isWritable() const { return has(Writable); }
    bool isInfoValid() const { return has(InfoValid); }
    bool isSequenceNameBuilt() const { return has(SequenceNameBuilt); }
    bool isZeroPadded() const { return has(ZeroPadded); }
    bool hasGaps() const { return has(HasGaps); }
    bool isAutoSequence() const { return has(AutoSequence); } ///< See detectAutoSequence().
    bool isAutoSequenceChecked() const { return has(AutoSequenceChecked); }

    /// Bytes; for a sequence the sum over its members.
    unsigned long long size() const { return m_size; }
    /// Seconds since the Unix epoch; for a sequence the latest of its members.
    long long modificationTime() const { return m_modificationTime; }
    /// How often insertSequenceFile() was called since the members were last cleared, duplicates included.
    int sequenceFileCount() const { return m_sequenceFileCount; }
    /// The runs of consecutive frames; empty for a sequence without gaps.
    const std::vector<FrameRange>& frameRanges() const { return m_frameRanges; }
    /// The members by frame, ascending; borrowed pointers, null for those that a host inserted as null.
    const std::map<int, FileInfo*>& sequenceFiles() const { return m_sequenceFiles; }
    int startFrame() const { return m_startFrame; } ///< First frame of an explicit range, else 0.
    int endFrame() const { return m_endFrame; }     ///< Last frame of an explicit range, else 0.
    /// Width of the frame number: how many "#" the display name carries.
    int numberOfHashes() const { return m_numberOfHashes; }
    /// The full sequence whose members this split-off run covers; null for every other entry. Not owned.
    FileInfo* parentSequence() const { return m_parentSequence; }

    /// Renames the entry; what was known of the old file no longer counts as valid.
    void setFileName(const char* name);
    /// Recycles the entry for a new name: clears flags, members, ranges, explicit range and parent. The size,
    /// the modification time and numberOfHashes() stay as they were.
    void setBasicInformation(const char* name, bool isSequence);
    /// Takes over what the worker found; the writable bit stays as it is.
    void setAdditionalInfo(const FileInfoWrapper& info);
    /// As above, with the writable bit.
    void setAdditionalInfo(unsigned long long size, long modificationTime, bool isDirectory, bool writable);
    /// Adds what one member got, without a walk over the others: the size grows by the member's size less
    /// @p previousSize bytes, the time becomes the member's if that is later.
    void updateFromMember(unsigned long long previousSize, const FileInfo& member);
    void setIsDirectory(bool directory) { set(Directory, directory); }
    /// Sets or clears the sequence bit. Size, time and the extension check no longer count as known.
    void setIsSequence(bool sequence);
    void setStartFrame(int frame) { m_startFrame = frame; }
    void setEndFrame(int frame) { m_endFrame = frame; }
    void setFrameInformation(int start, int end, int hashes);
    void setSequenceName(const char* name) { Base::copyTruncated(m_sequenceName, name); }
    void setParentSequence(FileInfo* parent) { m_parentSequence = parent; }
    /// Settles numberOfHashes(). To be called for every member, with the width of its frame number and
    /// whether that begins with "0". Padded members give the largest width; unpadded members of one width
    /// give that width if @p assumeZeroPadding is set; all else gives 1.
    void setNumberOfHashes(int digits, bool padded, bool assumeZeroPadding);

    /// Adds a member under its frame. The first member of a frame is kept; a later one only counts.
    void insertSequenceFile(int frame, FileInfo* file);
    /// Forgets all members, and returns them; frameRanges() stays.
    std::map<int, FileInfo*> takeMembers();
    void clearSequenceList();
    /// Lets constructSequenceName() build the name again, for a sequence that gained a member.
    void invalidateSequenceName() { set(SequenceNameBuilt, false); }

    /// Sums size and time over the members (two or more), or over the members of parentSequence() that a
    /// split-off run of several frames covers. The run's sum is added to what the entry has.
    void synchSequenceData();
    /// Builds sequenceName(), frameRanges() and the gap flag, once, for an entry with the sequence bit.
    /// Example: "plate.#.dpx" with the members 1-49 and 61-100 of width 4 gives "plate.####.dpx 1-100".
    void constructSequenceName();
    /// sequenceName() with the runs that are present: "plate.####.dpx 1-100 ( 1-49 61-100 )". Bytes are read
    /// as Latin-1.
    QString getSequenceLongName() const;
    /// Sets isAutoSequence(): whether the extension is a registered sequence extension; never for a sequence
    /// of one.
    void detectAutoSequence();
    /// Whether the entry is a directory in @p dir. A sequence answers from its flag; every other entry asks
    /// the file system each time.
    bool isDirSafe(const QDir& dir) const;

    /// Registers an extension whose numbered files form sequences, for the life of the process. "exr", ".exr"
    /// and "EXR" are the same. Call it at start-up: rows that exist stay as they are. Any thread may call it.
    static void addSequenceFileExtension(const char* extension);
    /// Whether the extension, written in any of those ways, is registered.
    static bool isSequenceExtension(const char* extension);

private:
    bool has(Flag flag) const { return (m_flags & flag) != 0; }
    void set(Flag flag, bool on) { m_flags = on ? m_flags | flag : m_flags & ~unsigned(flag); }
    void takeName(const char* name);
    void platformSpecificInitialization();
    bool collectFrameRanges();

    // What most entries use comes first, so that it lies on few cache lines.
    unsigned m_flags = 0;
    int m_sequenceFileCount = 0;
    unsigned long long m_size = 0;
    long long m_modificationTime = 0;
    std::size_t m_fileNameLength = 0;
    int m_startFrame = 0;
    int m_endFrame = 0;
    int m_numberOfHashes = 0;
    FileInfo* m_parentSequence = nullptr;
    std::vector<FrameRange> m_frameRanges;
    std::map<int, FileInfo*> m_sequenceFiles;
    char m_sortName[SortNameSize];
    char m_fileName[NameSize];
    char m_sequenceName[NameSize];
};

} // namespace Halvern::UI
