#include "widgets/VisibilitySetter.h"

#include <algorithm>

namespace Halvern::UI {

void VisibilitySetter::record(QWidget* widget, bool visible)
{
    const auto known = std::find_if(m_wanted.begin(), m_wanted.end(),
                                    [widget](const Wanted& wanted) { return wanted.widget == widget; });
    if (known != m_wanted.end())
        m_wanted.erase(known);
    m_wanted.push_back({widget, visible});
}

void VisibilitySetter::apply() const
{
    // Hide first: a nested button that is shown shows its own widgets, which were recorded as hidden because
    // the button was not visible yet.
    for (const auto& [widget, visible] : m_wanted) {
        if (widget && !visible && !widget->isHidden())
            widget->hide();
    }
    for (const auto& [widget, visible] : m_wanted) {
        if (widget && visible && widget->isHidden())
            widget->show();
    }
}

} // namespace Halvern::UI
