#include "catalogue/FileSequenceEvaluator.h"

#include "catalogue/EntryPool.h"
#include "catalogue/FileManager.h"

#include <algorithm>
#include <utility>

namespace Halvern::UI {

FileSequenceEvaluator::FileSequenceEvaluator()
    : m_ownEntries(std::make_shared<EntryPool>())
    , m_lifetime(std::make_shared<bool>())
{
}

FileSequenceEvaluator::FileSequenceEvaluator(const FileSequenceEvaluator& other)
    : FileSequenceEvaluator()
{
    m_manager = other.m_manager;
}

FileSequenceEvaluator& FileSequenceEvaluator::operator=(const FileSequenceEvaluator& other)
{
    if (this != &other)
        m_manager = other.m_manager;
    return *this;
}

FileSequenceEvaluator::~FileSequenceEvaluator() = default;

void FileSequenceEvaluator::setManager(FileManager* manager)
{
    m_manager = manager;
}

std::shared_ptr<const void> FileSequenceEvaluator::entryStorage() const
{
    const auto managers = m_manager ? m_manager->entryStorage() : nullptr;
    return std::make_shared<std::pair<std::shared_ptr<const void>, std::shared_ptr<const void>>>(m_ownEntries,
                                                                                                 managers);
}

FileInfo* FileSequenceEvaluator::buildFileSequence(const std::string& name, const std::vector<int>& frames,
                                                   std::vector<FileInfo*> files) const
{
    FileInfo* sequence = m_manager ? m_manager->createEntry() : m_ownEntries->create();
    sequence->setFileName(name.c_str());
    sequence->setSequenceName(name.c_str());
    sequence->setIsSequence(true);
    const std::size_t pairs = std::min(frames.size(), files.size());
    for (std::size_t k = 0; k < pairs; ++k)
        sequence->insertSequenceFile(frames[k], files[k]);
    _collapseInfo(sequence, files);
    if (m_manager)
        m_manager->followMembers(sequence);
    return sequence;
}

void FileSequenceEvaluator::_collapseInfo(FileInfo* sequence, std::vector<FileInfo*> /*files*/) const
{
    unsigned long long size = 0;
    long long latest = 0;
    for (const auto& member : sequence->sequenceFiles()) {
        if (!member.second)
            continue;
        size += member.second->size();
        latest = std::max(latest, member.second->modificationTime());
    }
    sequence->setAdditionalInfo(size, static_cast<long>(latest), false, false);
}

} // namespace Halvern::UI
