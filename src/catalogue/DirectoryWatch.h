#pragma once

#include "catalogue/DirectoryNotices.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

class QSocketNotifier;

namespace Halvern::UI {

/// Tells that a directory changed: files were made, removed, renamed, written or given other attributes, or
/// the directory itself went away, came back or was replaced by another.
///
/// Changes by programs of this machine are told at once, with inotify. The directory is also asked for its
/// time of change again and again, because a file server tells nobody of what other machines write. A file
/// that is being written counts as a change when its writer closes it. A settling time after the last change
/// the directory is told as changed once more: files may have been written without a trace in its times.
///
/// Lives on a thread with an event loop, and asks the disk for nothing there: each question has a thread of
/// its own, one at a time for each path. Nothing ever waits for an answer, the destructor included.
class DirectoryWatch : public QObject
{
    Q_OBJECT

public:
    /// All in milliseconds.
    struct Pace
    {
        int shortest = 2000; ///< The time to the next question after a change.
        int longest = 30000; ///< The same if nothing changes for long, or if answers take long.
        int between = 1000;  ///< The shortest time from one changed() to the next.
        int settling = 5000; ///< From the last change to the second time that it is told.
    };

    DirectoryWatch();
    explicit DirectoryWatch(const Pace& pace);
    ~DirectoryWatch() override;

    /// Whether the directory is watched (default: no). If not, the disk is asked nothing. The first question
    /// after a pause is asked at once, and changed() follows, a settling time after the last read began or
    /// as soon as something is known to have changed.
    void setActive(bool active);
    /// The directory @p path is watched from now on, in place of an earlier one, and the reader begins to
    /// read it now. Call this also while not active.
    void beginRead(const std::string& path);
    /// The reader has all names, and goes on to attributes. May be called again.
    void endNames();
    /// The reader has ended, after beginRead() or changed(). Reading took @p milliseconds; there is a pause
    /// of four times as long before the next changed(). A read that failed is to be tried again: after more
    /// than the settling time, and later each time that it fails again, up to Pace::longest. The same without
    /// beginRead() if the reader could not even begin.
    void endRead(int milliseconds, bool succeeded);

    /// The directory of beginRead(), at first empty.
    const std::string& path() const { return m_path; }
    /// What the system told of changes before the last changed(), since the last successful read before it
    /// began. Nothing if it may not have told of all, and at the end of the settling time.
    const ChangedNames& changedNames() const { return m_told; }

signals:
    /// The directory is to be read again, which begins now. Nothing more is told before endRead().
    void changed();

private slots:
    void takeAnswer();

private:
    struct Question;

    /// What tells one state of a directory from another.
    struct State
    {
        explicit State(const std::optional<struct stat>& status);
        bool operator==(const State& other) const;

        bool exists;
        dev_t device = 0;
        ino_t inode = 0;
        timespec modified{};
        timespec attributesChanged{}; // some programs set the other one back
    };

    void schedule();
    void askSoon();
    void ask();
    void makeNotices();
    void takeNotices();
    void forgetNotices();
    bool isAsked() const;
    bool mayHaveChangedSinceRead(const State& state) const;
    void tell(bool differs);

    const Pace m_pace;
    std::string m_path;
    bool m_active = false;
    bool m_reading = false;
    bool m_readingNames = false;
    bool m_asksSoon = false;                 // even if the reader works or rests
    bool m_noticed = false;                  // a change that was not told yet
    ChangedNames m_told;                     // see changedNames()
    ChangedNames m_untold;                   // names that changed since, as far as they were taken
    int m_followed = DirectoryNotices::None; // the directory that these are about
    bool m_looksAgain = false;               // after m_settling
    int m_settling;                          // since a read began, in milliseconds; longer after failed reads
    std::optional<State> m_known;            // the last state
    int m_interval = 0;                      // to the next question, in milliseconds
    QTimer m_timer;                          // for that question
    QElapsedTimer m_sinceRead;               // since it began
    QDeadlineTimer m_rest;                   // before the next read
    std::shared_ptr<Question> m_question;    // whose answer is waited for
    std::vector<std::shared_ptr<Question>> m_asked; // without an answer, at most one for each path
    std::shared_ptr<DirectoryNotices> m_notices;    // null if the system has none
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Halvern::UI
