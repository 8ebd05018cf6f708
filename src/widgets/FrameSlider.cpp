#include "widgets/FrameSlider.h"

#include "widgets/Rounding.h"
#include "widgets/TickSpacing.h"

#include <algorithm>

namespace {

constexpr int Height = 31;
constexpr int UsualWidth = 300;
constexpr int LeastWidth = 60; // leaves a scale of 40 pixels

} // namespace

FrameSlider::FrameSlider(bool showGlobalKeys, QWidget* parent)
    : QWidget(parent)
    , m_showGlobalKeys(showGlobalKeys)
{
    setMinimumHeight(Height);
    setMaximumHeight(Height);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(true);
    setToolTip(tr("Drag: move the play head\n"
                  "Ctrl+drag: move the in or the out point\n"
                  "Alt+drag: pan\n"
                  "Right drag: zoom into a range; right click: reset the view\n"
                  "Alt+right drag, wheel: zoom"));
    setContextMenuPolicy(Qt::PreventContextMenu);
    initAccessibility();
}

FrameSlider::~FrameSlider()
{
    if (s_dragged == this)
        giveMouse();
}

bool FrameSlider::setValue(FrameNumber v)
{
    if (v == m_value)
        return false;
    if (v < m_viewStart)
        m_viewStart = v;
    if (v > m_viewEnd)
        m_viewEnd = v;
    m_value = v;
    announceValue();
    update();
    return true;
}

bool FrameSlider::range(FrameNumber start, FrameNumber end)
{
    if (start == m_viewStart && end == m_viewEnd)
        return false;
    m_viewStart = start;
    m_viewEnd = end;
    update();
    if (!m_keepInOut)
        store_to_knobs();
    return true;
}

bool FrameSlider::setinout(int in, int out)
{
    if (in == m_inPoint && out == m_outPoint)
        return false;
    m_inPoint = in;
    m_outPoint = out;
    update();
    store_to_knobs();
    return true;
}

bool FrameSlider::set_frame_range(int a, int b)
{
    const int first = std::min(a, b);
    const int last = std::max(a, b);
    if (first == m_frameFirst && last == m_frameLast)
        return false;
    m_frameFirst = first;
    m_frameLast = last;
    if (!m_keepInOut)
        setinout(first, last);
    if (!m_keepInOut || m_zoomOnFirstRange)
        zoomToPlayRange();
    m_zoomOnFirstRange = false;
    update();
    return true;
}

int FrameSlider::first_frame() const
{
    const bool inside = m_viewStart < m_inPoint && m_inPoint < m_viewEnd;
    return m_keepInOut || inside ? m_inPoint : m_viewStart;
}

int FrameSlider::last_frame() const
{
    const bool inside = m_viewStart < m_outPoint && m_outPoint < m_viewEnd;
    return m_keepInOut || inside ? m_outPoint : m_viewEnd;
}

void FrameSlider::setScrubbing(bool scrubbing)
{
    if (scrubbing == m_scrubbing)
        return;
    m_scrubbing = scrubbing;
    emit scrubbingChanged(scrubbing);
}

void FrameSlider::setHideInOut(bool hide)
{
    m_hideInOut = hide;
    update();
}

void FrameSlider::setKeepInOut(bool keep)
{
    m_keepInOut = keep;
    update();
}

void FrameSlider::setMargin(int pixels)
{
    m_margin = std::clamp(pixels, 0, QWIDGETSIZE_MAX);
    update();
}

QSize FrameSlider::sizeHint() const
{
    return {UsualWidth, Height};
}

QSize FrameSlider::minimumSizeHint() const
{
    return {LeastWidth, Height};
}

// In double: the length of a view and its product with the width exceed int, but are exact in double.
int FrameSlider::valueToMouse(double v) const
{
    if (m_viewEnd == m_viewStart)
        return EndMargin;
    const double length = static_cast<double>(m_viewEnd) - m_viewStart;
    return Rounding::pixel((v - m_viewStart) * (width() - 2 * EndMargin) / length + m_margin) + EndMargin;
}

double FrameSlider::mouseToValue(int x) const
{
    const double length = static_cast<double>(m_viewEnd) - m_viewStart;
    const double pixels = static_cast<double>(x) - m_margin - EndMargin;
    const int scale = width() - 2 * EndMargin;
    return scale == 0 ? m_viewStart : pixels * length / scale + m_viewStart;
}

int FrameSlider::valuePlusOneToMouse(double v) const
{
    const double shown = std::max(static_cast<double>(m_viewStart), v);
    return m_viewEnd > shown ? valueToMouse(shown + 1) : width() - EndMargin - m_margin;
}

// Limits both ends to the range of frame numbers.
void FrameSlider::setView(qint64 start, qint64 end)
{
    m_viewStart = Rounding::frame(start);
    m_viewEnd = Rounding::frame(end);
    update();
}
