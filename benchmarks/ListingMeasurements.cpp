#include "ListingMeasurements.h"

#include "Measuring.h"
#include "browser/DirectoryModel.h"
#include "catalogue/FileGatherer.h"

#include <QApplication>
#include <QFile>
#include <QFileSystemModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeView>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <dirent.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

using namespace Measuring;
using Halvern::UI::FileBrowser;
using Halvern::UI::FileInfo;

namespace ListingMeasurements {

namespace {

constexpr qint64 TimeLimit = 300000; // milliseconds

// In kilobytes, as the kernel counts the memory of this process.
double memory(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QFile::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(line.indexOf(':') + 1).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

Values timeSystem(const QString& folder, int files)
{
    Values times;
    QElapsedTimer timer;
    timer.start();
    std::vector<std::string> names;
    DIR* stream = ::opendir(QFile::encodeName(folder).constData());
    while (const dirent* entry = ::readdir(stream))
        names.emplace_back(entry->d_name);
    times[QStringLiteral("names")] = milliseconds(timer);
    int found = 0;
    for (const std::string& name : names) {
        struct stat status;
        found += ::fstatat(::dirfd(stream), name.c_str(), &status, 0) == 0 ? 1 : 0;
    }
    ::closedir(stream);
    times[QStringLiteral("attributes")] = milliseconds(timer);
    return found == files + 2 ? times : Values();
}

/// Tells whether a widget has been painted since it was last asked.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget* widget) { widget->installEventFilter(this); }
    bool wasPainted() { return std::exchange(m_painted, false); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_painted = m_painted || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

private:
    bool m_painted = false;
};

// Runs the event loop until the condition holds. False if that takes too long. The longest turn includes the
// work of the condition.
bool runUntil(const std::function<bool()>& condition, double& longest)
{
    QElapsedTimer whole;
    whole.start();
    for (bool done = false; !done; ::usleep(200)) {
        if (whole.elapsed() > TimeLimit)
            return false;
        QElapsedTimer turn;
        turn.start();
        QCoreApplication::processEvents();
        done = condition();
        longest = std::max(longest, milliseconds(turn));
    }
    return true;
}

/// A shown browser of an empty directory.
class Browser
{
public:
    explicit Browser(bool expanded)
        : m_expanded(expanded)
    {
        m_browser.setSequencesEnabled(!expanded);
        m_browser.setWatched(qEnvironmentVariableIsSet("LISTING_WATCHED"));
        m_browser.setDirectory(QDir(m_empty.path()), false, true);
        m_browser.resize(1000, 700);
        m_browser.show();
        double turn = 0;
        runUntil([this] { return m_model->isListReady(); }, turn);
    }

    Values read(const QString& folder, int files)
    {
        return time(files, [&] { m_browser.setDirectory(QDir(folder), false, true); });
    }
    Values readAgain(int files)
    {
        return time(files, [this] { m_model->refreshList(); });
    }

    Values time(int files, const std::function<void()>& begin)
    {
        m_complete = 0;
        const int expected = m_expanded ? files : files / FramesPerSequence;
        const double before = memory("VmRSS");
        Values values;
        QElapsedTimer timer;
        timer.start();
        begin();
        double turn = milliseconds(timer);
        const auto listed = [&] { return m_model->isListReady() && m_rows.rowCount() == expected; };
        if (!runUntil(listed, turn))
            return {};
        values[QStringLiteral("rows")] = milliseconds(timer);
        PaintWatch list(m_list->viewport());
        const auto shown = [&] {
            const bool painted = list.wasPainted();
            return hasAttributes() && painted;
        };
        if (!runUntil([this] { return hasAttributes(); }, turn) || !runUntil(shown, turn))
            return {};
        values[QStringLiteral("attributes")] = milliseconds(timer);
        values[QStringLiteral("turn")] = turn;
        const auto records = static_cast<double>(sizeof(FileInfo));
        values[QStringLiteral("bytes")] = (memory("VmHWM") - before) * 1024 / files - records;
        return values;
    }

    // After a pause, because the last attributes are shown late.
    double typeKeys()
    {
        double busy = 0;
        do {
            busy = 0;
            QElapsedTimer pause;
            pause.start();
            runUntil([&] { return pause.elapsed() > 100 + m_rows.rowCount() / 200; }, busy);
        } while (busy > 10);
        auto* edit = m_browser.findChild<QLineEdit*>(QStringLiteral("filenameEdit"));
        edit->setFocus();
        PaintWatch list(m_list->viewport());
        double slowest = 0;
        for (const char key : {'s', 'h', 'o', 't', '\b', '_'}) {
            const int code = key == '\b' ? int(Qt::Key_Backspace) : int(Qt::Key_A);
            QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, QString(QLatin1Char(key)));
            runUntil([&] { return !list.wasPainted(); }, busy);
            QElapsedTimer timer;
            timer.start();
            QCoreApplication::sendEvent(edit, &press);
            if (!runUntil([&] { return list.wasPainted(); }, busy))
                return NAN;
            slowest = std::max(slowest, milliseconds(timer));
        }
        return slowest;
    }

    double newEntriesOfSecondRead()
    {
        std::unordered_set<const FileInfo*> entries;
        for (int row = 0; row < m_model->rowCount(); ++row)
            entries.insert(m_model->entry(row));
        m_model->refreshList();
        double turn = 0;
        if (!runUntil([this] { return m_model->isListReady(); }, turn))
            return NAN;
        double added = 0;
        for (int row = 0; row < m_model->rowCount(); ++row)
            added += entries.count(m_model->entry(row)) == 0 ? 1 : 0;
        return added;
    }

    // Not a number if everything was read by then: that did not interrupt a read.
    double leave(const QString& folder, qint64 after)
    {
        QElapsedTimer timer;
        timer.start();
        m_browser.setDirectory(QDir(folder), false, true);
        double turn = 0;
        runUntil([&] { return timer.elapsed() >= after; }, turn);
        const bool inMidRead = !m_model->isListReady() || !m_model->hasAllAttributes();
        timer.restart();
        m_browser.setDirectory(QDir(m_empty.path()), false, true);
        const double time = milliseconds(timer);
        runUntil([this] { return m_model->isListReady(); }, turn);
        return inMidRead ? time : NAN;
    }

private:
    // Sizes arrive in the order of the disk, so every row is checked. The check starts at the last row that
    // was missing, and takes little time.
    bool hasAttributes()
    {
        constexpr int AtOnce = 2000;
        const QString size = QString::number(m_expanded ? 1 : FramesPerSequence);
        const int rows = m_rows.rowCount();
        const int end = std::min(rows, m_complete + AtOnce);
        while (m_complete < end && m_rows.index(m_complete, 1).data().toString() == size)
            ++m_complete;
        return m_complete == rows;
    }

    const bool m_expanded;
    const QTemporaryDir m_empty;
    FileBrowser m_browser;
    QTreeView* m_list = m_browser.findChild<QTreeView*>(QStringLiteral("filesList"));
    FileBrowser::DirectoryModel* m_model = m_browser.findChild<FileBrowser::DirectoryModel*>();
    const QAbstractItemModel& m_rows = *m_list->model();
    int m_complete = 0;
};

Values timeCollapsed(const QString& folder, int files)
{
    Browser browser(false);
    Values values = browser.read(folder, files);
    Values again = values.empty() ? Values() : browser.readAgain(files);
    if (again.empty())
        return {};
    for (const char* name : {"rows", "attributes"})
        values[QStringLiteral("again-") + QLatin1String(name)] = again[QLatin1String(name)];
    return values;
}

// Only the memory of the entries.
Values timeMemory(int files)
{
    constexpr std::size_t PageSize = 4096;
    QElapsedTimer timer;
    timer.start();
    const std::size_t size = static_cast<std::size_t>(files) * sizeof(FileInfo);
    auto* const memory = static_cast<volatile char*>(std::malloc(size));
    for (std::size_t i = 0; memory && i < size; i += PageSize)
        memory[i] = 0;
    const double time = milliseconds(timer);
    std::free(const_cast<char*>(memory));
    return {{QStringLiteral("touched"), time}};
}

Values timeExpanded(const QString& folder, int files)
{
    Browser browser(true);
    Values values = browser.read(folder, files);
    if (values.empty())
        return values;
    values[QStringLiteral("key")] = browser.typeKeys();
    values[QStringLiteral("entries")] = browser.newEntriesOfSecondRead();
    return values;
}

Values timeSwitches(const QString& folder, int files)
{
    constexpr int MillisecondsPerThousand = 3; // names and attributes, on a quick machine
    const int whole = files / 1000 * MillisecondsPerThousand;
    double slowest = NAN;
    for (const bool expanded : {false, true}) {
        Browser browser(expanded);
        for (const int percent : {5, 20, 35, 50, 65, 80})
            slowest = std::fmax(slowest, browser.leave(folder, whole * percent / 100));
    }
    return {{QStringLiteral("switch"), slowest}};
}

Values timeFileSystemModel(const QString& folder, int files)
{
    QFileSystemModel model;
    QTreeView view;
    view.setModel(&model);
    view.resize(1000, 700);
    view.show();
    QCoreApplication::processEvents();
    bool loaded = false;
    QObject::connect(&model, &QFileSystemModel::directoryLoaded, &model,
                     [&](const QString& path) { loaded = loaded || path == folder; });
    QElapsedTimer timer;
    timer.start();
    const QModelIndex root = model.setRootPath(folder);
    view.setRootIndex(root);
    double turn = 0;
    if (!runUntil([&] { return loaded && model.rowCount(root) == files; }, turn))
        return {};
    return {{QStringLiteral("attributes"), milliseconds(timer)}};
}

Values measureKind(const QString& kind, const QString& folder, int files)
{
    if (kind == QLatin1String("system"))
        return timeSystem(folder, files);
    if (kind == QLatin1String("qt"))
        return timeFileSystemModel(folder, files);
    if (kind == QLatin1String("collapsed"))
        return timeCollapsed(folder, files);
    if (kind.startsWith(QLatin1String("memory")))
        return timeMemory(files);
    if (kind == QLatin1String("expanded"))
        return timeExpanded(folder, files);
    if (kind == QLatin1String("switch"))
        return timeSwitches(folder, files);
    return {};
}

} // namespace

Values measure(const QString& kind, const QString& folder, int files)
{
    FileBrowser::SetUseLastSavedDir(false);
    Values values = measureKind(kind, folder, files);
    const auto failed = [](const auto& value) { return std::isnan(value.second); };
    return std::any_of(values.begin(), values.end(), failed) ? Values() : values;
}

} // namespace ListingMeasurements
