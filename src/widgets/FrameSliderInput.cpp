// The mouse and the wheel over a frame slider.

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

QPointF wheelPosition(const QWheelEvent& event)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    return event.position();
#else
    return event.posF();
#endif
}

// A drag across several screens would leave the range of float, and infinity times nothing is no number.
float powerOfTwo(double exponent)
{
    return std::min(std::exp2(static_cast<float>(exponent)), std::numeric_limits<float>::max());
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
    if (dragged && (dragged != this || dragMode == DragMode::Hovering))
        dragged->loseMouse();
    const QPoint position = wholePixels(event->localPos());
    pressX = position.x();
    pressY = position.y();
    takeMouse(mode);
    switch (mode) {
    case DragMode::Zooming:
        beginZoom();
        break;
    case DragMode::Panning:
        panFrame = frameUnderMouse(pressX);
        break;
    case DragMode::Selecting:
        selectAnchor = selectEnd = frameUnderMouse(pressX);
        break;
    case DragMode::Scrubbing:
        setScrubbing(true);
        // A listener may have ended the drag or deleted the slider.
        if (dragged == this)
            drag(pressX, pressY);
        break;
    default:
        drag(pressX, pressY);
        break;
    }
}

FrameSlider::DragMode FrameSlider::modeOfPress(const QMouseEvent& event) const
{
    const bool left = event.button() == Qt::LeftButton;
    const bool other = event.button() == Qt::RightButton || event.button() == Qt::MiddleButton;
    if (!left && !other)
        return DragMode::Idle;
    if (event.modifiers() & Qt::AltModifier)
        return left ? DragMode::Panning : DragMode::Zooming;
    if (other)
        return DragMode::Selecting;
    if (event.modifiers() & Qt::ControlModifier)
        return handleAt(wholePixels(event.localPos()).x());
    return DragMode::Scrubbing;
}

FrameSlider::DragMode FrameSlider::handleAt(int x) const
{
    const int first = first_frame();
    const int last = last_frame();
    bool out = false;
    if (first <= m_value && m_value <= last) {
        out = valueToMouse(m_value) <= x;
    } else {
        const qint64 in = std::max(valueToMouse(first) - 1, 0);
        const qint64 end = valuePlusOneToMouse(last);
        out = std::abs(x - end) <= std::abs(x - in);
    }
    return out ? DragMode::MovingOut : DragMode::MovingIn;
}

void FrameSlider::beginZoom()
{
    zoomPressX = pressX;
    zoomPressY = pressY;
    zoomAnchor = mouseToValue(pressX);
    zoomStartView = m_viewStart;
    zoomEndView = m_viewEnd;
}

void FrameSlider::mouseMoveEvent(QMouseEvent* event)
{
    const bool dragging = dragMode > DragMode::Hovering;
    if (dragged && (dragged != this || (dragging && event->buttons() == Qt::NoButton)))
        dragged->loseMouse();
    const QPoint position = wholePixels(event->localPos());
    drag(position.x(), position.y());
}

void FrameSlider::drag(int x, int y)
{
    switch (dragMode) {
    case DragMode::Idle:
    case DragMode::Hovering:
        hover(x);
        break;
    case DragMode::Scrubbing:
        scrub(x);
        break;
    case DragMode::Selecting:
        selectEnd = frameUnderMouse(x);
        update();
        emit sliderRangeChanged();
        break;
    case DragMode::Zooming:
        zoom(x, y);
        break;
    case DragMode::Panning:
        pan(x);
        break;
    case DragMode::MovingIn:
        moveInPoint(x);
        break;
    case DragMode::MovingOut:
        moveOutPoint(x);
        break;
    }
}

void FrameSlider::scrub(int x)
{
    const double exact = static_cast<double>(static_cast<float>(mouseToValue(x)));
    setValue(Rounding::frame(Rounding::halfUp(exact)));
    emit sliderMoved(m_value);
}

void FrameSlider::zoom(int x, int y)
{
    const double pixels = (static_cast<double>(zoomPressX) - x) + (static_cast<double>(y) - zoomPressY);
    const double factor = static_cast<double>(powerOfTwo(pixels / PixelsPerDoubling));
    const qint64 start = Rounding::floor(zoomAnchor - (zoomAnchor - zoomStartView) * factor);
    const qint64 end = Rounding::halfUp((zoomEndView - zoomAnchor) * factor + zoomAnchor);
    setView(start, start >= end ? start + 1 : end);
    emit sliderRangeChanged();
}

void FrameSlider::pan(int x)
{
    moveView(qint64(frameUnderMouse(x)) - panFrame);
}

void FrameSlider::moveView(qint64 moved)
{
    constexpr qint64 least = std::numeric_limits<FrameNumber>::min();
    constexpr qint64 most = std::numeric_limits<FrameNumber>::max();
    // A view at the end of the numbers stops there and keeps its length.
    const qint64 distance =
        std::clamp(moved, std::max(m_viewStart, m_viewEnd) - most, std::min(m_viewStart, m_viewEnd) - least);
    if (distance != 0)
        range(static_cast<int>(m_viewStart - distance), static_cast<int>(m_viewEnd - distance));
    emit sliderRangeChanged();
}

void FrameSlider::moveInPoint(int x)
{
    int frame = frameUnderMouse(x);
    if (frame > m_value && m_value >= first_frame())
        frame = m_value;
    setinout(std::min(frame, last_frame()), m_outPoint);
    emit sliderInOutChanged();
}

