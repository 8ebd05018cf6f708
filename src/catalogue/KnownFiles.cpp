#include "catalogue/KnownFiles.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>
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

// A directory usually gives its names in the same order again, so each is compared with the next known ones.
// A name that is not among these is looked up among the known names that no name matched.
std::vector<KnownFiles::File> KnownFiles::find(const Names& names, const std::atomic<bool>& keepRunning) const
{
    constexpr std::size_t Near = 16;
    std::vector<File> found;
    std::vector<std::pair<const char*, std::size_t>> missing; // names, and their places in found
    std::unordered_map<std::string_view, std::size_t> passed;
    std::size_t next = 0;
    const auto pass = [&](std::size_t end) {
        for (; next < end && keepRunning; ++next)
            passed.emplace(m_names[next].text, next);
    };
    for (const auto& batch : names) {
        for (std::size_t i = 0; i < batch->size() && keepRunning; ++i) {
            const char* const name = (*batch)[i].text;
            const std::size_t end = std::min(next + Near, size());
            std::size_t index = next;
            while (index < end && std::strcmp(m_names[index].text, name) != 0)
                ++index;
            found.emplace_back();
            if (index == end) {
                missing.emplace_back(name, found.size() - 1);
                continue;
            }
            pass(index);
            found.back() = {&m_infos[next], mayHaveChanged(next)};
            ++next;
        }
    }
    if (!missing.empty())
        pass(size());
    for (const auto& [name, place] : missing) {
        if (const auto file = passed.find(name); file != passed.end())
            found[place] = {&m_infos[file->second], mayHaveChanged(file->second)};
    }
    return found;
}

bool KnownFiles::mayHaveChanged(std::size_t index) const
{
    constexpr std::size_t Parts = 16;
    constexpr std::size_t PartSize = 256;
    return !m_changed || index / PartSize % Parts == m_round % Parts ||
           m_changed->count(m_names[index].text) > 0;
}

} // namespace Halvern::UI
