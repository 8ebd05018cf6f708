// The keyboard on a frame slider, and what it tells assistive technology.

#include "widgets/FrameSlider.h"
#include "widgets/Rounding.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <algorithm>

namespace {

constexpr int PageOfFrames = 10;
constexpr int StepsAcrossTheView = 10;

} // namespace

/// A slider as a screen reader sees it: the head within the view.
class FrameSlider::Accessible : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit Accessible(FrameSlider* owner)
        : QAccessibleWidget(owner, QAccessible::Slider)
        , m_slider(*owner)
    {
    }

    static QAccessibleInterface* make(const QString& /*className*/, QObject* object)
    {
        auto* slider = qobject_cast<FrameSlider*>(object);
        return slider ? new Accessible(slider) : nullptr;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? QString::number(m_slider.m_value) : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return m_slider.m_value; }
    QVariant minimumValue() const override { return m_slider.m_viewStart; }
    QVariant maximumValue() const override { return m_slider.m_viewEnd; }
    QVariant minimumStepSize() const override { return 1; }
    void setCurrentValue(const QVariant& value) override { m_slider.moveHead(value.toLongLong()); }

private:
    FrameSlider& m_slider;
};

void FrameSlider::initAccessibility()
{
    // A click shall not take the focus from where the user types.
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Frame"));
    static const bool installed = (QAccessible::installFactory(&Accessible::make), true);
    Q_UNUSED(installed)
}

void FrameSlider::announceValue()
{
    if (!QAccessible::isActive())
        return;
    QAccessibleValueChangeEvent event(this, m_value);
    QAccessible::updateAccessibility(&event);
}

void FrameSlider::moveHead(qint64 frame)
{
    if (setValue(Rounding::frame(frame)))
        emit sliderMoved(m_value);
}

void FrameSlider::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier);
    const bool handled = modifiers == Qt::NoModifier ? editByKey(event->key())
                                                     : modifiers == Qt::AltModifier && panByKey(event->key());
    if (!handled)
        QWidget::keyPressEvent(event);
}

bool FrameSlider::editByKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
        moveHead(qint64(m_value) - 1);
        return true;
    case Qt::Key_Right:
        moveHead(qint64(m_value) + 1);
        return true;
    case Qt::Key_PageDown:
        moveHead(qint64(m_value) - PageOfFrames);
        return true;
    case Qt::Key_PageUp:
        moveHead(qint64(m_value) + PageOfFrames);
        return true;
    case Qt::Key_Home:
        moveHead(m_hideInOut ? m_viewStart : first_frame());
        return true;
    case Qt::Key_End:
        moveHead(m_hideInOut ? m_viewEnd : last_frame());
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoomAbout(m_value, -1);
        return true;
    case Qt::Key_Minus:
        zoomAbout(m_value, 1);
        return true;
    case Qt::Key_F:
        emit sliderRangeReset();
        return true;
    case Qt::Key_I:
        return setPointByKey(m_value, m_outPoint);
    case Qt::Key_O:
        return setPointByKey(m_inPoint, m_value);
    default:
        return false;
    }
}

bool FrameSlider::setPointByKey(int in, int out)
{
    if (m_hideInOut)
        return false;
    if (in <= out && setinout(in, out))
        emit sliderInOutChanged();
    return true;
}

bool FrameSlider::panByKey(int key)
{
    if (key != Qt::Key_Left && key != Qt::Key_Right)
        return false;
    const qint64 step = std::max<qint64>((qint64(m_viewEnd) - m_viewStart) / StepsAcrossTheView, 1);
    moveView(key == Qt::Key_Right ? -step : step);
    return true;
}
