#include "browser/ShownState.h"

#include <QEvent>

namespace Halvern::UI {

ShownState::ShownState(QWidget* widget)
    : m_widget(widget)
{
    widget->installEventFilter(this);
}

bool ShownState::eventFilter(QObject* watched, QEvent* event)
{
    const auto type = event->type();
    if (type != QEvent::Show && type != QEvent::Hide && type != QEvent::WindowStateChange)
        return false;
    QWidget* const window = m_widget->window();
    if (window != m_window) {
        if (m_window && m_window != m_widget)
            m_window->removeEventFilter(this);
        m_window = window;
        window->installEventFilter(this);
    }
    // A widget is told that it is hidden before or after it is, depending on who hides it.
    const bool hidden = watched == m_widget && type == QEvent::Hide;
    const bool shown = !hidden && m_widget->isVisible() && !window->isMinimized();
    if (shown != m_shown) {
        m_shown = shown;
        emit changed(shown);
    }
    return false;
}

} // namespace Halvern::UI
