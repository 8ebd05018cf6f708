// Prints the processor time of actions in a long file list: a letter typed with many filter patterns,
// attributes that arrive while many rows are selected, and a paint with many rows in the pick list. Each is
// printed beside the same action without filter, selection or pick list. Then the longest turn of the event
// loop while rows change in place, which is the processor time of the thread alone. Usage: list-benchmark
// [ROUNDS [FILES]]. Exit status: 0, 1 if a limit is missed, 2 if the list is not read.

#include "Measuring.h"
#include "browser/DirectoryModel.h"
#include "browser/FileBrowser.h"
#include "browser/FilesList.h"
#include "browser/ProxyModel.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>

using namespace Measuring;
using Halvern::UI::FileBrowser;

namespace {

/// A shown browser with a row for each file of a folder, and every attribute in its row.
class List
{
public:
    explicit List(const QString& folder)
    {
        m_browser.setSequencesEnabled(false);
        m_browser.setMultipleSelections(true);
        m_browser.setDirectory(QDir(folder), false, true);
        m_browser.resize(1000, 700);
        m_browser.show();
    }

    bool waitFor(int files)
    {
        constexpr qint64 TimeLimit = 60000;   // milliseconds
        constexpr qint64 LongestPause = 2000; // from the last attributes until the list shows them
        QElapsedTimer timer;
        timer.start();
        while (!m_model->isListReady() || !m_model->hasAllAttributes() || m_proxy->rowCount() != files) {
            if (timer.elapsed() > TimeLimit)
                return false;
            QCoreApplication::processEvents();
        }
        for (timer.start(); timer.elapsed() < LongestPause;)
            QCoreApplication::processEvents();
        return true;
    }

