#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace Halvern::UI {

/// Plays frames in a loop, at the speed of the clock. Frames that cannot be shown in time are left out.
class Playback : public QObject
{
    Q_OBJECT

public:
    explicit Playback(QObject* parent);

    /// Plays the frames @p first to @p last from @p frame on, @p rate frames a second.
    void start(int first, int last, int frame, double rate);
    void stop() { m_timer.stop(); }
    bool isPlaying() const { return m_timer.isActive(); }

signals:
    void frameReached(int frame);

private:
    void advance();

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_first = 0;
    qint64 m_count = 1;
    qint64 m_offset = 0; // of the frame at which it started, from the first
    qint64 m_reached = 0;
    double m_rate = 0;
};

} // namespace Halvern::UI
