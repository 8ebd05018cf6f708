#pragma once

#include <QLabel>

namespace Halvern::UI {

/// A label of one line that never widens its window. A text that does not fit is painted with "…" at its end;
/// text() and the tooltip have all of it.
class StatusLine : public QLabel
{
    Q_OBJECT

public:
    explicit StatusLine(QWidget* parent = nullptr);

    /// Sets the text and the tooltip.
    void say(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Halvern::UI