    /// Until the answer is painted.
    double timeLetter(int patterns)
    {
        QString text;
        for (int i = 0; i < patterns; ++i)
            text += QString::asprintf("*_take%05d*.tif ", i);
        m_browser.findChild<QComboBox*>()->setEditText(patterns == 0 ? QString() : text + "*.exr");
        auto* edit = m_browser.findChild<QLineEdit*>(QStringLiteral("filenameEdit"));
        QKeyEvent press(QEvent::KeyPress, Qt::Key_S, Qt::NoModifier, QStringLiteral("s"));
        QKeyEvent erase(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
        repaint();
        const double time = timeOf([&] { QCoreApplication::sendEvent(edit, &press); });
        QCoreApplication::sendEvent(edit, &erase);
        return time;
    }

    /// While the first @p rows are selected, in a list that is sorted by what arrives.
    double timeArrival(int rows)
    {
        m_list->sortByColumn(FileBrowser::DirectoryModel::SizeColumn, Qt::AscendingOrder);
        select(rows);
        repaint();
        const double time = timeOf([this] {
            m_proxy->noteAttributes();
            m_proxy->showAttributes();
        });
        m_list->clearSelection();
        m_list->sortByColumn(FileBrowser::DirectoryModel::NameColumn, Qt::AscendingOrder);
        return time;
    }

    void queue(int rows)
    {
        select(rows);
        QMetaObject::invokeMethod(&m_browser, "nextClicked");
    }

    /// The longest turn, from update() until the new state is painted.
    double timeUpdate()
    {
        bool ended = false;
        const auto connection =
            QObject::connect(m_model, &FileBrowser::DirectoryModel::updated,
                             [&](int /*milliseconds*/, bool /*succeeded*/) { ended = true; });
        QCoreApplication::processEvents();
        m_model->update();
        double longest = 0;
        constexpr int TurnsAfter = 20;
        for (int after = 0; after < TurnsAfter; after += ended ? 1 : 0) {
            const double begin = threadTime();
            QCoreApplication::processEvents();
            longest = std::max(longest, threadTime() - begin);
        }
        QObject::disconnect(connection);
        return longest;
    }
    void sortBy(int column, Qt::SortOrder order) { m_list->sortByColumn(column, order); }

    double timePaint()
    {
        repaint();
        return timeOf([] {});
    }

private:
    static double threadTime()
    {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }
    void repaint() { m_list->viewport()->repaint(); }
    void select(int rows)
    {
        constexpr int LastColumn = FileBrowser::DirectoryModel::ColumnCount - 1;
        m_list->selectionModel()->select({m_proxy->index(0, 0), m_proxy->index(rows - 1, LastColumn)},
                                         QItemSelectionModel::ClearAndSelect);
    }
    double timeOf(const std::function<void()>& action)
    {
        QCoreApplication::processEvents();
        constexpr double Milliseconds = 1000;
        const std::clock_t begin = std::clock();
        action();
        repaint();
        return Milliseconds * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    }

    FileBrowser m_browser;
    FileBrowser::FilesList* m_list = m_browser.findChild<FileBrowser::FilesList*>();
    FileBrowser::DirectoryModel* m_model = m_browser.findChild<FileBrowser::DirectoryModel*>();
    FileBrowser::ProxyModel* m_proxy = m_browser.findChild<FileBrowser::ProxyModel*>();
};

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    const int files = argc > 2 ? std::atoi(argv[2]) : 100000;
    constexpr int QueuedRows = 20000;
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    FileBrowser::SetPreferencesPath(settings.path() + QStringLiteral("/favorites"),
                                    QStringLiteral("benchmark"));
    const QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/list-XXXXXX"));
    if (rounds < 1 || files < QueuedRows || !tree.isValid() || !makeTree(tree.path(), files))
        return 2;
    List list(tree.path());
    if (!list.waitFor(files))
        return 2;
    const struct
    {
        const char* name;
        double limit; ///< Milliseconds; 0 for what is only told.
        std::function<double()> measure;
    } rows[] = {
        {"letter typed, no filter", 0, [&] { return list.timeLetter(0); }},
        {"letter typed, 250 filter patterns", 150, [&] { return list.timeLetter(250); }},
        {"attributes by size, nothing selected", 0, [&] { return list.timeArrival(0); }},
        {"attributes by size, half selected", 100, [&] { return list.timeArrival(files / 2); }},
        {"paint, empty pick list", 0, [&] { return list.timePaint(); }},
    };
    std::printf("%-62s %9s %9s\n", "milliseconds of processor time", "median", "limit");
    bool holds = true;
    std::vector<std::vector<double>> times(std::size(rows));
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < std::size(rows); ++i)
            times[i].push_back(rows[i].measure());
    }
    for (std::size_t i = 0; i < std::size(rows); ++i)
        holds &= printVerdict(rows[i].name, median(times[i]), rows[i].limit);
    list.queue(QueuedRows);
    std::vector<double> paints(static_cast<std::size_t>(rounds));
    std::generate(paints.begin(), paints.end(), [&] { return list.timePaint(); });
    holds &= printVerdict("paint, 20,000 rows in the pick list", median(paints), 2);
    const QDir folder(tree.path());
    const QStringList names = folder.entryList(QDir::Files);
    for (const bool byName : {true, false}) {
        list.sortBy(byName ? 0 : 2, byName ? Qt::AscendingOrder : Qt::DescendingOrder);
        std::vector<double> added;
        for (int round = 0; round < rounds; ++round) {
            QFile file(folder.filePath(QStringLiteral("new_%1_%2.exr").arg(byName).arg(round)));
            if (!file.open(QIODevice::WriteOnly))
                return 2;
            added.push_back(list.timeUpdate());
        }
        holds &= printVerdict(byName ? "turn, one file is new" : "turn, one file is new, by time",
                              median(added), byName ? 50 : 0);
        const int half = byName ? 0 : 5;
        for (auto i = half; i < names.size(); i += 10)
            QFile::remove(folder.filePath(names.at(i)));
        holds &= printVerdict(byName ? "turn, a tenth is gone" : "turn, a tenth is gone, by time",
                              list.timeUpdate(), 0);
    }
    return holds ? 0 : 1;
}
