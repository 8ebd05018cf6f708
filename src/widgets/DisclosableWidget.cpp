#include "widgets/DisclosableWidget.h"

#include "widgets/DisclosureButton.h"

#include <algorithm>

namespace Halvern::UI {

DisclosableWidget::DisclosableWidget() = default;

// The buttons hear of the end from the QWidget, which may already be gone: they must not be followed here.
DisclosableWidget::~DisclosableWidget() = default;

bool DisclosableWidget::isDisclosed() const
{
    return std::all_of(m_buttons.cbegin(), m_buttons.cend(),
                       [](const DisclosureButton* button) { return button->isChecked(); });
}

} // namespace Halvern::UI
