// Reads a directory again of which something is known.

#include "base/FileSystem.h"
#include "base/SlowCalls.h"
#include "catalogue/FileGatherer.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace Halvern::UI {

namespace {

// Whether the name is there, if only as a link to nothing.
bool isThere(int folder, const char* name)
{
    struct stat status;
    const auto ask = [&] { return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW); };
    return Base::uninterrupted(ask) == 0 || errno != ENOENT;
}

bool areSame(const FileInfoWrapper& a, const FileInfoWrapper& b)
{
    return a.size == b.size && a.isDirectory == b.isDirectory && a.modificationTime == b.modificationTime;
}

} // namespace

// What is read of a folder that goes away meanwhile are the files of nothing: readdir() ends early, and
// queries fail. So nothing is put before the end.
void FileGatherer::readAgain(int folder)
{
    endBatch();
    const auto allNames = std::exchange(m_readNames, {});
    const auto before = std::exchange(m_known, std::nullopt);
    const std::vector<KnownFiles::File> known = before->find(allNames, m_keepRunning);
    auto nextKnown = known.begin();
    std::vector<PresentFiles> all;
    std::size_t count = 0;
    std::size_t unchanged = 0;
    for (const auto& names : allNames) {
        if (!m_keepRunning || m_error != 0)
            return;
        all.push_back(presentFiles(names, &*nextKnown, folder));
        nextKnown += static_cast<std::ptrdiff_t>(names->size());
        count += all.back().infos->size();
        unchanged += all.back().unchanged;
    }
    if (m_keepRunning && m_error == 0 && !Base::fileStatus(m_directory.c_str()))
        m_error = errno;
    if (!m_keepRunning || m_error != 0)
        return;
    m_isUnchanged = count > 0 && count == before->size() && count == unchanged;
    for (const PresentFiles& files : all) {
        if (m_isUnchanged)
            break;
        m_names.put(files.names);
        m_infos.put(files.infos);
    }
}

// For each name, @p known has what is known of the file.
FileGatherer::PresentFiles FileGatherer::presentFiles(const NameQueue::BatchPointer& batch,
                                                      const KnownFiles::File* known, int folder) const
{
    const NameBatch& names = *batch;
    std::vector<std::optional<FileInfoWrapper>> now(names.size());
    std::vector<std::size_t> asked;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const FileInfoWrapper* const before = known[i].info;
        if (before && !known[i].mayHaveChanged && before->isDirectory == names[i].isDirectory)
            now[i] = *before;
        else
            asked.push_back(i);
    }
    Base::callEach(asked.size(), [&](std::size_t index) {
        if (!m_keepRunning)
            return;
        const NameBatch::Name name = names[asked[index]];
        errno = 0;
        const FileInfoWrapper info = queriedInfo(folder, name);
        if (errno != ENOENT || isThere(folder, name.text))
            now[asked[index]] = info;
    });
    PresentFiles files{batch, std::make_shared<std::vector<FileInfoWrapper>>(), 0};
    const auto present = std::make_shared<NameBatch>();
    const bool areAllThere = std::find(now.begin(), now.end(), std::nullopt) == now.end();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!now[i])
            continue;
        if (!areAllThere)
            present->add(names[i].text, names[i].isDirectory);
        files.infos->push_back(*now[i]);
        files.unchanged += known[i].info && areSame(*known[i].info, *now[i]) ? 1 : 0;
    }
    if (!areAllThere)
        files.names = present;
    return files;
}

} // namespace Halvern::UI
