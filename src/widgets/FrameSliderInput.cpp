// The mouse and the wheel over a frame slider.

#include "base/QtVersion.h"
#include "widgets/FrameSlider.h"
#include "widgets/Rounding.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double PixelsPerDoubling = 96;
constexpr double WheelStep = 0.25; // of a doubling

QPoint wholePixels(const QPointF& position)
{
    return {Rounding::frame(Rounding::halfUp(position.x())), Rounding::frame(Rounding::halfUp(position.y()))};
}

// Limited to finite numbers: a drag across several screens would give infinity, and infinity times 0 is NaN.
double powerOfTwo(double exponent)
{
    const float power = std::exp2(static_cast<float>(exponent));
    return static_cast<double>(std::min(power, std::numeric_limits<float>::max()));
}

} // namespace

int FrameSlider::frameUnderMouse(int x) const
{
    return Rounding::frame(Rounding::floor(mouseToValue(x)));
}

int FrameSlider::nearestFrame(int x) const
{
    return Rounding::frame(Rounding::halfUp(mouseToValue(x)));
}

void FrameSlider::mousePressEvent(QMouseEvent* event)
{
    const DragMode mode = modeOfPress(*event);
    if (mode == DragMode::Idle) {
        event->ignore();
        return;
    }
    if (s_dragged && (s_dragged != this || s_dragMode == DragMode::Hovering))
        s_dragged->loseMouse();
    s_pressed = wholePixels(Halvern::Base::positionOf(*event));
    s_pressedValue = mouseToValue(s_pressed.x());
    s_pressedFrame = s_selectEnd = frameUnderMouse(s_pressed.x());
    s_pressedStart = m_viewStart;
    s_pressedEnd = m_viewEnd;
    takeMouse(mode);
    if (mode == DragMode::Scrubbing)
        setScrubbing(true);
    const bool movesAtOnce = mode == DragMode::Scrubbing || mode >= DragMode::MovingIn;
    // A slot may have ended the drag or deleted the slider.
    if (movesAtOnce && s_dragged == this)
        drag(s_pressed);
}

FrameSlider::DragMode FrameSlider::modeOfPress(const QMouseEvent& event) const
{
    const bool left = event.button() == Qt::LeftButton;
    if (!left && event.button() != Qt::RightButton && event.button() != Qt::MiddleButton)
        return DragMode::Idle;
    if (event.modifiers() & Qt::AltModifier)
        return left ? DragMode::Panning : DragMode::Zooming;
    if (!left)
        return DragMode::Selecting;
    if (event.modifiers() & Qt::ControlModifier)
        return pointAt(wholePixels(Halvern::Base::positionOf(event)).x());
    return DragMode::Scrubbing;
}

// Whether a press at a pixel moves the in or the out point.
FrameSlider::DragMode FrameSlider::pointAt(int x) const
{
    const int first = first_frame();
    const int last = last_frame();
    bool out = valueToMouse(m_value) <= x;
    if (m_value < first || m_value > last) {
        const qint64 in = std::max(valueToMouse(first) - 1, 0);
        const qint64 end = valuePlusOneToMouse(last);
        out = std::abs(x - end) <= std::abs(x - in);
    }
    return out ? DragMode::MovingOut : DragMode::MovingIn;
}

void FrameSlider::mouseMoveEvent(QMouseEvent* event)
{
    const bool dragging = s_dragMode > DragMode::Hovering;
    if (s_dragged && (s_dragged != this || (dragging && event->buttons() == Qt::NoButton)))
        s_dragged->loseMouse();
    drag(wholePixels(Halvern::Base::positionOf(*event)));
}

void FrameSlider::drag(QPoint mouse)
{
    const int frame = frameUnderMouse(mouse.x());
    switch (s_dragMode) {
    case DragMode::Idle:
    case DragMode::Hovering:
        hover(mouse.x());
        break;
    case DragMode::Scrubbing: {
        const auto exact = static_cast<float>(mouseToValue(mouse.x()));
        setValue(Rounding::frame(Rounding::halfUp(static_cast<double>(exact))));
        emit sliderMoved(m_value);
        break;
    }
    case DragMode::Selecting:
        s_selectEnd = frame;
        update();
        emit sliderRangeChanged();
        break;
    case DragMode::Zooming:
        zoom(mouse);
        break;
    case DragMode::Panning:
        pan(qint64(frame) - s_pressedFrame);
        break;
    case DragMode::MovingIn:
    case DragMode::MovingOut:
        movePoint(frame);
        break;
    }
}

void FrameSlider::zoom(QPoint mouse)
{
    const double pixels = static_cast<double>(s_pressed.x()) - mouse.x() + mouse.y() - s_pressed.y();
    const double factor = powerOfTwo(pixels / PixelsPerDoubling);
    const qint64 start = Rounding::floor(s_pressedValue - (s_pressedValue - s_pressedStart) * factor);
    const qint64 end = Rounding::halfUp((s_pressedEnd - s_pressedValue) * factor + s_pressedValue);
    setView(start, start >= end ? start + 1 : end);
    emit sliderRangeChanged();
}