void FrameSlider::moveOutPoint(int x)
{
    int frame = frameUnderMouse(x);
    if (frame < m_value && m_value <= last_frame())
        frame = m_value;
    setinout(m_inPoint, std::max(frame, first_frame()));
    emit sliderInOutChanged();
}

// After a zoom under the mouse the mark stands where its frame went.
int FrameSlider::hoverMark() const
{
    return valueToMouse(nearestFrame(hoverX));
}

void FrameSlider::hover(int x)
{
    const bool entered = dragMode == DragMode::Idle;
    const int hovered = valueToMouse(nearestFrame(x));
    const int previous = entered ? hovered : hoverMark();
    takeMouse(DragMode::Hovering);
    hoverHalfWidth = std::max(hoverHalfWidth, hoverReach(nearestFrame(x)));
    if (std::exchange(hoverX, hovered) != hovered || entered)
        updateBand(std::min(previous, hovered), std::max(previous, hovered));
}

void FrameSlider::updateBand(int left, int right)
{
    update(left - hoverHalfWidth, 0, right - left + 2 * hoverHalfWidth, height());
}

// A drag watches the application, since a popup that opens gets the release.
void FrameSlider::takeMouse(DragMode mode)
{
    dragMode = mode;
    dragged = this;
    if (mode != DragMode::Hovering)
        QCoreApplication::instance()->installEventFilter(this);
}

// Ends what the mouse does with a slider, and returns what it did.
FrameSlider::DragMode FrameSlider::giveMouse()
{
    if (dragged && QCoreApplication::instance())
        QCoreApplication::instance()->removeEventFilter(dragged);
    dragged = nullptr;
    return std::exchange(dragMode, DragMode::Idle);
}

// Ends a hover, or a drag that gets no release. Qt is in the middle of hiding or disabling the slider here
// and goes on with it, so listeners, who may delete it, are called later.
void FrameSlider::loseMouse()
{
    if (giveMouse() == DragMode::Hovering) {
        updateBand(hoverMark(), hoverMark());
        return;
    }
    update();
    const auto endScrub = [this] {
        if (dragged != this || dragMode != DragMode::Scrubbing)
            setScrubbing(false);
    };
    QMetaObject::invokeMethod(this, endScrub, Qt::QueuedConnection);
}

void FrameSlider::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint position = wholePixels(event->localPos());
    const DragMode mode = giveMouse();
    const QPointer<FrameSlider> existing(this);
    // Another button may have taken over the drag in the middle of a scrub.
    if (mode == DragMode::Scrubbing || event->button() == Qt::LeftButton)
        setScrubbing(false);
    if (!existing)
        return;
    if (mode == DragMode::Selecting)
        endSelection(position.x(), position.y());
    else if (mode == DragMode::Scrubbing)
        emit sliderMoved(m_value);
}

void FrameSlider::endSelection(int x, int y)
{
    update();
    const qint64 distance = std::abs(qint64(x) - pressX) + std::abs(qint64(y) - pressY);
    if (distance < QApplication::startDragDistance())
        emit sliderRangeReset();
    else if (selectEnd != selectAnchor)
        setView(std::min(selectAnchor, selectEnd), std::max(selectAnchor, selectEnd));
}

void FrameSlider::enterEvent(QEvent* /*event*/) {}

void FrameSlider::leaveEvent(QEvent* /*event*/)
{
    if (dragged == this && dragMode == DragMode::Hovering)
        loseMouse();
}

// A slider that is hidden, disabled or blocked by a modal box in the middle of a drag gets no release.
bool FrameSlider::event(QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool lost = type == QEvent::Hide || type == QEvent::WindowBlocked ||
                      (type == QEvent::EnabledChange && !isEnabled());
    if (lost && dragged == this)
        loseMouse();
    return QWidget::event(event);
}

bool FrameSlider::eventFilter(QObject* watched, QEvent* event)
{
    const bool opens = event->type() == QEvent::Show && watched->isWidgetType();
    if (opens && dragged == this && static_cast<QWidget*>(watched)->windowType() == Qt::Popup)
        loseMouse();
    return QWidget::eventFilter(watched, event);
}

void FrameSlider::wheelEvent(QWheelEvent* event)
{
    const QPoint position = wholePixels(wheelPosition(*event));
    if (!rect().contains(position)) {
        event->ignore();
        return;
    }
    const int delta = event->angleDelta().y();
    const int steps = delta == 0 ? 0 : (delta > 0 ? -1 : 1);
    zoomAbout(mouseToValue(position.x()), steps);
}

void FrameSlider::zoomAbout(double frame, int steps)
{
    const double anchor = std::clamp(frame, static_cast<double>(std::min(m_viewStart, m_viewEnd)),
                                     static_cast<double>(std::max(m_viewStart, m_viewEnd)));
    const double factor = static_cast<double>(powerOfTwo(steps * WheelStep));
    const double frames = static_cast<double>(m_viewEnd) + 1 - m_viewStart;
    const qint64 start = Rounding::halfUp((m_viewStart - anchor) * factor + anchor);
    const auto length = static_cast<qint64>(std::ceil(frames * factor));
    setView(start, std::max(start, start + length - 1));
    emit sliderRangeChanged();
}
