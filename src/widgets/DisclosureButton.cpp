#include "widgets/DisclosureButton.h"

#include "widgets/DisclosableWidget.h"
#include "widgets/VisibilitySetter.h"

#include <QPainterPath>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

namespace Halvern::UI {

namespace {

// A widget whose own classes are already destroyed is a plain QWidget here, so that its mix-in is not
// touched.
DisclosableWidget* disclosable(QWidget* widget)
{
    return dynamic_cast<DisclosableWidget*>(widget);
}

QPainterPath triangle(bool open)
{
    QPainterPath path(QPointF(4, 3));
    if (open) {
        path.lineTo(13, 3);
        path.lineTo(8, 11);
    } else {
        path.lineTo(12, 7);
        path.lineTo(4, 12);
    }
    path.closeSubpath();
    return path;
}

constexpr int DarkestLight = 128; // a grey level

// The triangle is black; on a dark window it needs something to stand on.
void drawPlate(QPainter& painter, const QRect& widget, const QPalette& palette)
{
    if (qGray(palette.color(QPalette::Window).rgb()) >= DarkestLight)
        return;
    QPainterPath plate;
    plate.addRoundedRect(widget & QRect(0, 0, 17, 15), 2, 2);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.fillPath(plate, palette.color(QPalette::WindowText));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

} // namespace

DisclosureButton::DisclosureButton(QWidget* parent, bool showWidgetsWhenChecked)
    : QCheckBox(parent)
    , showWhenChecked(showWidgetsWhenChecked)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

DisclosureButton::~DisclosureButton()
{
    // The connections must end before the base classes do: a widget may be a child of this button.
    while (!widgets.isEmpty())
        removeWidget(widgets.constLast());
}

void DisclosureButton::addWidget(QWidget* w)
{
    if (!w)
        return;
    // Buttons that contain each other would show and hide one another for ever.
    const auto* nested = qobject_cast<DisclosureButton*>(w);
    if (nested && nested->contains(this))
        return;
    widgets.append(w);
    connect(w, &QObject::destroyed, this, &DisclosureButton::forgetWidget, Qt::UniqueConnection);
    bool visible = isChecked() && showWhenChecked;
    if (DisclosableWidget* shared = disclosable(w)) {
        visible = visible && shared->isDisclosed();
        shared->m_buttons.insert(this);
    }
    w->setVisible(visible);
}

void DisclosureButton::removeWidget(QWidget* w)
{
    if (widgets.removeAll(w) == 0)
        return;
    disconnect(w, &QObject::destroyed, this, &DisclosureButton::forgetWidget);
    if (DisclosableWidget* shared = disclosable(w))
        shared->m_buttons.remove(this);
}

bool DisclosureButton::contains(const DisclosureButton* button) const
{
    return button == this || std::any_of(widgets.cbegin(), widgets.cend(), [button](QWidget* widget) {
               const auto* nested = qobject_cast<DisclosureButton*>(widget);
               return nested && nested->contains(button);
           });
}

void DisclosureButton::forgetWidget(QObject* widget)
{
    widgets.removeAll(static_cast<QWidget*>(widget));
}

void DisclosureButton::showWidgets(VisibilitySetter& setter)
{
    for (QWidget* widget : qAsConst(widgets)) {
        const DisclosableWidget* shared = disclosable(widget);
        setter.record(widget, !shared || shared->isDisclosed());
    }
    for (QWidget* widget : qAsConst(widgets)) {
        if (auto* nested = qobject_cast<DisclosureButton*>(widget))
            nested->showOrHideWidgets(setter);
    }
}

void DisclosureButton::hideWidgets(VisibilitySetter& setter)
{
    for (QWidget* widget : qAsConst(widgets))
        setter.record(widget, false);
    for (QWidget* widget : qAsConst(widgets)) {
        if (auto* nested = qobject_cast<DisclosureButton*>(widget))
            nested->hideWidgets(setter);
    }
}

void DisclosureButton::showOrHideWidgets(VisibilitySetter& setter)
{
    if (isChecked() && !isHidden())
        showWidgets(setter);
    else
        hideWidgets(setter);
}

void DisclosureButton::showOrHideWidgets()
{
    VisibilitySetter setter;
    showOrHideWidgets(setter);
    setter.apply();
}

void DisclosureButton::setVisible(bool visible)
{
    QCheckBox::setVisible(visible);
    showOrHideWidgets();
}

void DisclosureButton::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);

    if (isEnabled())
        drawPlate(painter, rect(), palette());
    painter.fillPath(triangle(isChecked()),
                     isEnabled() ? QColor(Qt::black) : palette().color(QPalette::Disabled, QPalette::Light));

    QStyleOptionButton label = option;
    label.rect = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this);
    painter.drawControl(QStyle::CE_CheckBoxLabel, label);

    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = style()->subElementRect(QStyle::SE_CheckBoxFocusRect, &option, this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}

} // namespace Halvern::UI
