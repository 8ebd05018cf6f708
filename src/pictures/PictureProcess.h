#pragma once

#include "pictures/PictureProtocol.h"

#include <QObject>
#include <QTimer>

class QProcess;

namespace Halvern::UI {

/// One run after the other of the program that reads pictures. It is given one request at a time and checks
/// what comes back. GUI thread only; it never waits, but for waitForEnd(). A slot may destroy it.
class PictureProcess : public QObject
{
    Q_OBJECT

public:
    PictureProcess();
    /// Kills the program, and does not wait for its end.
    ~PictureProcess() override;

    /// The program runs, from its start until its end is known.
    bool isRunning() const;
    /// It was given a request that is not answered.
    bool isBusy() const { return m_isBusy; }
    /// It may be given a request.
    bool isFree() const { return !m_isBusy && !m_isEnding; }
    /// The request that it was given last.
    const PictureProtocol::Request& request() const { return m_request; }

    /// Gives the program a request, and starts @p program if none runs. It is to be free.
    void send(const QString& program, const PictureProtocol::Request& request);
    /// Kills the program without saying so, except by ended().
    void kill();
    /// Waits until a killed program has ended, for at most @p milliseconds.
    void waitForEnd(int milliseconds);

signals:
    void answered(const Halvern::UI::PictureProtocol::Answer& answer);
    /// The program ended, or is killed because of what it did. @p wasBusy: its request has no answer.
    void failed(bool wasBusy, const QString& reason);
    /// A program that ran has ended. Another one can be started.
    void ended();

private:
    void read();
    void fail(const QString& reason);
    void finish();
    template <class Signal>
    bool report(Signal signal);

    QProcess* m_process;
    QTimer m_timeLimit;
    PictureProtocol::Frames m_frames;
    PictureProtocol::Request m_request;
    bool m_isGreeted = false;
    bool m_isBusy = false;
    bool m_isEnding = false;    // killed, but still there
    bool m_isReporting = false; // in a slot of a listener
};

} // namespace Halvern::UI
