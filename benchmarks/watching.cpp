// Measures a watched browser of a large folder in which a program writes a frame every 100 ms. Prints whether
// each value is within its limit, and what a person who works in it loses: nothing. Exit status: 1 if a limit
// is missed or something is lost. Usage:
//
//     watching-benchmark [SECONDS [FILES]]    makes its tree in the working directory; each part takes
//     SECONDS watching-benchmark --write FOLDER       writes the frames, until it is ended

#include "Measuring.h"
#include "browser/DirectoryModel.h"

#include <QApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Measuring;
using Halvern::UI::FileBrowser;

namespace {

constexpr int DefaultSeconds = 60;
constexpr int DefaultFiles = 100000;
constexpr int FrameInterval = 100; // milliseconds
constexpr int FirstVisible = 30;   // row of the scrolled view

std::atomic<bool> systemTells{true};

QString framePath(const QString& folder, int frame)
{
    // Behind all others in name order.
    return QStringLiteral("%1/shot_new.%2.exr").arg(folder).arg(frame, 6, 10, QLatin1Char('0'));
}

int writeFrames(const QString& folder)
{
    for (int frame = 1;; ++frame) {
        QFile file(framePath(folder, frame));
        if (!file.open(QFile::WriteOnly) || file.write("frame") != 5)
            return 2;
        file.close();
        ::usleep(FrameInterval * 1000);
    }
}

// Seconds that this process has used of a processor.
double processorTime()
{
    rusage usage;
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The longest time that the event loop was away, looked at every 5 ms.
class Heartbeat : public QTimer
{
public:
    Heartbeat()
    {
        setTimerType(Qt::PreciseTimer);
        setInterval(Beat);
        connect(this, &QTimer::timeout, this, [this] {
            m_longest = std::max(m_longest, milliseconds(m_sinceBeat) - Beat);
            m_sinceBeat.start();
        });
        m_sinceBeat.start();
        start();
    }
    double longest() const { return m_longest; }

private:
    static constexpr int Beat = 5;

    QElapsedTimer m_sinceBeat;
    double m_longest = 0;
};

/// Counts empty cells in the paints of a list.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QTreeView& list)
        : m_list(list)
    {
        list.viewport()->installEventFilter(this);
    }
    int paints() const { return m_paints; }
    int blankCells() const { return m_blank; }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        ++m_paints;
        for (QModelIndex row = m_list.indexAt(QPoint(1, 1)); row.isValid(); row = m_list.indexBelow(row)) {
            if (m_list.visualRect(row).top() > m_list.viewport()->height())
                break;
            for (int column = 0; column < 3; ++column)
                m_blank += row.sibling(row.row(), column).data().isValid() ? 0 : 1;
        }
        return false;
    }

private:
    QTreeView& m_list;
    int m_paints = 0;
    int m_blank = 0;
};

