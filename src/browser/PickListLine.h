#pragma once

#include <QLabel>

namespace Halvern::UI {

/// The line below the list with the number of paths in the pick list, hidden if none. Its tooltip lists them.
class PickListLine : public QLabel
{
    Q_OBJECT

public:
    explicit PickListLine(QWidget* parent);

    void showPaths(const QStringList& paths);

signals:
    void menuRequested(const QPoint& globalPosition);

protected:
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace Halvern::UI
