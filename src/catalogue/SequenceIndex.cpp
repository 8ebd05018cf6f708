#include "catalogue/SequenceIndex.h"

#include "frames/FrameName.h"
#include "frames/Placeholder.h"

#include <algorithm>
#include <utility>

namespace Halvern::UI {

using Base::FileHandle;

FileInfo* SequenceIndex::add(const char* name, bool isDirectory)
{
    forgetSplits();
    FileInfo* file = m_pool->create();
    file->setBasicInformation(name, false);
    file->setIsDirectory(isDirectory);
    m_files.push_back({file, nullptr});
    group(m_files.size() - 1, true);
    return file;
}

void SequenceIndex::regroup()
{
    m_groups = Groups();
    m_unsummed.clear();
    m_sequences.used = 0;
    forgetSplits();
    for (std::size_t index = 0; index < m_files.size(); ++index)
        group(index, false);
    settle();
    sumUp();
}

SequenceIndex::Groups SequenceIndex::clear()
{
    m_files.clear();
    m_sequences = {};
    m_runs = {};
    m_unsummed.clear();
    m_known = 0;
    m_splitDone = false;
    m_pool->clear();
    return std::exchange(m_groups, {});
}

// Puts one file under its name, or into the sequence of its pattern.
void SequenceIndex::group(std::size_t index, bool everyMemberSetsWidth)
{
    File& file = m_files[index];
    file.sequence = nullptr;
    int frame = 0;
    int digits = 0;
    bool padded = false;
    char pattern[FileInfo::NameSize];
    const char* name = file.entry->fileName();
    if (file.entry->isDirectory() || !FrameName::read(name, frame, pattern, digits, padded)) {
        enter(name, file.entry);
        return;
    }
    const auto present = m_groups.byPattern.find(std::string_view(pattern));
    if (present == m_groups.byPattern.end()) {
        FileInfo* sequence = reuse(m_sequences);
        makeSequence(sequence, pattern, digits, padded, frame, file.entry);
        file.sequence = sequence;
        return;
    }
    Group& found = present->second;
    if (found.waiting.empty())
        m_groups.grown.push_back(&found);
    found.waiting.push_back({frame, static_cast<unsigned>(index)});
    found.inOrder = false;
    if (found.entry->isSequence())
        file.sequence = found.entry;
    if (everyMemberSetsWidth)
        found.entry->setNumberOfHashes(digits, padded, m_assumeZeroPadding);
}

// Returns the entry that is under the name afterwards: the one that was there, if any. Patterns are looked up
// for every numbered file, which is quicker by their hash.
FileInfo* SequenceIndex::enter(const char* name, FileInfo* entry)
{
    const auto [place, isNew] = m_groups.byName.emplace(name, entry);
    if (isNew && place->first.find(Placeholder::Hash) != std::string::npos)
        m_groups.byPattern.emplace(place->first, Group{entry, {}});
    return place->second;
}

FileInfo* SequenceIndex::reuse(Reusable& from)
{
    if (from.used == from.entries.size())
        from.entries.push_back(m_pool->create());
    FileInfo* entry = from.entries[from.used++];
    entry->setAdditionalInfo(FileInfoWrapper());
    entry->setFrameInformation(0, 0, 0);
    return entry;
}

void SequenceIndex::makeSequence(FileInfo* sequence, const char* pattern, int digits, bool padded, int frame,
                                 FileInfo* member)
{
    sequence->setBasicInformation(pattern, true);
    sequence->setNumberOfHashes(digits, padded, m_assumeZeroPadding);
    const auto present = m_groups.byPattern.find(std::string_view(pattern));
    if (present != m_groups.byPattern.end())
        addWaiting(present->second, present->second.waiting.size());
    addMember(enter(pattern, sequence), frame, member, member && member->isInfoValid());
}

bool SequenceIndex::settle(std::size_t most)
{
    std::vector<Group*>& grown = m_groups.grown;
    while (!grown.empty() && most > 0) {
        Group& group = *grown.back();
        const std::size_t count = std::min(most, group.waiting.size() - group.added);
        addWaiting(group, count);
        most -= count;
        if (group.waiting.empty())
            grown.pop_back();
    }
    return grown.empty();
}

// Frames come in the order of the disk. Sorted first, each is appended to the end of the map, which is much
// quicker than to search the place of each, and the nodes lie in memory in that order.
void SequenceIndex::addWaiting(Group& group, std::size_t most)
{
    std::vector<Member>& members = group.waiting;
    if (!group.inOrder) {
        members.erase(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(group.added));
        group.added = 0;
        std::sort(members.begin(), members.end());
        group.inOrder = true;
    }
    const std::size_t end = group.added + std::min(most, members.size() - group.added);
    for (; group.added < end; ++group.added) {
        const Member& member = members[group.added];
        File& file = m_files[member.index];
        if (!addMember(group.entry, member.frame, file.entry, member.index < m_known))
            file.sequence = nullptr;
    }
    if (group.added == members.size())
        group = {group.entry, {}};
}

// False if the frame has a member already. Known members have their attributes.
bool SequenceIndex::addMember(FileInfo* sequence, int frame, FileInfo* member, bool known)
{
    forgetSplits();
    const auto& members = sequence->sequenceFiles();
    const std::size_t before = members.size();
    sequence->insertSequenceFile(frame, member);
    sequence->invalidateSequenceName();
    const bool added = members.size() > before;
    if (!added && member && sequence->isSequence())
        m_groups.surplus[sequence].emplace(frame, member);
    // If no member is known, there is nothing to sum.
    const auto isKnown = [](const auto& other) { return other.second && other.second->isInfoValid(); };
    if (known || (sequence->sequenceFileCount() == 2 && std::any_of(members.begin(), members.end(), isKnown)))
        m_unsummed.insert(sequence);
    return added;
}

std::size_t SequenceIndex::apply(const std::vector<FileInfoWrapper>& infos)
{
    settle();
    const std::size_t first = m_known;
    for (const FileInfoWrapper& info : infos) {
        if (m_known == m_files.size())
            break;
        applyTo(m_files[m_known], info);
        ++m_known;
    }
    sumUp();
    return m_known - first;
}

void SequenceIndex::sumUp()
{
    for (FileInfo* sequence : m_unsummed)
        sequence->synchSequenceData();
    m_unsummed.clear();
}

// Sums follow the change of one file: a walk over all members with each batch would take quadratic time.
void SequenceIndex::applyTo(File& file, const FileInfoWrapper& info)
{
    const unsigned long long previousSize = file.entry->size();
    // Attributes that a host set before are not in the sums.
    if (file.sequence && file.entry->isInfoValid())
        m_unsummed.insert(file.sequence);
    file.entry->setAdditionalInfo(info);
    if (file.sequence && file.sequence->sequenceFileCount() >= 2)
        file.sequence->updateFromMember(previousSize, *file.entry);
    for (const Followers* followers : {&m_groups.splitFollowers, &m_groups.hostFollowers}) {
        const auto range = followers->equal_range(file.entry);
        for (auto follower = range.first; follower != range.second; ++follower)
            follower->second->updateFromMember(previousSize, *file.entry);
    }
}

void SequenceIndex::follow(FileInfo* sequence)
{
    if (m_known == m_files.size())
        return;
    for (const auto& member : sequence->sequenceFiles()) {
        if (member.second)
            m_groups.hostFollowers.emplace(member.second, sequence);
    }
}

void SequenceIndex::forgetSplits()
{
    if (m_splitDone)
        m_groups.splitFollowers.clear();
    m_splitDone = false;
}

void SequenceIndex::split()
{
    if (m_splitDone)
        return;
    settle();
    sumUp();
    m_runs.used = 0;
    m_groups.splitFollowers.clear();
    for (const auto& named : m_groups.byName) {
        FileInfo* sequence = named.second;
        if (!sequence->isSequence() || sequence->sequenceFileCount() == 1)
            continue;
        sequence->constructSequenceName();
        for (const FrameRange& range : sequence->frameRanges()) {
            if (!range.isSingle())
                makeRun(sequence, range);
        }
    }
    m_splitDone = true;
}

void SequenceIndex::makeRun(FileInfo* parent, const FrameRange& range)
{
    FileInfo* run = reuse(m_runs);
    run->setBasicInformation(parent->fileName(), true);
    run->setFrameInformation(range.first, range.last, parent->numberOfHashes());
    run->setParentSequence(parent);
    run->synchSequenceData();
    run->constructSequenceName();
    if (m_known == m_files.size())
        return;
    const auto& members = parent->sequenceFiles();
    const auto end = members.upper_bound(range.last);
    for (auto member = members.lower_bound(range.first); member != end; ++member)
        m_groups.splitFollowers.emplace(member->second, run);
}

void SequenceIndex::rows(std::vector<FileInfo*>& out, FileHandle::ListType type)
{
    out.clear();
    if (type == FileHandle::AllFiles) {
        out.reserve(m_files.size());
        for (const File& file : m_files)
            out.push_back(file.entry);
        return;
    }
    settle();
    sumUp();
    const bool splits = type == FileHandle::SplitSequences || type == FileHandle::RegisteredSplitSequences;
    const bool registeredOnly = type >= FileHandle::RegisteredSequences;
    if (splits)
        split();
    std::size_t nextRun = 0;
    for (const auto& named : m_groups.byName) {
        FileInfo* entry = named.second;
        if (!entry->isSequence())
            out.push_back(entry);
        else if (entry->sequenceFileCount() == 1)
            out.push_back(entry->sequenceFiles().begin()->second);
        else
            nextRun = appendSequence(out, entry, splits, registeredOnly, nextRun);
    }
}

// Returns the index of the first run of the sequences that follow.
std::size_t SequenceIndex::appendSequence(std::vector<FileInfo*>& out, FileInfo* sequence, bool split,
                                          bool registeredOnly, std::size_t nextRun) const
{
    sequence->constructSequenceName();
    if ((registeredOnly || !m_groups.surplus.empty()) && !sequence->isAutoSequenceChecked())
        sequence->detectAutoSequence();
    const bool shown = !registeredOnly || sequence->isAutoSequence();
    // Of a registered sequence only the first file of a frame is listed.
    static const std::multimap<int, FileInfo*> none;
    const auto found = sequence->isAutoSequence() ? m_groups.surplus.end() : m_groups.surplus.find(sequence);
    const auto& surplus = found == m_groups.surplus.end() ? none : found->second;
    auto next = surplus.begin();
    if (!shown) {
        for (const auto& [frame, member] : sequence->sequenceFiles()) {
            out.push_back(member);
            for (; next != surplus.end() && next->first == frame; ++next)
                out.push_back(next->second);
        }
    } else if (!split || !sequence->hasGaps()) {
        out.push_back(sequence);
    }
    if (split && sequence->hasGaps()) {
        // Runs are counted even if the sequence is not shown, so that the next sequences get theirs.
        for (const FrameRange& range : sequence->frameRanges()) {
            FileInfo* run =
                range.isSingle() ? sequence->sequenceFiles().at(range.first) : m_runs.entries[nextRun++];
            if (shown)
                out.push_back(run);
        }
    }
    for (; next != surplus.end(); ++next)
        out.push_back(next->second);
    return nextRun;
}

} // namespace Halvern::UI
