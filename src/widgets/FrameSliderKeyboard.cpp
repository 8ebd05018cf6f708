// The keys of a frame slider, and its interface for screen readers.

#include "widgets/FrameSlider.h"
#include "widgets/Rounding.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <algorithm>

/// The slider for screen readers: the value is the head, its range the view.
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
    // A click does not take the focus from a field in which the user types.
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
    constexpr int Alt = Qt::AltModifier;
    constexpr int PageOfFrames = 10;
    constexpr int StepsAcrossTheView = 10;
    const auto modifiers = static_cast<int>(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    const qint64 tenth = std::max<qint64>((qint64(m_viewEnd) - m_viewStart) / StepsAcrossTheView, 1);
    switch (event->key() | modifiers) {
    case Qt::Key_Left:
        return moveHead(qint64(m_value) - 1);
    case Qt::Key_Right:
        return moveHead(qint64(m_value) + 1);
    case Qt::Key_PageDown:
        return moveHead(qint64(m_value) - PageOfFrames);
    case Qt::Key_PageUp:
        return moveHead(qint64(m_value) + PageOfFrames);
    case Qt::Key_Home:
        return moveHead(m_hideInOut ? m_viewStart : first_frame());
    case Qt::Key_End:
        return moveHead(m_hideInOut ? m_viewEnd : last_frame());
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomAbout(m_value, -1);
    case Qt::Key_Minus:
        return zoomAbout(m_value, 1);
    case Alt | Qt::Key_Left:
        return pan(tenth);
    case Alt | Qt::Key_Right:
        return pan(-tenth);
    case Qt::Key_F:
        emit sliderRangeReset();
        return;
    case Qt::Key_I:
    case Qt::Key_O: {
        if (m_hideInOut)
            break;
        const int in = event->key() == Qt::Key_I ? m_value : m_inPoint;
        const int out = event->key() == Qt::Key_O ? m_value : m_outPoint;
        if (in <= out && setinout(in, out))
            emit sliderInOutChanged();
        return;
    }
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}
