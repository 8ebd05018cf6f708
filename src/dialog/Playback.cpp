#include "dialog/Playback.h"

#include <algorithm>

namespace Halvern::UI {

Playback::Playback(QObject* parent)
    : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Playback::advance);
}

void Playback::start(int first, int last, int frame, double rate)
{
    m_first = first;
    m_count = qint64(last) - first + 1;
    m_offset = std::clamp<qint64>(frame, first, last) - first;
    m_reached = 0;
    m_rate = std::clamp(rate, 1.0, 240.0);
    m_clock.start();
    m_timer.start(int(500 / m_rate)); // twice a frame, so that none comes a whole frame late
}

void Playback::advance()
{
    const auto reached = qint64(double(m_clock.elapsed()) * m_rate / 1000);
    if (reached == m_reached)
        return;
    m_reached = reached;
    emit frameReached(int(m_first + (m_offset + reached) % m_count));
}

} // namespace Halvern::UI