void waitFor(int duration)
{
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

/// A browser at work, and what it shows of the frames.
class Session
{
public:
    Session(const QString& folder, int files)
        : m_folder(folder)
    {
        m_browser.setSequencesEnabled(true);
        m_browser.setMultipleSelections(true);
        m_browser.setWatched(true);
        m_browser.setDirectory(QDir(folder), false, true);
        m_browser.resize(1000, 700);
        m_browser.show();
        const int rows = files / FramesPerSequence;
        const auto& model = *m_browser.findChild<FileBrowser::DirectoryModel*>();
        while (m_rows.rowCount() < rows || !model.hasAllAttributes())
            waitFor(10);
        waitFor(7000); // a folder that was just made is read once more
        for (const char* signal : {SIGNAL(dataChanged(QModelIndex, QModelIndex)), SIGNAL(layoutChanged()),
                                   SIGNAL(rowsInserted(QModelIndex, int, int))})
            QObject::connect(&m_rows, signal, &m_arrivals, SLOT(start()));
        m_arrivals.setSingleShot(true);
        QObject::connect(&m_arrivals, &QTimer::timeout, [this] { noteFrames(); });
    }

    void select()
    {
        scroll();
        click(FirstVisible + 3, Qt::NoModifier);
        click(FirstVisible + 8, Qt::ShiftModifier);
        remember();
    }
    void type()
    {
        m_edit->setFocus();
        m_edit->setText(m_folder + QLatin1Char('/'));
        for (const QChar letter : QStringLiteral("shot_")) {
            QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
            QCoreApplication::sendEvent(m_edit, &press);
        }
        scroll();
        remember();
    }

    /// Runs for a while, with frames being written. False if a limit is missed or something is lost.
    bool run(const char* what, int seconds, double limit)
    {
        std::printf("\n%s, %d s\n", what, seconds);
        const PaintWatch paints(*m_list);
        QProcess writer;
        writer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        writer.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--write"), m_folder});
        const Heartbeat heart;
        QElapsedTimer timer;
        timer.start();
        const double before = processorTime();
        waitFor(seconds * 1000);
        const double share = (processorTime() - before) * 1000 / milliseconds(timer);
        const double longest = heart.longest();
        writer.kill();
        writer.waitForFinished();
        waitFor(static_cast<int>(limit));
        std::printf("%d frames, %zu states, %d paints\n", m_shown, m_delays.size(), paints.paints());
        if (m_delays.empty())
            return false;
        printVerdict("time until a frame is in the row, median, ms", median(m_delays), 0);
        bool holds = printVerdict("time until a frame is in the row, longest, ms",
                                  *std::max_element(m_delays.begin(), m_delays.end()), limit);
        holds &= printVerdict("longest time away from the event loop, ms", longest, 50);
        holds &= printVerdict("share of a core", share, 0.2);
        holds &= printVerdict("frames that are not shown in the end",
                              QFileInfo::exists(framePath(m_folder, m_shown + 1)), 0.5, Kind::Count);
        holds &= printVerdict("empty cells in paints", paints.blankCells(), 0.5, Kind::Count);
        holds &= printVerdict("things of the user that are lost", lost(), 0.5, Kind::Count);
        return holds;
    }

private:
    void scroll()
    {
        m_list->scrollTo(m_rows.index(FirstVisible, 0), QAbstractItemView::PositionAtTop);
        waitFor(100);
    }
    void click(int row, Qt::KeyboardModifiers modifiers)
    {
        const QPoint place = m_list->visualRect(m_rows.index(row, 0)).center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, place, m_list->viewport()->mapToGlobal(place), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, modifiers);
            QCoreApplication::sendEvent(m_list->viewport(), &event);
        }
    }
    QStringList state() const
    {
        QStringList texts{m_edit->text(), QString::number(m_edit->cursorPosition()),
                          m_list->indexAt(QPoint(1, 1)).data().toString(),
                          m_list->currentIndex().data().toString()};
        for (const QModelIndex& row : m_list->selectionModel()->selectedRows())
            texts.append(row.data().toString());
        return texts;
    }
    void remember() { m_remembered = state(); }
    double lost() const
    {
        const QStringList now = state();
        double count = 0;
        for (int i = 0; i < std::max(now.size(), m_remembered.size()); ++i) {
            if (now.value(i) == m_remembered.value(i))
                continue;
            std::printf("    \"%s\" became \"%s\"\n", qPrintable(m_remembered.value(i)),
                        qPrintable(now.value(i)));
            ++count;
        }
        return count;
    }

    // The row of the frames is the last one, and their range begins with 1.
    void noteFrames()
    {
        const QString row = m_rows.index(m_rows.rowCount() - 1, 0).data().toString();
        const int last = row.section(QLatin1Char('-'), -1).toInt();
        if (!row.startsWith(QLatin1String("shot_new.")) || last <= m_shown)
            return;
        const qint64 written = QFileInfo(framePath(m_folder, m_shown + 1)).lastModified().toMSecsSinceEpoch();
        m_delays.push_back(static_cast<double>(QDateTime::currentMSecsSinceEpoch() - written));
        m_shown = last;
    }

    const QString m_folder;
    FileBrowser m_browser;
    QTreeView* m_list = m_browser.findChild<QTreeView*>(QStringLiteral("filesList"));
    QLineEdit* m_edit = m_browser.findChild<QLineEdit*>(QStringLiteral("filenameEdit"));
    const QAbstractItemModel& m_rows = *m_list->model();
    QTimer m_arrivals; // in the turn after the rows changed
    QStringList m_remembered;
    int m_shown = 0;
    std::vector<double> m_delays; // of the longest written frame in each new state
};

bool removeFrames(const QString& folder)
{
    int frame = 1;
    while (QFile::remove(framePath(folder, frame)))
        ++frame;
    return frame > 1;
}

bool measure(const QString& folder, int seconds, int files)
{
    constexpr double Soon = 1500;     // milliseconds
    constexpr double Question = 2000; // the interval between two questions
    bool holds = true;
    {
        Session session(folder, files);
        session.select();
        holds = session.run("the system tells of changes; rows are selected", seconds, Soon);
    }
    holds &= removeFrames(folder);
    {
        Session session(folder, files);
        session.type();
        holds &= session.run("the system tells of changes; a name is half typed", seconds, Soon);
    }
    holds &= removeFrames(folder);
    systemTells = false;
    Session session(folder, files);
    session.select();
    holds &=
        session.run("as on a file server, which is only asked; rows are selected", seconds, Question + Soon);
    return holds;
}

} // namespace

// In place of the function of the C library.
extern "C" __attribute__((visibility("default"))) int inotify_add_watch(int queue, const char* path,
                                                                        unsigned events) noexcept
{
    if (systemTells)
        return static_cast<int>(::syscall(SYS_inotify_add_watch, queue, path, events));
    errno = ENOSPC;
    return -1;
}

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--write") == 0)
        return writeFrames(QFile::decodeName(argv[2]));
    const QApplication application(argc, argv);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : DefaultSeconds;
    const int files = argc > 2 ? std::atoi(argv[2]) : DefaultFiles;
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    FileBrowser::SetUseLastSavedDir(false);
    FileBrowser::SetPreferencesPath(settings.path() + QStringLiteral("/favorites"),
                                    QStringLiteral("benchmark"));
    const QTemporaryDir tree(QDir::currentPath() + QStringLiteral("/watching-XXXXXX"));
    if (seconds < 1 || files < 50 * FramesPerSequence || !tree.isValid() || !makeTree(tree.path(), files)) {
        std::fprintf(stderr, "usage: watching-benchmark [SECONDS [FILES]], with 50,000 files or more\n");
        return 2;
    }
    ::sync();
    std::printf("%d files, a new one every %d ms\n", files, FrameInterval);
    std::printf("%-62s %9s %9s\n", "", "value", "limit");
    return measure(tree.path(), seconds, files) ? 0 : 1;
}
