#pragma once

#include "base/Export.h"

#include <QCheckBox>
#include <QList>

namespace Halvern::UI {

class VisibilitySetter;

/// A check box drawn as a small triangle that shows (pointing down, checked) or hides (pointing right,
/// unchecked) a group of widgets. The triangle is black, in a dark palette on a light plate.
///
/// Buttons can be nested: one button may be among the widgets of another, and what is in a closed or hidden
/// button's group stays hidden. A widget that derives from DisclosableWidget can belong to several buttons.
/// Widgets are borrowed: one that is destroyed leaves the group, and a button that is destroyed leaves its
/// widgets as they are.
///
/// The button makes no connection of its own; whoever creates it connects its signal to its slot:
/// @code
/// auto* button = new DisclosureButton(parent, true);
/// connect(button, SIGNAL(toggled(bool)), button, SLOT(showOrHideWidgets()));
/// button->addWidget(details);
/// @endcode
///
/// "Hidden" and "visible" are those of QWidget::isHidden(): a button or widget in a window that is not shown
/// yet, or on a page that is not the current one, counts as visible unless it was hidden itself. So a group
/// can be opened before its window is shown. GUI thread only.
class HVCOREUI_EXPORT DisclosureButton : public QCheckBox
{
    Q_OBJECT

public:
    /// Makes an unchecked button with an empty text and a fixed size policy. With @p showWhenChecked false,
    /// addWidget() hides a new widget even while the button is checked; nothing else depends on it.
    DisclosureButton(QWidget* parent, bool showWhenChecked);
    ~DisclosureButton() override;

    /// Appends @p w to the group and shows or hides it at once: it is shown if the button is checked and made
    /// with showWhenChecked and, for a DisclosableWidget, its other buttons are checked too. A widget may be
    /// added several times. Ignored are a null @p w, the button itself, and a button that has this one in its
    /// group or in a group nested in it.
    void addWidget(QWidget* w);

    /// Takes every occurrence of @p w out of the group and leaves its visibility as it is. A widget that is
    /// not in the group, null included, is ignored and not followed.
    void removeWidget(QWidget* w);

    /// Records the group in @p setter as visible, a DisclosableWidget only if it is disclosed, and then lets
    /// each nested button record its own group by showOrHideWidgets(VisibilitySetter&).
    void showWidgets(VisibilitySetter& setter) { record(setter, true); }

    /// Records the group and the groups of all nested buttons in @p setter as hidden.
    void hideWidgets(VisibilitySetter& setter) { record(setter, false); }

    /// showWidgets() if the button is checked and not hidden, else hideWidgets().
    void showOrHideWidgets(VisibilitySetter& setter) { record(setter, opensGroup()); }

    /// Shows or hides the button and its group with it.
    void setVisible(bool visible) override;

public slots:
    /// Brings the group and all nested groups into the state that the buttons ask for. Widgets that are in it
    /// already are not touched.
    void showOrHideWidgets();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool opensGroup() const { return isChecked() && !isHidden(); }
    void record(VisibilitySetter& setter, bool visible);
    bool contains(const DisclosureButton* button) const;
    void forgetWidget(QObject* widget);

    QList<QWidget*> m_widgets;
    bool showWhenChecked;
};

} // namespace Halvern::UI