void FrameSlider::pan(qint64 frames)
{
    constexpr qint64 least = std::numeric_limits<FrameNumber>::min();
    constexpr qint64 most = std::numeric_limits<FrameNumber>::max();
    // At the first and the last frame number the view stops and keeps its length.
    const qint64 distance =
        std::clamp(frames, std::max(m_viewStart, m_viewEnd) - most, std::min(m_viewStart, m_viewEnd) - least);
    if (distance != 0)
        range(static_cast<int>(m_viewStart - distance), static_cast<int>(m_viewEnd - distance));
    emit sliderRangeChanged();
}

// The in point stops at the out point and at a head that is not before the play range. The out point stops at
// the in point and at a head that is not after it.
void FrameSlider::movePoint(int frame)
{
    const int first = first_frame();
    const int last = last_frame();
    if (s_dragMode == DragMode::MovingIn)
        setinout(std::min({frame, last, m_value < first ? last : m_value}), m_outPoint);
    else
        setinout(m_inPoint, std::max({frame, first, m_value > last ? first : m_value}));
    emit sliderInOutChanged();
}

void FrameSlider::hover(int x)
{
    const int hovered = valueToMouse(nearestFrame(x));
    if (s_dragMode == DragMode::Hovering) {
        if (hovered == s_hoverX)
            return;
        update(hoverBand());
    }
    takeMouse(DragMode::Hovering);
    s_hoverX = hovered;
    update(hoverBand());
}

// Watches the application: a slider below a popup, hidden, disabled or blocked gets no release.
void FrameSlider::takeMouse(DragMode mode)
{
    s_dragMode = mode;
    s_dragged = this;
    QCoreApplication::instance()->installEventFilter(this);
}

// Ends the present drag or hover and returns its mode.
FrameSlider::DragMode FrameSlider::giveMouse()
{
    if (s_dragged && QCoreApplication::instance())
        QCoreApplication::instance()->removeEventFilter(s_dragged);
    s_dragged = nullptr;
    return std::exchange(s_dragMode, DragMode::Idle);
}

bool FrameSlider::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool lost = watched == this ? type == QEvent::Hide || type == QEvent::WindowBlocked ||
                                            (type == QEvent::EnabledChange && !isEnabled())
                                      : type == QEvent::Show && watched->isWidgetType() &&
                                            static_cast<QWidget*>(watched)->windowType() == Qt::Popup;
    if (lost && s_dragged == this)
        loseMouse();
    return QWidget::eventFilter(watched, event);
}

// Ends a hover, or a drag that gets no release. The signal is queued: its slots may delete the slider, and Qt
// may still be hiding or disabling it.
void FrameSlider::loseMouse()
{
    if (s_dragMode == DragMode::Hovering) {
        update(hoverBand());
        giveMouse();
        return;
    }
    giveMouse();
    update();
    const auto endScrub = [this] {
        if (s_dragged != this || s_dragMode != DragMode::Scrubbing)
            setScrubbing(false);
    };
    QMetaObject::invokeMethod(this, endScrub, Qt::QueuedConnection);
}

void FrameSlider::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint mouse = wholePixels(Halvern::Base::positionOf(*event));
    const DragMode mode = giveMouse();
    const QPointer<FrameSlider> existing(this);
    // Another button may have started a drag during the scrub.
    if (mode == DragMode::Scrubbing || event->button() == Qt::LeftButton)
        setScrubbing(false);
    if (!existing)
        return;
    if (mode == DragMode::Selecting)
        endSelection(mouse);
    else if (mode == DragMode::Scrubbing)
        emit sliderMoved(m_value);
}

void FrameSlider::endSelection(QPoint mouse)
{
    update();
    const qint64 distance =
        std::abs(qint64(mouse.x()) - s_pressed.x()) + std::abs(qint64(mouse.y()) - s_pressed.y());
    if (distance < QApplication::startDragDistance())
        emit sliderRangeReset();
    else if (s_selectEnd != s_pressedFrame)
        setView(std::min(s_pressedFrame, s_selectEnd), std::max(s_pressedFrame, s_selectEnd));
}

void FrameSlider::leaveEvent(QEvent* /*event*/)
{
    if (s_dragged == this && s_dragMode == DragMode::Hovering)
        loseMouse();
}

void FrameSlider::wheelEvent(QWheelEvent* event)
{
    const QPoint mouse = wholePixels(Halvern::Base::positionOf(*event));
    if (!rect().contains(mouse)) {
        event->ignore();
        return;
    }
    const int delta = event->angleDelta().y();
    zoomAbout(mouseToValue(mouse.x()), delta == 0 ? 0 : (delta > 0 ? -1 : 1));
}

void FrameSlider::zoomAbout(double frame, int steps)
{
    const double anchor = std::clamp(frame, static_cast<double>(std::min(m_viewStart, m_viewEnd)),
                                     static_cast<double>(std::max(m_viewStart, m_viewEnd)));
    const double factor = powerOfTwo(steps * WheelStep);
    const double frames = static_cast<double>(m_viewEnd) + 1 - m_viewStart;
    const qint64 start = Rounding::halfUp((m_viewStart - anchor) * factor + anchor);
    const auto length = static_cast<qint64>(std::ceil(frames * factor));
    setView(start, std::max(start, start + length - 1));
    emit sliderRangeChanged();
}
