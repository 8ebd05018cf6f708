#include "catalogue/FileInfoList.h"

#include "base/FileSystem.h"
#include "base/SortKeys.h"
#include "catalogue/NaturalOrder.h"
#include "frames/FrameName.h"
#include "frames/FrameRun.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <string>
#include <utility>

namespace Halvern::UI {

namespace {

/// The names of a directory, sorted. Names and keys stand close together, so that sorting is fast.
class DirectoryScan
{
public:
    DirectoryScan(const QByteArray& folder, bool forSequences)
        : m_folder(folder)
    {
        DIR* stream = Base::uninterrupted([&] { return ::opendir(folder.constData()); });
        m_complete = stream && read(stream);
        const int error = errno;
        if (stream)
            ::closedir(stream);
        errno = error;
        if (m_complete)
            sort(NaturalOrder(forSequences ? NaturalOrder::DecideLast : NaturalOrder::DecideAtOnce));
    }

    /// Negative if the directory could not be read, with the reason in `errno`.
    int count() const { return m_complete ? static_cast<int>(m_entries.size()) : -1; }
    /// To be asked for in order: names further on are fetched from memory meanwhile.
    const char* name(int index) const
    {
        constexpr int Ahead = 16;
        if (index + Ahead < count())
            __builtin_prefetch(m_names.data() + entry(index + Ahead).begin);
        return m_names.data() + entry(index).begin;
    }
    bool isDirectory(int index) const
    {
        const unsigned char type = entry(index).type;
        if (type == DT_DIR || type == DT_REG)
            return type == DT_DIR;
        return Base::isDirectory((m_folder + '/' + name(index)).constData());
    }

private:
    struct Entry
    {
        std::size_t begin; // in the names
        unsigned char type;
    };

    bool read(DIR* stream)
    {
        while (const dirent* read = Base::uninterrupted([&] { return ::readdir(stream); })) {
            m_entries.push_back({m_names.size(), read->d_type});
            m_names.append(read->d_name).push_back('\0');
        }
        return errno == 0;
    }
    void sort(const NaturalOrder& order)
    {
        Base::SortKeys keys;
        keys.reserve(m_entries.size(), 0);
        for (const Entry& one : m_entries)
            keys.appendFrom(
                [&](std::vector<char>& bytes) { order.appendKey(m_names.data() + one.begin, bytes); });
        std::vector<Entry> sorted;
        sorted.reserve(m_entries.size());
        for (const int index : Base::ordered(keys))
            sorted.push_back(entry(index));
        m_entries.swap(sorted);
    }
    const Entry& entry(int index) const { return m_entries[static_cast<std::size_t>(index)]; }

    QByteArray m_folder;
    std::string m_names; // each terminated
    std::vector<Entry> m_entries;
    bool m_complete = false;
};

std::vector<ListedName> listPlain(const DirectoryScan& scan)
{
    std::vector<ListedName> names;
    names.reserve(static_cast<std::size_t>(scan.count()));
    for (int i = 0; i < scan.count(); ++i)
        names.push_back({QString::fromLocal8Bit(scan.name(i)).toUtf8(), false});
    return names;
}

// The name differs from its pattern in the digits alone.
bool hasAsciiNumber(const QString& name, const QString& pattern)
{
    return std::equal(name.begin(), name.end(), pattern.begin(), [](QChar inName, QChar inPattern) {
        return inName == inPattern || (inName >= QLatin1Char('0') && inName <= QLatin1Char('9'));
    });
}

std::vector<ListedName> listCollapsed(const DirectoryScan& scan, bool split)
{
    std::vector<ListedName> names;
    FrameRun run;
    QString firstOfRun;
    const auto finishRun = [&] {
        if (run.size() > 1) {
            for (ListedName& listed : run.listedNames(split))
                names.push_back(std::move(listed));
        } else if (run.size() == 1) {
            names.push_back({firstOfRun.toUtf8(), false});
        }
        run = FrameRun();
    };
    QString pattern;
    int frame = 0;
    for (int i = 0; i < scan.count(); ++i) {
        const QString name = QString::fromLocal8Bit(scan.name(i));
        if (!FileInfoList::toFrameName(name, pattern, frame) || !hasAsciiNumber(name, pattern)) {
            finishRun();
            names.push_back({name.toUtf8(), false});
            continue;
        }
        if (run.take(pattern, frame)) {
            // Asked once the run has a second name, so that lone numbered files cost no look at the disk.
            if (run.size() != 2 || !scan.isDirectory(i - 1))
                continue;
            names.push_back({firstOfRun.toUtf8(), false});
            run = FrameRun();
        }
        finishRun();
        run = FrameRun(pattern, frame);
        firstOfRun = name;
    }
    finishRun();
    return names;
}

} // namespace

FileInfoList::FileInfoList()
{
    // A step that an earlier listing left in the queue must not hurry the walk of the present one.
    const auto takeStep = [this] {
        if (m_queuedSteps > 0 && --m_queuedSteps == 0)
            onLazyStatFetchNext();
    };
    connect(this, &FileInfoList::lazyStatFetchNext, this, takeStep, Qt::QueuedConnection);
}

int FileInfoList::fill(const QString& path)
{
    // Assigned, because clear() would keep the memory.
    m_entries = std::vector<FileInfo>();
    m_path = path;
    const DirectoryScan scan(path.toUtf8(), m_sequencesEnabled);
    if (scan.count() < 0)
        return scan.count();
    FrameName::resetSmallestPaddedWidth();
    const std::vector<ListedName> names =
        m_sequencesEnabled ? listCollapsed(scan, m_splitSequences) : listPlain(scan);
    m_entries.reserve(names.size());
    for (const ListedName& name : names)
        m_entries.emplace_back(name.text.constData(), name.isSequence);
    startLazyStat();
    return scan.count();
}

bool FileInfoList::toFrameName(const QString& name, QString& pattern, int& frame)
{
    return FrameName::read(name, pattern, frame);
}

bool FileInfoList::makeCommonSequence(QString& a, QString& b)
{
    return FrameName::reconcilePatterns(a, b);
}

void FileInfoList::startLazyStat()
{
    m_lazyStatCursor = 0;
    if (!m_entries.empty())
        queueStep();
}

void FileInfoList::queueStep()
{
    if (!signalsBlocked()) // else nothing will be delivered
        ++m_queuedSteps;
    emit lazyStatFetchNext();
}

void FileInfoList::onLazyStatFetchNext()
{
    if (m_entries.empty())
        return;
    if (m_lazyStatCursor < m_entries.size())
        ++m_lazyStatCursor;
    if (m_lazyStatCursor == m_entries.size())
        emit fileInfoAvailable();
    else
        queueStep();
}

} // namespace Halvern::UI
