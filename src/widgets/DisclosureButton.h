#pragma once

#include "base/Export.h"

#include <QCheckBox>
#include <QList>

namespace Halvern::UI {

class VisibilitySetter;

/// A check box drawn as a small triangle that shows (pointing down, checked) or hides (pointing right,
/// unchecked) a group of widgets. The triangle is black, in a dark palette on a light plate.
///
/// Buttons can be nested: a button can be one of the widgets of another. The group of a closed or hidden
/// button stays hidden. A widget that derives from DisclosableWidget can belong to several buttons. Widgets
/// are not owned: a destroyed widget leaves the group, and a destroyed button does not change its widgets.
///
/// The button makes no connections. Its creator connects its signal to its slot:
/// @code
/// auto* button = new DisclosureButton(parent, true);
/// connect(button, SIGNAL(toggled(bool)), button, SLOT(showOrHideWidgets()));
/// button->addWidget(details);
/// @endcode
///
/// "Hidden" means QWidget::isHidden(): a widget counts as visible unless it was hidden itself, also if its
/// window or page is not shown. So a group can be opened before its window is shown. GUI thread only.
class HVCOREUI_EXPORT DisclosureButton : public QCheckBox
{
    Q_OBJECT

public:
    /// Makes an unchecked button with an empty text and a fixed size policy. If @p showWhenChecked is false,
    /// addWidget() hides a new widget even if the button is checked. It has no other effect.
    DisclosureButton(QWidget* parent, bool showWhenChecked);
    ~DisclosureButton() override;

    /// Appends @p w to the group and shows or hides it at once. It is shown if the button is checked and made
    /// with showWhenChecked and, for a DisclosableWidget, its other buttons are checked too. A widget may be
    /// added several times. A null @p w is ignored, and so are the button itself and a button that contains
    /// this one, directly or nested.
    void addWidget(QWidget* w);

    /// Removes every occurrence of @p w from the group and keeps its visibility. A widget that is
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
    /// Shows or hides the group and all nested groups as the buttons' states require. Widgets that are in the
    /// required state are not touched.
    void showOrHideWidgets();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool opensGroup() const { return isChecked() && !isHidden(); }
    void record(VisibilitySetter& setter, bool visible);
    bool contains(const DisclosureButton* button) const;
    void forgetWidget(QObject* widget);

    QList<QWidget*> m_widgets;
    bool m_showWhenChecked;
};

} // namespace Halvern::UI
