#include "pictures/PictureProcess.h"

#include <QPointer>
#include <QProcess>

namespace Halvern::UI {

using namespace PictureProtocol;

namespace {

constexpr int TimeToEnd = 50; // milliseconds, for a program that was killed

} // namespace

PictureProcess::PictureProcess()
    : m_process(new QProcess)
{
    // What the program prints would be kept in memory if nobody read it.
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_timeLimit.setSingleShot(true);
    connect(&m_timeLimit, &QTimer::timeout, this, [this] {
        fail(tr("Reading took longer than %1 seconds.").arg(m_timeLimit.interval() / 1000.0));
    });
    connect(m_process, &QProcess::readyReadStandardOutput, this, &PictureProcess::read);
    connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &PictureProcess::finish);
    // May come while the program is being started, and nothing else tells that it has ended.
    const auto failToStart = [this] {
        fail(tr("%1 can't be started: %2").arg(m_process->program(), m_process->errorString()));
    };
    connect(m_process, &QProcess::errorOccurred, this, [this, failToStart](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            QTimer::singleShot(0, this, failToStart);
        // The program has ended or reads no more. QProcess would watch the pipe that it has closed, with a
        // warning, until it knows of the end.
        if (error == QProcess::WriteError) {
            m_process->kill();
            waitForEnd(TimeToEnd);
        }
    });
}

// The destructor of QProcess waits for the end of a program, which never comes if the storage is gone.
PictureProcess::~PictureProcess()
{
    m_process->disconnect();
    if (isRunning()) {
        m_process->kill();
        connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), m_process,
                &QObject::deleteLater);
    } else if (m_isReporting) {
        m_process->deleteLater(); // it may be one of its signals that leads here
    } else {
        delete m_process;
    }
}

bool PictureProcess::isRunning() const
{
    return m_process->state() != QProcess::NotRunning;
}

void PictureProcess::send(const QString& program, const Request& request)
{
    if (!isRunning()) {
        m_isGreeted = false;
        m_frames = Frames();
        m_process->start(program, QStringList());
    }
    m_request = request;
    m_isBusy = true;
    m_frames.setLongest(longestAnswer(request));
    if (isRunning())
        m_process->write(frame(request));
    m_timeLimit.start(int(request.timeLimit));
}

void PictureProcess::kill()
{
    m_timeLimit.stop();
    m_isBusy = false;
    m_isEnding = isRunning();
    if (m_isEnding)
        m_process->kill();
}

void PictureProcess::waitForEnd(int milliseconds)
{
    if (isRunning())
        m_process->waitForFinished(milliseconds);
}

void PictureProcess::read()
{
    const QByteArray bytes = m_process->readAllStandardOutput();
    if (m_isEnding)
        return;
    m_frames.add(bytes);
    while (const auto payload = m_frames.take()) {
        if (!m_isGreeted) {
            if (!isHello(*payload))
                return fail(tr("%1 speaks another version.").arg(m_process->program()));
            m_isGreeted = true;
            continue;
        }
        const auto answer = m_isBusy ? readAnswer(*payload) : std::nullopt;
        if (!answer || answer->id != m_request.id)
            return fail(tr("%1 sent what can't be understood.").arg(m_process->program()));
        m_timeLimit.stop();
        m_isBusy = false;
        if (!report([&] { emit answered(*answer); }))
            return;
    }
    if (m_frames.isRefused())
        fail(tr("%1 sent more than it was asked for.").arg(m_process->program()));
}

void PictureProcess::fail(const QString& reason)
{
    const bool wasBusy = m_isBusy;
    kill();
    if (report([&] { emit failed(wasBusy, reason); }) && !m_isEnding)
        emit ended();
}

void PictureProcess::finish()
{
    if (!m_isEnding)
        return fail(tr("The program that reads pictures ended while it read this file."));
    m_isEnding = false;
    emit ended();
}

// Emits a signal. Returns false if a slot has destroyed this.
template <class Signal>
bool PictureProcess::report(Signal signal)
{
    const QPointer<PictureProcess> self(this);
    m_isReporting = true;
    signal();
    if (self)
        m_isReporting = false;
    return self;
}

} // namespace Halvern::UI
