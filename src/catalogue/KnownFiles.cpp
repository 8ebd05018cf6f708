#include "catalogue/KnownFiles.h"

#include <utility>

namespace Halvern::UI {

void KnownFiles::add(const char* name, const FileInfoWrapper& info)
{
    m_names.add(name, info.isDirectory);
    m_infos.push_back(info);
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
    files.reserve(m_infos.size());
    for (std::size_t i = 0; i < m_infos.size() && keepRunning; ++i) {
        const bool isAskedAnew = i / PartSize % Parts == m_round % Parts;
        files.emplace(m_names[i].text, File{&m_infos[i], !m_changed || isAskedAnew});
    }
    for (const std::string& name : m_changed.value_or(std::set<std::string>())) {
        if (const auto file = files.find(name); file != files.end())
            file->second.mayHaveChanged = true;
    }
    return files;
}

} // namespace Halvern::UI
