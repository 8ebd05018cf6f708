#include "pictures/PictureReader.h"

#include "pictures/PictureProcess.h"
#include "pictures/PictureProgram.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <array>
#include <deque>
#include <utility>

namespace Halvern::UI {

using namespace PictureProtocol;

namespace {

constexpr int MostFailures = 3;
constexpr int UsualTimeLimit = 10000;   // milliseconds
constexpr int UsualFailureTime = 10000; // milliseconds
constexpr int Patience = 2000;          // milliseconds that the newest request waits for older ones
constexpr int TimeToEnd = 80;           // milliseconds

struct Job
{
    QString path;
    QSize room;
    FileVersion known;

    // Whether its result is that of the other one, too.
    bool answers(const Job& other) const
    {
        return path == other.path && room == other.room && (!known.isKnown() || known == other.known);
    }
};

struct Worker
{
    PictureProcess process;
    Job job; // the last one
};

Picture pictureOf(const Job& job, const Answer& answer)
{
    Picture picture;
    static_cast<PictureDescription&>(picture) = answer;
    picture.path = job.path;
    picture.room = job.room;
    picture.version = answer.version;
    auto* pixels = new QByteArray(answer.pixels);
    picture.image = QImage(
        reinterpret_cast<const uchar*>(pixels->constData()), answer.size.width(), answer.size.height(),
        answer.size.width() * 4, QImage::Format_RGBA8888_Premultiplied,
        [](void* owner) { delete static_cast<QByteArray*>(owner); }, pixels);
    if (picture.image.isNull()) // does not own them
        delete pixels;
    return picture;
}

} // namespace

struct PictureReader::Private
{
    explicit Private(PictureReader* reader);

    void dispatch();
    Worker* freeWorker();
    bool isUnderWay(const Job& job) const;
    void send(Worker& worker, const Job& job);
    void receive(const Job& job, const Answer& answer);
    qint64 timeToStart();
    void failToStart();
    void hurry();

