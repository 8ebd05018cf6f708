#include "widgets/DisclosureButton.h"

#include "widgets/DisclosableWidget.h"
#include "widgets/VisibilitySetter.h"

#include <QPolygonF>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>

namespace Halvern::UI {

namespace {

constexpr int DarkestLight = 128; // a grey level

// Null also for a widget in its destructor, which is a plain QWidget by then: its mix-in is gone.
DisclosableWidget* disclosable(QWidget* widget)
{
    return dynamic_cast<DisclosableWidget*>(widget);
}

QPolygonF triangle(bool open)
{
    return open ? QPolygonF({{4, 3}, {13, 3}, {8, 11}}) : QPolygonF({{4, 3}, {12, 7}, {4, 12}});
}

} // namespace

DisclosureButton::DisclosureButton(QWidget* parent, bool showWhenChecked)
    : QCheckBox(parent)
    , m_showWhenChecked(showWhenChecked)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

DisclosureButton::~DisclosureButton()
{
    // A widget may be a child of this button. Disconnect it before the base class destroys it.
    while (!m_widgets.isEmpty())
        removeWidget(m_widgets.constLast());
}

void DisclosureButton::addWidget(QWidget* w)
{
    if (!w)
        return;
    // Buttons that contain each other would show and hide one another for ever.
    const auto* nested = qobject_cast<DisclosureButton*>(w);
    if (nested && nested->contains(this))
        return;
    m_widgets.append(w);
    connect(w, &QObject::destroyed, this, &DisclosureButton::forgetWidget, Qt::UniqueConnection);
    bool visible = isChecked() && m_showWhenChecked;
    if (DisclosableWidget* shared = disclosable(w)) {
        visible = visible && shared->isDisclosed();
        shared->m_buttons.insert(this);
    }
    w->setVisible(visible);
}

void DisclosureButton::removeWidget(QWidget* w)
{
    if (m_widgets.removeAll(w) == 0)
        return;
    disconnect(w, &QObject::destroyed, this, &DisclosureButton::forgetWidget);
    if (DisclosableWidget* shared = disclosable(w))
        shared->m_buttons.remove(this);
}

bool DisclosureButton::contains(const DisclosureButton* button) const
{
    return button == this || std::any_of(m_widgets.cbegin(), m_widgets.cend(), [button](QWidget* widget) {
               const auto* nested = qobject_cast<DisclosureButton*>(widget);
               return nested && nested->contains(button);
           });
}

void DisclosureButton::forgetWidget(QObject* widget)
{
    m_widgets.removeAll(static_cast<QWidget*>(widget));
}

void DisclosureButton::record(VisibilitySetter& setter, bool visible)
{
    for (QWidget* widget : qAsConst(m_widgets)) {
        const DisclosableWidget* shared = disclosable(widget);
        setter.record(widget, visible && (!shared || shared->isDisclosed()));
    }
    for (QWidget* widget : qAsConst(m_widgets)) {
        if (auto* nested = qobject_cast<DisclosureButton*>(widget))
            nested->record(setter, visible && nested->opensGroup());
    }
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

    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Disabled, QPalette::Light));
    if (isEnabled()) {
        // The triangle is black. On a dark window it is drawn on a light plate.
        if (qGray(palette().color(QPalette::Window).rgb()) < DarkestLight) {
            painter.setRenderHint(QPainter::Antialiasing, true);
            painter.setBrush(palette().color(QPalette::WindowText));
            painter.drawRoundedRect(rect() & QRect(0, 0, 17, 15), 2, 2);
            painter.setRenderHint(QPainter::Antialiasing, false);
        }
        painter.setBrush(Qt::black);
    }
    painter.drawConvexPolygon(triangle(isChecked()));

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
