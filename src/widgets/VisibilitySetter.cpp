#include "widgets/VisibilitySetter.h"

#include <algorithm>

namespace Halvern::UI {

void VisibilitySetter::record(QWidget* widget, bool visible)
{
    const auto isKnown = [widget](const Wanted& wanted) { return wanted.widget == widget; };
    m_wanted.erase(std::remove_if(m_wanted.begin(), m_wanted.end(), isKnown), m_wanted.end());
    m_wanted.push_back({widget, visible});
}

void VisibilitySetter::apply() const
{
    // Hide first: a nested button that is shown shows its own widgets, which were recorded as hidden before.
    for (const bool isShown : {false, true}) {
        for (const auto& [widget, visible] : m_wanted) {
            if (widget && visible == isShown && widget->isHidden() == isShown)
                widget->setVisible(isShown);
        }
    }
}

} // namespace Halvern::UI
