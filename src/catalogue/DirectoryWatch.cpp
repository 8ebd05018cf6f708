#include "catalogue/DirectoryWatch.h"

#include "base/FileSystem.h"
#include "base/SlowCalls.h"

#include <QDateTime>
#include <QSocketNotifier>
#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <new>
#include <sys/inotify.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Halvern::UI {

/// What the system tells of one directory.
///
/// Not a QFileSystemWatcher: that one prints a warning with each directory that the system refuses to watch,
/// lists it every second on the thread that it lives on if the system has no inotify left, and does not tell
/// when a file was written.
class DirectoryWatch::Notices
{
public:
    Notices()
        : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
    }
    ~Notices() { ::close(m_descriptor); }
    Notices(const Notices&) = delete;
    Notices& operator=(const Notices&) = delete;

    int descriptor() const { return m_descriptor; }

    /// Tells of the directory that has this name now, and of no other. Asks the disk. If the system refuses,
    /// nothing is told.
    void follow(const std::string& path)
    {
        // IN_MASK_ADD: without it the system loses what happens while it replaces a mask by the same one.
        constexpr unsigned Changes = IN_CREATE | IN_DELETE | IN_MOVE | IN_CLOSE_WRITE | IN_ATTRIB |
                                     IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_MASK_ADD;
        const int followed =
            std::exchange(m_followed, ::inotify_add_watch(m_descriptor, path.c_str(), Changes));
        if (followed >= 0 && followed != m_followed)
            ::inotify_rm_watch(m_descriptor, followed);
    }
    void discard() const
    {
        alignas(inotify_event) char events[4096];
        while (::read(m_descriptor, events, sizeof events) > 0) {
        }
    }

private:
    const int m_descriptor;
    int m_followed = -1; // of one question at a time
};

DirectoryWatch::State::State(const std::optional<struct stat>& status)
    : exists(status && S_ISDIR(status->st_mode))
{
    if (!exists)
        return;
    device = status->st_dev;
    inode = status->st_ino;
    modified = status->st_mtim;
    attributesChanged = status->st_ctim;
}

bool DirectoryWatch::State::operator==(const State& other) const
{
    const auto same = [](const timespec& one, const timespec& two) {
        return one.tv_sec == two.tv_sec && one.tv_nsec == two.tv_nsec;
    };
    return exists == other.exists && device == other.device && inode == other.inode &&
           same(modified, other.modified) && same(attributesChanged, other.attributesChanged);
}

/// Asked once, on a thread of its own. Who asked may be gone before the answer comes.
struct DirectoryWatch::Question
{
    void ask()
    {
        QElapsedTimer timer;
        timer.start();
        // Changes after the answer are noticed, so notices come first.
        if (const auto followed = std::move(notices))
            followed->follow(path);
        const State state(Base::fileStatus(path.c_str()));
        const qint64 elapsed = timer.elapsed();
        while (!give(state, elapsed))
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    // Returns false if there is no memory to pass the answer on.
    bool give(const State& state, qint64 elapsed)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        try {
            if (asker)
                QMetaObject::invokeMethod(asker, "takeAnswer", Qt::QueuedConnection);
        } catch (const std::bad_alloc&) {
            return false;
        }
        answer = state;
        took = elapsed;
        return true;
    }
    bool isAnswered()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return answer.has_value();
    }

    const std::string path;
    std::shared_ptr<Notices> notices; // until they are followed, so that they are not closed by the asker
    std::mutex mutex;                 // guards what follows
    DirectoryWatch* asker;
    std::optional<State> answer = std::nullopt;
    qint64 took = 0; // milliseconds
};

DirectoryWatch::DirectoryWatch()
    : DirectoryWatch(Pace())
{
}

DirectoryWatch::DirectoryWatch(const Pace& pace)
    : m_pace(pace)
    , m_settling(pace.settling)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &DirectoryWatch::ask);
}

DirectoryWatch::~DirectoryWatch()
{
    for (const auto& question : m_asked) {
        const std::lock_guard<std::mutex> lock(question->mutex);
        question->asker = nullptr;
    }
    forgetNotices();
}

void DirectoryWatch::setActive(bool active)
{
    if (active == std::exchange(m_active, active))
        return;
    m_interval = 0;
    if (!active) {
        m_question.reset();
        forgetNotices();
    }
    schedule();
}

void DirectoryWatch::beginRead(const std::string& path)
{
    m_question.reset();
    forgetNotices();
    m_path = path;
    m_reading = true;
    m_noticed = false;
    m_looksAgain = false;
    m_known.reset();
    m_interval = 0;
    m_settling = m_pace.settling;
    m_rest = QDeadlineTimer();
    m_sinceRead.start();
    schedule();
}

