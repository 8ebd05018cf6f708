#include "widgets/DisclosableWidget.h"

#include "widgets/DisclosureButton.h"

#include <algorithm>

namespace Halvern::UI {

bool DisclosableWidget::isDisclosed() const
{
    return std::all_of(m_buttons.cbegin(), m_buttons.cend(),
                       [](const DisclosureButton* button) { return button->isChecked(); });
}

} // namespace Halvern::UI
