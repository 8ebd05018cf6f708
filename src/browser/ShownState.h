#pragma once

#include <QPointer>
#include <QWidget>

namespace Halvern::UI {

/// Tells whether a widget can be seen: it is shown, and its window is not minimised. A window that others
/// cover can be seen. Not owned by the widget; GUI thread only.
class ShownState : public QObject
{
    Q_OBJECT

public:
    explicit ShownState(QWidget* widget);

    bool isShown() const { return m_shown; }

signals:
    void changed(bool shown);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* const m_widget;
    QPointer<QWidget> m_window; // of the widget, when that was shown last
    bool m_shown = false;
};

} // namespace Halvern::UI