    PictureReader* q;
    std::array<Worker, 2> workers;
    std::optional<Job> newest; // has not begun
    std::deque<Job> ahead;
    quint32 lastId = 0;
    int timeLimit = UsualTimeLimit;
    int failureTime = UsualFailureTime;
    QElapsedTimer clock;
    std::deque<qint64> failures; // times of the clock, ascending
    QString lastReason;
    QString fatalPath; // was read at the last failure, and is not read ahead
    QTimer restart;
    QTimer patience;
};

PictureReader::Private::Private(PictureReader* reader)
    : q(reader)
{
    clock.start();
    for (QTimer* timer : {&restart, &patience})
        timer->setSingleShot(true);
    connect(&restart, &QTimer::timeout, q, [this] { dispatch(); });
    connect(&patience, &QTimer::timeout, q, [this] { hurry(); });
    for (Worker& worker : workers) {
        connect(&worker.process, &PictureProcess::answered, q, [this, &worker](const Answer& answer) {
            const Job job = worker.job;
            dispatch(); // first, so that no process waits for those who listen
            receive(job, answer);
        });
        connect(&worker.process, &PictureProcess::failed, q,
                [this, &worker](bool wasBusy, const QString& reason) {
                    failures.push_back(clock.elapsed());
                    lastReason = reason;
                    if (!wasBusy)
                        return;
                    fatalPath = worker.job.path;
                    emit q->pictureFailed(QString(fatalPath), reason);
                });
        connect(&worker.process, &PictureProcess::ended, q, [this] { dispatch(); });
    }
}

// Begins what can begin.
void PictureReader::Private::dispatch()
{
    Worker* worker = nullptr;
    while ((newest || !ahead.empty()) && (worker = freeWorker())) {
        if (newest) {
            patience.stop();
            send(*worker, *std::exchange(newest, std::nullopt));
            continue;
        }
        const Job job = ahead.front();
        ahead.pop_front();
        if (!isUnderWay(job) && job.path != fatalPath)
            send(*worker, job);
    }
    if (newest)
        failToStart();
}

Worker* PictureReader::Private::freeWorker()
{
    Worker* startable = nullptr;
    for (Worker& worker : workers) {
        if (!worker.process.isFree())
            continue;
        if (worker.process.isRunning())
            return &worker;
        startable = &worker;
    }
    return timeToStart() == 0 ? startable : nullptr;
}

bool PictureReader::Private::isUnderWay(const Job& job) const
{
    return std::any_of(workers.begin(), workers.end(), [&](const Worker& worker) {
        return worker.process.isBusy() && worker.job.answers(job);
    });
}

void PictureReader::Private::send(Worker& worker, const Job& job)
{
    const bool isStarted = worker.process.isRunning();
    const QString program = isStarted ? QString() : pictureProgram();
    if (!isStarted && program.isEmpty()) {
        ahead.clear();
        QTimer::singleShot(0, q, [this, path = job.path] {
            emit q->pictureFailed(path,
                                  tr("The program that reads pictures, coreui-pictures, is not installed."));
        });
        return;
    }
    Request request;
    request.id = ++lastId;
    request.path = QFile::encodeName(job.path);
    request.width = quint32(job.room.width());
    request.height = quint32(job.room.height());
    request.known = job.known;
    request.timeLimit = quint32(timeLimit);
    worker.job = job;
    worker.process.send(program, request);
}

void PictureReader::Private::receive(const Job& job, const Answer& answer)
{
    if (job.path == fatalPath)
        fatalPath.clear();
    if (answer.isUnchanged)
        emit q->pictureUnchanged(job.path);
    else if (!answer.reason.isEmpty())
        emit q->pictureFailed(job.path, answer.reason);
    else
        emit q->pictureRead(pictureOf(job, answer));
}

// Milliseconds until a process may be started.
qint64 PictureReader::Private::timeToStart()
{
    const qint64 now = clock.elapsed();
    while (!failures.empty() && (now - failures.front() >= failureTime))
        failures.pop_front();
    return failures.size() < MostFailures ? 0 : failures.front() + failureTime - now;
}

// Says why the newest request is not read for a while, unless a process is about to take it.
void PictureReader::Private::failToStart()
{
    const qint64 time = timeToStart();
    const bool oneRuns = std::any_of(workers.begin(), workers.end(),
                                     [](const Worker& worker) { return worker.process.isRunning(); });
    if (time == 0 || oneRuns || restart.isActive())
        return;
    restart.start(int(time));
    QTimer::singleShot(0, q, [this, path = newest->path] {
        emit q->pictureFailed(
            path,
            tr("Reading pictures failed too often, and is tried again in a few seconds. %1").arg(lastReason));
    });
}

// Ends what keeps the newest request waiting.
void PictureReader::Private::hurry()
{
    Worker* oldest = nullptr;
    for (Worker& worker : workers) {
        if (worker.process.isBusy() &&
            (!oldest || worker.process.request().id < oldest->process.request().id))
            oldest = &worker;
    }
    patience.start(Patience);
    if (oldest)
        oldest->process.kill();
    else if (newest && timeToStart() == 0)
        emit q->pictureFailed(QString(newest->path), tr("The storage does not answer."));
}

PictureReader::PictureReader(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
}

PictureReader::~PictureReader()
{
    stop();
    const QDeadlineTimer deadline(TimeToEnd);
    for (Worker& worker : d->workers)
        worker.process.waitForEnd(int(deadline.remainingTime()));
}

void PictureReader::read(const QString& path, const QSize& room, const FileVersion& known,
                         const QStringList& ahead)
{
    constexpr int longest = LongestSide;
    const Job job = {path, room.boundedTo({longest, longest}).expandedTo({1, 1}), known};
    cancel();
    if (!d->isUnderWay(job))
        d->newest = job;
    for (const QString& next : ahead)
        d->ahead.push_back({next, job.room, {}});
    d->dispatch();
    if (d->newest)
        d->patience.start(Patience);
}

void PictureReader::cancel()
{
    d->newest.reset();
    d->ahead.clear();
    d->patience.stop();
    d->restart.stop();
}

void PictureReader::stop()
{
    cancel();
    for (Worker& worker : d->workers)
        worker.process.kill();
}

void PictureReader::setTimeLimit(int milliseconds)
{
    d->timeLimit = std::max(0, milliseconds);
}

void PictureReader::setFailureTime(int milliseconds)
{
    d->failureTime = milliseconds;
}

} // namespace Halvern::UI
