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
    const KnownFiles::ByName known = before->byName(m_keepRunning);
    std::vector<PresentFiles> all;
    std::size_t count = 0;
    std::size_t unchanged = 0;
    for (const auto& names : allNames) {
        if (!m_keepRunning || m_error != 0)
            return;
        all.push_back(presentFiles(*names, known, folder));
        count += all.back().infos->size();
        unchanged += all.back().unchanged;
    }
    if (m_keepRunning && m_error == 0 && !Base::fileStatus(m_directory.c_str()))
        m_error = errno;
    if (!m_keepRunning || m_error != 0)
        return;
    m_isUnchanged = !known.empty() && count == known.size() && count == unchanged;
    for (const PresentFiles& files : all) {
        if (m_isUnchanged)
            break;
        m_names.put(files.names);
        m_infos.put(files.infos);
    }
}

FileGatherer::PresentFiles FileGatherer::presentFiles(const NameBatch& names, const KnownFiles::ByName& known,
                                                      int folder) const
{
    std::vector<const FileInfoWrapper*> before(names.size());
    std::vector<std::optional<FileInfoWrapper>> now(names.size());
    std::vector<std::size_t> asked;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto found = known.find(names[i].text);
        if (found != known.end())
            before[i] = found->second.info;
        if (before[i] && !found->second.mayHaveChanged && before[i]->isDirectory == names[i].isDirectory)
            now[i] = *before[i];
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
    PresentFiles files{std::make_shared<NameBatch>(), std::make_shared<std::vector<FileInfoWrapper>>(), 0};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!now[i])
            continue;
        files.names->add(names[i].text, names[i].isDirectory);
        files.infos->push_back(*now[i]);
        files.unchanged += before[i] && areSame(*before[i], *now[i]) ? 1 : 0;
    }
    files.names->squeeze();
    return files;
}

} // namespace Halvern::UI