void DirectoryWatch::endRead(int milliseconds, bool succeeded)
{
    constexpr int RestFactor = 4; // the reader works a fifth of the time
    if (!std::exchange(m_reading, false))
        return;
    m_looksAgain = m_looksAgain || !succeeded;
    m_settling = succeeded ? m_pace.settling
                           : std::min(m_settling + m_settling / 2, std::max(m_pace.longest, m_pace.settling));
    m_rest.setRemainingTime(
        std::max<qint64>(m_pace.between - m_sinceRead.elapsed(), qint64(RestFactor) * milliseconds));
    schedule();
}

// The first question about a directory does not wait for the reader: what changes while it reads is noticed.
void DirectoryWatch::schedule()
{
    m_timer.stop();
    if (!m_active || m_path.empty() || isAsked() || (m_reading && m_known))
        return;
    qint64 wait = m_noticed ? 0 : m_interval;
    if (m_looksAgain)
        wait = std::min(wait, m_settling - m_sinceRead.elapsed());
    m_timer.start(static_cast<int>(std::max(wait, m_rest.remainingTime())));
}

void DirectoryWatch::ask()
{
    try {
        makeNotices();
        m_asked.reserve(m_asked.size() + 1);
        const std::shared_ptr<Question> question(new Question{m_path, m_notices, {}, this});
        std::thread([question] { question->ask(); }).detach();
        m_asked.push_back(question);
        m_question = question;
    } catch (const std::exception&) {
        // The system has no thread, or no memory for it.
        m_interval = m_pace.shortest;
        m_timer.start(m_interval);
    }
}

bool DirectoryWatch::isAsked() const
{
    return std::any_of(m_asked.begin(), m_asked.end(),
                       [this](const auto& question) { return question->path == m_path; });
}

void DirectoryWatch::makeNotices()
{
    if (m_notices)
        return;
    m_notices = std::make_shared<Notices>();
    if (m_notices->descriptor() < 0) {
        m_notices.reset();
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_notices->descriptor(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { takeNotices(); });
}

// One notice is enough, so the others are not waited for. They are discarded when the change is told.
void DirectoryWatch::takeNotices()
{
    m_notifier->setEnabled(false);
    m_noticed = true;
    schedule();
}

void DirectoryWatch::takeAnswer()
{
    constexpr int SlowAnswerFactor = 10; // questions take a tenth of the time at most
    m_asked.erase(std::remove_if(m_asked.begin(), m_asked.end(),
                                 [](const auto& question) { return question->isAnswered(); }),
                  m_asked.end());
    if (!m_question || !m_question->isAnswered()) {
        // The answer is from before a pause or a new read. The directory may have changed since: it is asked
        // again.
        schedule();
        return;
    }
    const auto question = std::exchange(m_question, nullptr);
    const std::optional<State> before = std::exchange(m_known, question->answer);
    // What is not there is read again when it is back.
    m_looksAgain = m_known->exists && (m_looksAgain || (!before && mayHaveChangedSinceRead(*m_known)));
    const bool differs = m_noticed || (before && !(*before == *m_known));
    const qint64 longer = differs ? 0 : m_interval + m_interval / 2;
    m_interval = static_cast<int>(std::min<qint64>(
        std::max({longer, qint64(m_pace.shortest), SlowAnswerFactor * question->took}), m_pace.longest));
    m_noticed = differs;
    if (!m_reading && m_rest.hasExpired() &&
        (differs || (m_looksAgain && m_sinceRead.hasExpired(m_settling))))
        tell(differs);
    else
        schedule();
}

// Before the first answer nobody knows what the reader saw. A clock has its ticks, and the one of a file
// server may be late or early.
bool DirectoryWatch::mayHaveChangedSinceRead(const State& state) const
{
    constexpr qint64 Doubtful = 60; // seconds
    const qint64 change = std::max(state.modified.tv_sec, state.attributesChanged.tv_sec);
    return QDateTime::currentSecsSinceEpoch() - change <= Doubtful + m_sinceRead.elapsed() / 1000;
}

void DirectoryWatch::tell(bool differs)
{
    m_looksAgain = differs;
    m_noticed = false;
    m_reading = true;
    m_sinceRead.start();
    if (m_notifier) {
        m_notices->discard();
        m_notifier->setEnabled(true);
    }
    emit changed();
}

// Closing takes the system some time.
void DirectoryWatch::forgetNotices()
{
    m_notifier.reset();
    if (m_notices)
        Base::callInBackground([notices = std::move(m_notices)] {});
}

} // namespace Halvern::UI
