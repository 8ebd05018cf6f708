#pragma once

#include "base/Export.h"

#include <QSet>

namespace Halvern::UI {

class DisclosureButton;

/// Mix-in for a widget that several disclosure buttons control at once: it is shown only while all of them
/// are checked.
///
/// Derive a widget from QWidget and from this class, in either order, and hand it to
/// DisclosureButton::addWidget(); the buttons enter and leave by themselves, also when either side is
/// destroyed. The buttons are borrowed. GUI thread only.
class HVCOREUI_EXPORT DisclosableWidget
{
public:
    DisclosableWidget() = default;
    // The buttons hear of the end from the QWidget, which may already be gone: they are not followed here.
    virtual ~DisclosableWidget() = default;

    DisclosableWidget(const DisclosableWidget&) = delete;
    DisclosableWidget& operator=(const DisclosableWidget&) = delete;

    /// Whether every controlling button is checked; true with no button. Whether the buttons themselves are
    /// visible does not count.
    virtual bool isDisclosed() const;

private:
    friend class DisclosureButton;

    QSet<DisclosureButton*> m_buttons;
};

} // namespace Halvern::UI
