#include "frames/FrameRun.h"

#include "base/Text.h"
#include "frames/FrameName.h"
#include "frames/Placeholder.h"

#include <numeric>

namespace Halvern::UI {

namespace {

QString rangeText(int first, int last)
{
    return QString::fromStdString(Placeholder::rangeText(first, last));
}

} // namespace

FrameRun::FrameRun(const QString& pattern, int frame)
    : m_pattern(pattern)
    , m_first(frame)
    , m_last(frame)
    , m_size(1)
    , m_openRunStart(frame)
{
}

bool FrameRun::take(const QString& pattern, int frame)
{
    QString common = pattern;
    if (m_size == 0 || frame <= m_last || !FrameName::reconcilePatterns(m_pattern, common))
        return false;
    // Frame numbers are never negative.
    const int distance = frame - m_last;
    m_step = std::gcd(m_step, distance);
    if (distance > m_step) {
        m_closedRuns.push_back({m_openRunStart, m_last, m_step});
        m_openRunStart = frame;
    }
    m_last = frame;
    ++m_size;
    return true;
}

std::vector<ListedName> FrameRun::listedNames(bool split) const
{
    const std::vector<Base::FrameRange> runs = presentRuns();
    std::vector<ListedName> names;
    if (split && !runs.empty()) {
        for (const Base::FrameRange& run : runs) {
            if (run.isSingle())
                names.push_back({fileNameOf(run.first).toUtf8(), false});
            else
                names.push_back(
                    {(m_pattern + QLatin1Char(' ') + rangeText(run.first, run.last)).toUtf8(), true});
        }
        return names;
    }
    QString text = m_pattern + QLatin1Char(' ') + rangeText(m_first, m_last);
    if (m_step > 1)
        text += QLatin1Char(',') + QString::number(m_step);
    if (!runs.empty()) {
        text += QLatin1String(" (");
        for (const Base::FrameRange& run : runs)
            text += QLatin1Char(' ') + rangeText(run.first, run.last) + QLatin1Char(' ');
        text += QLatin1Char(')');
    }
    names.push_back({text.toUtf8(), true});
    return names;
}

// Empty if no interval skips a frame at the step known by then. A last frame that stands alone is left out.
std::vector<Base::FrameRange> FrameRun::presentRuns() const
{
    std::vector<Base::FrameRange> runs = m_closedRuns;
    if (!runs.empty() && m_last > m_openRunStart)
        runs.push_back({m_openRunStart, m_last, m_step});
    return runs;
}

QString FrameRun::fileNameOf(int frame) const
{
    const std::string number =
        Base::zeroPadded(frame, static_cast<int>(m_pattern.count(QLatin1Char(Placeholder::Hash))));
    return Placeholder::before(m_pattern).toString() + QLatin1String(number.c_str()) +
           Placeholder::after(m_pattern).toString();
}

} // namespace Halvern::UI
