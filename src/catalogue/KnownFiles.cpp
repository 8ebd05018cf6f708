#include "catalogue/KnownFiles.h"

#include <utility>

namespace Halvern::UI {

void KnownFiles::add(std::shared_ptr<const NameBatch> names)
{
    m_nameCount += names->size();
    m_names.push_back(std::move(names));
}

void KnownFiles::add(std::shared_ptr<const std::vector<FileInfoWrapper>> infos)
{
    m_infoCount += infos->size();
    m_infos.push_back(std::move(infos));
}

void KnownFiles::setChanged(ChangedNames names, unsigned round)
{
    m_changed = std::move(names);
    m_round = round;
}

KnownFiles::ByName KnownFiles::byName(const std::atomic<bool>& keepRunning) const
{
    constexpr std::size_t Parts = 16;
    constexpr std::size_t PartSize = 256;
    ByName files;
    if (!isComplete())
        return files;
    files.reserve(m_nameCount);
    auto infos = m_infos.begin();
    std::size_t next = 0; // in infos
    std::size_t index = 0;
    for (const auto& names : m_names) {
        if (!keepRunning)
            break;
        for (std::size_t i = 0; i < names->size(); ++i, ++next, ++index) {
            if (next == (*infos)->size()) {
                ++infos;
                next = 0;
            }
            const bool isAskedAnew = index / PartSize % Parts == m_round % Parts;
            files.emplace((*names)[i].text, File{&(**infos)[next], !m_changed || isAskedAnew});
        }
    }
    for (const std::string& name : m_changed.value_or(std::set<std::string>())) {
        if (const auto file = files.find(name); file != files.end())
            file->second.mayHaveChanged = true;
    }
    return files;
}

} // namespace Halvern::UI
