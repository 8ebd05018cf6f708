#pragma once

#include <QLabel>

namespace Halvern::UI {

/// The line below the list that tells how many paths the pick list has. Its tooltip lists them. It hides
/// itself while there are none.
class PickListLine : public QLabel
{
    Q_OBJECT

public:
    explicit PickListLine(QWidget* parent);

    void showPaths(const QStringList& paths);

signals:
    /// A mouse button was pressed on the line.
    void menuRequested(const QPoint& globalPosition);

protected:
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace Halvern::UI
