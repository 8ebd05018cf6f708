#pragma once

#include "base/FileHandle.h"
#include "catalogue/EntryPool.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Halvern::UI {

/// Groups the names of one directory into sequences: names go in, then attributes, and the rows of a list
/// type come out. Both may arrive in parts, and rows may be built in between.
///
/// A plain value for one thread: no events, threads, timers or disk. It owns all entries; pointers to them
/// are valid until clear(). After an exception (`std::bad_alloc`) it can still be used; the name that was
/// being added may be missing from some list types.
class SequenceIndex
{
    struct Groups;

public:
    /// Adds a file or folder and returns its entry. Numbered files wait for settle() to become members.
    FileInfo* add(const char* name, bool isDirectory);
    /// Makes at most @p most waiting files members of their sequences; true if no file waits any more.
    bool settle(std::size_t most = SIZE_MAX);
    /// Applies attributes to the first entries that have none yet, in the order of adding, and to the sums of
    /// what contains them. Returns how many records were used; those beyond the last entry are ignored.
    std::size_t apply(const std::vector<FileInfoWrapper>& infos);
    /// How many entries have attributes from apply().
    std::size_t knownCount() const { return m_known; }
    std::size_t size() const { return m_files.size(); }

    void rows(std::vector<FileInfo*>& out, Base::FileHandle::ListType type);

    /// Forgets all entries; their memory is used again. Destroying what is returned takes time in proportion
    /// to the number of files, and may be done on any thread.
    Groups clear();

    /// See FileManager::setAssumeZeroPadding().
    void setAssumeZeroPadding(bool assume) { m_assumeZeroPadding = assume; }
    bool assumesZeroPadding() const { return m_assumeZeroPadding; }
    /// Groups all files anew. The "#" width of a sequence is then that of its first member.
    void regroup();
    /// See FileManager::createSecondarySequence().
    void makeSequence(FileInfo* sequence, const char* pattern, int digits, bool padded, int frame,
                      FileInfo* member);
    /// Makes an entry for each run of several frames of the sequences with gaps, once for the present files.
    void split();

    /// An entry that is in no list.
    FileInfo* createEntry() { return m_pool->create(); }
    /// Keeps the size and time of an entry from createEntry() up to date as attributes of its members arrive.
    void follow(FileInfo* sequence);
    /// Ends the following of all entries that follow() was called for.
    void forgetFollowers() { m_groups.hostFollowers.clear(); }

    /// Keeps the memory of all entries while it is held, also after the index is destroyed.
    std::shared_ptr<const void> storage() const { return m_pool; }
    bool isStorageShared() const { return m_pool.use_count() > 1; }
    const EntryPool& pool() const { return *m_pool; }
    EntryPool& pool() { return *m_pool; }

private:
    using Followers = std::unordered_multimap<const FileInfo*, FileInfo*>; // member to sum

    struct File
    {
        FileInfo* entry;
        FileInfo* sequence; // it is or becomes a member of this; may be null
    };
    struct Member
    {
        int frame;
        unsigned index; // in m_files

        bool operator<(const Member& other) const
        {
            return std::tie(frame, index) < std::tie(other.frame, other.index);
        }
    };
    struct Group
    {
        FileInfo* entry;
        std::vector<Member> waiting; // emptied when all are members of the entry
        std::size_t added = 0;       // the first so many of waiting are members already
        bool inOrder = false;        // whether waiting is sorted by frame
    };
    /// What has a node for each file or sequence. It is thrown away as a whole.
    struct Groups
    {
        std::map<std::string, FileInfo*, std::less<>> byName;
        std::unordered_map<std::string_view, Group> byPattern; // refers to keys of byName that hold a "#"
        std::vector<Group*> grown;                             // those with waiting files
        // Files of a sequence whose frame has another member.
        std::unordered_map<const FileInfo*, std::multimap<int, FileInfo*>> surplus;
        Followers splitFollowers;
        Followers hostFollowers;

        /// Whether destroying it takes noticeable time.
        bool isLarge() const
        {
            constexpr std::size_t Many = 1000;
            return byName.size() + surplus.size() + splitFollowers.size() + hostFollowers.size() > Many;
        }
    };
    /// Entries that are used again after the next evaluation.
    struct Reusable
    {
        std::vector<FileInfo*> entries;
        std::size_t used = 0;
    };

    void group(std::size_t index, bool everyMemberSetsWidth);
    FileInfo* enter(const char* name, FileInfo* entry);
    FileInfo* reuse(Reusable& from);
    void addWaiting(Group& group, std::size_t most);
    bool addMember(FileInfo* sequence, int frame, FileInfo* member, bool known);
    void sumUp();
    void applyTo(File& file, const FileInfoWrapper& info);
    void forgetSplits();
    void makeRun(FileInfo* parent, const FrameRange& range);
    std::size_t appendSequence(std::vector<FileInfo*>& out, FileInfo* sequence, bool split,
                               bool registeredOnly, std::size_t nextRun) const;

    std::shared_ptr<EntryPool> m_pool = std::make_shared<EntryPool>();
    std::vector<File> m_files;
    Groups m_groups;
    Reusable m_sequences;
    Reusable m_runs;
    std::unordered_set<FileInfo*> m_unsummed; // sequences whose sum is to be made anew
    std::size_t m_known = 0;
    bool m_splitDone = false;
    bool m_assumeZeroPadding = false;
};

} // namespace Halvern::UI
