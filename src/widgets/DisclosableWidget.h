#pragma once

#include "base/Export.h"

#include <QSet>

namespace Halvern::UI {

class DisclosureButton;

/// Mix-in for a widget that several disclosure buttons control: it is shown only while all are checked.
///
/// Derive a widget from QWidget and from this class, in either order, and pass it to
/// DisclosureButton::addWidget(). A button that is destroyed no longer counts. Buttons are not owned. GUI
/// thread only.
class HVCOREUI_EXPORT DisclosableWidget
{
public:
    DisclosableWidget() = default;
    virtual ~DisclosableWidget() = default;

    DisclosableWidget(const DisclosableWidget&) = delete;
    DisclosableWidget& operator=(const DisclosableWidget&) = delete;

    /// Whether every controlling button is checked, visible or not; true without buttons.
    virtual bool isDisclosed() const;

private:
    friend class DisclosureButton; // puts itself into the set

    QSet<DisclosureButton*> m_buttons;
};

} // namespace Halvern::UI
