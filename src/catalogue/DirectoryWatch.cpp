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
#include <thread>
#include <utility>

namespace Halvern::UI {

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
    struct Answer
    {
        State state;
        int followed; ///< See DirectoryNotices::follow().
        qint64 took;  ///< Milliseconds.
    };

    void ask()
    {
        QElapsedTimer timer;
        timer.start();
        // Changes after the answer are noticed, so notices come first.
        const auto used = std::move(notices);
        const int followed = used ? used->follow(path) : DirectoryNotices::None;
        const State state(Base::fileStatus(path.c_str()));
        const Answer given{state, followed, timer.elapsed()};
        while (!give(given))
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    // Returns false if there is no memory to pass the answer on.
    bool give(const Answer& given)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        try {
            if (asker)
                QMetaObject::invokeMethod(asker, "takeAnswer", Qt::QueuedConnection);
        } catch (const std::bad_alloc&) {
            return false;
        }
        answer = given;
        return true;
    }
    bool isAnswered()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return answer.has_value();
    }

    const std::string path;
    // Until they are followed, so that the asker does not close them.
    std::shared_ptr<DirectoryNotices> notices;
    std::mutex mutex; // guards what follows
    DirectoryWatch* asker;
    std::optional<Answer> answer = std::nullopt;
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
    if (!active) {
        m_question.reset();
        forgetNotices();
    }
    // Nobody told of files that were written in the pause, and the directory has no trace of them.
    m_looksAgain = m_looksAgain || (active && !m_reading);
    askSoon();
}

void DirectoryWatch::beginRead(const std::string& path)
{
    m_question.reset();
    forgetNotices();
    m_path = path;
    m_reading = true;
    m_readingNames = true;
    m_noticed = false;
    m_looksAgain = false;
    m_untold.reset();
    m_known.reset();
    m_settling = m_pace.settling;
    m_rest = QDeadlineTimer();
    m_sinceRead.start();
    askSoon();
}

void DirectoryWatch::endNames()
{
    if (std::exchange(m_readingNames, false))
        askSoon();
}

void DirectoryWatch::endRead(int milliseconds, bool succeeded)
{
    constexpr int RestFactor = 4; // the reader works a fifth of the time
    m_looksAgain = m_looksAgain || !succeeded;
    endNames();
    if (!std::exchange(m_reading, false)) {
        schedule();
        return;
    }
    if (!succeeded && m_told && m_untold)
        m_untold->merge(*m_told);
    else if (!succeeded)
        m_untold.reset();
    m_settling = succeeded ? m_pace.settling
                           : std::min(m_settling + m_settling / 2, std::max(m_pace.longest, m_pace.settling));
    m_rest.setRemainingTime(
        std::max<qint64>(m_pace.between - m_sinceRead.elapsed(), qint64(RestFactor) * milliseconds));
    schedule();
}

void DirectoryWatch::askSoon()
{
    m_interval = 0;
    m_asksSoon = true;
    schedule();
}

// Two questions do not wait for the end of the first read, so that what changes meanwhile is noticed: one for
// the directory's state when names are read, and one with notices when attributes are. Notices are not asked
// for earlier, because the system takes about 7 ms for each 100,000 files then, and the names would wait.
void DirectoryWatch::schedule()
{
    m_timer.stop();
    if (!m_active || m_path.empty() || isAsked() || (m_reading && !m_asksSoon))
        return;
    qint64 wait = m_noticed || m_asksSoon ? 0 : m_interval;
    if (m_looksAgain)
        wait = std::min(wait, m_settling - m_sinceRead.elapsed());
    m_timer.start(static_cast<int>(std::max(wait, m_asksSoon ? 0 : m_rest.remainingTime())));
}

void DirectoryWatch::ask()
{
    try {
        if (!m_readingNames)
            makeNotices();
        m_asked.reserve(m_asked.size() + 1);
        const std::shared_ptr<Question> question(new Question{m_path, m_notices, {}, this});
        std::thread([question] { question->ask(); }).detach();
        m_asked.push_back(question);
        m_question = question;
        m_asksSoon = false;
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
    m_notices = std::make_shared<DirectoryNotices>();
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
    const Question::Answer answer = *std::exchange(m_question, nullptr)->answer;
    const std::optional<State> before = std::exchange(m_known, answer.state);
    if (std::exchange(m_followed, answer.followed) != answer.followed)
        m_untold.reset();
    // What is not there is read again when it is back.
    m_looksAgain = m_known->exists && (m_looksAgain || (!before && mayHaveChangedSinceRead(*m_known)));
    const bool differs = m_noticed || (before && !(*before == *m_known));
    const qint64 longer = differs ? 0 : m_interval + m_interval / 2;
    m_interval = static_cast<int>(std::min<qint64>(
        std::max({longer, qint64(m_pace.shortest), SlowAnswerFactor * answer.took}), m_pace.longest));
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
        m_notices->take(m_untold);
        m_notifier->setEnabled(true);
    }
    // On a file server others make changes that nobody tells of.
    const bool isTold = differs && m_untold && !m_untold->empty();
    const bool isFollowed = m_followed != DirectoryNotices::None;
    m_told = std::exchange(m_untold, isFollowed ? ChangedNames(std::in_place) : std::nullopt);
    if (!isTold)
        m_told.reset();
    emit changed();
}

// Closing takes the system some time.
void DirectoryWatch::forgetNotices()
{
    m_notifier.reset();
    m_untold.reset();
    m_followed = DirectoryNotices::None;
    if (m_notices)
        Base::callInBackground([notices = std::move(m_notices)] {});
}

} // namespace Halvern::UI
