// How a flat list of files becomes sequences, runs and rows.

#include "catalogue/FileManager.h"

#include "frames/FrameName.h"

#include <algorithm>
#include <string_view>

namespace Halvern::UI {

using Base::FileHandle;

namespace {

bool isSingleFrame(const FrameRange& range)
{
    return range.first == range.last;
}

} // namespace

bool FileManager::isSequence(const char* name, int& frame, char* pattern, int& digits, bool& padded)
{
    return FrameName::read(name, frame, pattern, digits, padded);
}

void FileManager::reevaluateSequences()
{
    grownPatterns.clear();
    patterns.clear();
    entriesByName.clear();
    forgetSplitSequences();
    unsummed.clear();
    sequencesInUse = 0;
    for (std::size_t index = 0; index < files.size(); ++index)
        enterFile(index, false);
    sequences.resize(sequencesInUse);
    addArrivedMembers();
}

// Puts one file under its name, or into the sequence of its pattern.
void FileManager::enterFile(std::size_t index, bool everyMemberSetsWidth)
{
    FileInfo* file = files[index];
    sequenceOf[index] = nullptr;
    int frame = 0;
    int digits = 0;
    bool padded = false;
    char pattern[FileInfo::NameSize];
    if (file->isDirectory() || !isSequence(file->fileName(), frame, pattern, digits, padded)) {
        enterName(file->fileName(), file);
        return;
    }
    const auto present = patterns.find(std::string_view(pattern));
    if (present == patterns.end()) {
        FileInfo* sequence = nextSequence();
        createSecondarySequence(sequence, pattern, digits, padded, frame, file);
        sequenceOf[index] = sequence;
        return;
    }
    Pattern& found = present->second;
    if (found.arrived.empty())
        grownPatterns.push_back(&found);
    found.arrived.push_back({frame, static_cast<int>(index), file});
    found.inOrder = false;
    if (found.entry->isSequence())
        sequenceOf[index] = found.entry;
    if (everyMemberSetsWidth)
        found.entry->setNumberOfHashes(digits, padded, assumeZeroPadding);
}

// Frames come in the order of the disk. Put into the index one by one, each would wait for the memory of a
// dozen others; in order they go to its end, and stand together in memory for those who walk it. Ordering is
// quick beside adding, and done for all of a pattern at once.
void FileManager::addArrivedMembers(Pattern& pattern, std::size_t most)
{
    std::vector<Member>& members = pattern.arrived;
    if (!pattern.inOrder) {
        members.erase(members.begin(), members.begin() + static_cast<std::ptrdiff_t>(pattern.added));
        pattern.added = 0;
        std::stable_sort(members.begin(), members.end(),
                         [](const Member& a, const Member& b) { return a.frame < b.frame; });
        pattern.inOrder = true;
    }
    const std::size_t end = pattern.added + std::min(most, members.size() - pattern.added);
    for (; pattern.added < end; ++pattern.added) {
        const Member& member = members[pattern.added];
        const bool known = member.index < infoCursor;
        if (!addMember(pattern.entry, member.frame, member.file, known))
            sequenceOf[static_cast<std::size_t>(member.index)] = nullptr;
    }
    if (pattern.added == members.size())
        pattern = {pattern.entry, {}};
}

void FileManager::addArrivedMembers()
{
    for (Pattern* pattern : grownPatterns)
        addArrivedMembers(*pattern, pattern->arrived.size());
    grownPatterns.clear();
}

// False when the turn is over and not all are added.
bool FileManager::addArrivedMembersInTurn()
{
    constexpr std::size_t MembersAtOnce = 1000;
    while (!grownPatterns.empty()) {
        if (!readingSynchronously && turnIsOver())
            return false;
        addArrivedMembers(*grownPatterns.back(), MembersAtOnce);
        if (grownPatterns.back()->arrived.empty())
            grownPatterns.pop_back();
    }
    return true;
}

// The entry that is under the name then: the present one, if there is one. Patterns are looked up for every
// numbered file, which is quicker by their hash than along the branches of a tree.
FileInfo* FileManager::enterName(const char* name, FileInfo* entry)
{
    const auto [place, isNew] = entriesByName.emplace(name, entry);
    if (isNew && place->first.find('#') != std::string::npos)
        patterns.emplace(place->first, Pattern{entry, {}});
    return place->second;
}

FileInfo* FileManager::nextSequence()
{
    if (sequencesInUse == sequences.size())
        sequences.push_back(pool.create());
    else
        unsummed.insert(sequences[sequencesInUse]); // it has the sums of its earlier members
    FileInfo* sequence = sequences[sequencesInUse++];
    sequence->setFrameInformation(0, 0, 0);
    return sequence;
}

// False when the frame has a member already. Known members have their attributes.
bool FileManager::addMember(FileInfo* sequence, int frame, FileInfo* member, bool known)
{
    if (splitDone)
        forgetSplitSequences();
    const auto& members = sequence->sequenceFiles();
    const std::size_t before = members.size();
    sequence->insertSequenceFile(frame, member);
    sequence->invalidateSequenceName();
    // Where nothing is known of the members yet, there is nothing to sum: that would be a walk over all.
    const auto isKnown = [](const auto& other) { return other.second && other.second->isInfoValid(); };
    if (known || (sequence->sequenceFileCount() == 2 && std::any_of(members.begin(), members.end(), isKnown)))
        unsummed.insert(sequence);
    return members.size() > before;
}

void FileManager::createSecondarySequence(FileInfo* sequence, const char* pattern, int digits, bool padded,
                                          int frame, FileInfo* member)
{
    sequence->setBasicInformation(pattern, true);
    sequence->setNumberOfHashes(digits, padded, assumeZeroPadding);
    const auto present = patterns.find(std::string_view(pattern));
    if (present != patterns.end())
        addArrivedMembers(present->second, present->second.arrived.size());
    addMember(enterName(pattern, sequence), frame, member, member && member->isInfoValid());
}

void FileManager::forgetSplitSequences()
{
    splitEntries.clear();
    splitFollowers.clear();
    splitDone = false;
}

void FileManager::createSplitSequences()
{
    if (splitDone)
        return;
    addArrivedMembers();
    splitDone = true;
    for (const auto& named : entriesByName) {
        FileInfo* sequence = named.second;
        if (!sequence->isSequence() || sequence->sequenceFileCount() == 1)
            continue;
        sequence->constructSequenceName();
        if (!sequence->hasGaps())
            continue;
        for (const FrameRange& range : sequence->frameRanges()) {
            if (!isSingleFrame(range))
                splitEntries.push_back(makeSplitSequence(sequence, range));
        }
    }
}

FileInfo* FileManager::makeSplitSequence(FileInfo* parent, const FrameRange& range)
{
    FileInfo* run = pool.create();
    run->setBasicInformation(parent->fileName(), true);
    run->setFrameInformation(range.first, range.last, parent->numberOfHashes());
    run->setParentSequence(parent);
    run->synchSequenceData();
    run->constructSequenceName();
    if (!isInfoComplete()) {
        const auto& members = parent->sequenceFiles();
        const auto end = members.upper_bound(range.last);
        for (auto member = members.lower_bound(range.first); member != end; ++member)
            splitFollowers.emplace(member->second, run);
    }
    return run;
}

void FileManager::buildRunningList(std::vector<FileInfo*>* out, FileHandle::ListType type)
{
    splitIndex = 0;
    if (type == FileHandle::AllFiles) {
        *out = files;
        return;
    }
    addArrivedMembers();
    out->clear();
    const bool split = type == FileHandle::SplitSequences || type == FileHandle::RegisteredSplitSequences;
    const bool registeredOnly = type >= FileHandle::RegisteredSequences;
    if (split)
        createSplitSequences();
    for (const auto& named : entriesByName) {
        FileInfo* entry = named.second;
        if (!entry->isSequence())
            out->push_back(entry);
        else if (entry->sequenceFileCount() == 1)
            out->push_back(entry->sequenceFiles().begin()->second);
        else
            appendSequence(*out, entry, split, registeredOnly);
    }
}

void FileManager::appendSequence(std::vector<FileInfo*>& out, FileInfo* sequence, bool split,
                                 bool registeredOnly)
{
    sequence->constructSequenceName();
    if (registeredOnly && !sequence->isAutoSequenceChecked())
        sequence->detectAutoSequence();
    const bool shown = !registeredOnly || sequence->isAutoSequence();
    if (!shown) {
        for (const auto& member : sequence->sequenceFiles())
            out.push_back(member.second);
    } else if (!split || !sequence->hasGaps()) {
        out.push_back(sequence);
    }
    if (!split || !sequence->hasGaps())
        return;
    // The runs of a sequence that is not shown are passed over, so that those behind keep their places.
    for (const FrameRange& range : sequence->frameRanges()) {
        FileInfo* run =
            isSingleFrame(range) ? sequence->sequenceFiles().at(range.first) : splitEntries[splitIndex++];
        if (shown)
            out.push_back(run);
    }
}

} // namespace Halvern::UI
