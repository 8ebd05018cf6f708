#pragma once

#include "browser/FileBrowser.h"

#include <QTreeView>
#include <functional>
#include <optional>
#include <vector>

namespace Halvern::UI {

/// The view of the files: keyboard navigation through directories, hover, and the pick-list menu on a right
/// click, which neither selects nor moves the current row.
class FileBrowser::FilesList : public QTreeView
{
    Q_OBJECT

public:
    explicit FilesList(FileBrowser* owner);

    /// Pixels that the list would like to be wide.
    void setWidthHint(int width) { widthHint = width; }
    QSize sizeHint() const override;

    /// The row of the view that was under the mouse when it moved last, -1 for none.
    int hoveredViewRow() const { return mouseRow; }
    /// Where the cursor key would go: the index one row above or below the current one.
    QModelIndex rowAbove() { return moveCursor(MoveUp, Qt::NoModifier); }
    QModelIndex rowBelow() { return moveCursor(MoveDown, Qt::NoModifier); }

    enum class Keep
    {
        Selection, ///< With the current row and the scroll position.
        CurrentRow ///< With the scroll position; nothing is selected any more.
    };
    /// Runs @p reset, which resets the model but leaves its rows as they are, and puts back what is to be
    /// kept without announcing a change of it. Rows stay in the order in which they were selected, unless
    /// they lie in hundreds of places.
    void keepPlace(Keep what, const std::function<void()>& reset);

protected:
    /// The menu key opens the menu at the current row.
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    bool navigates(const QKeyEvent& event);
    const char* nameAt(const QPoint& place) const;
    bool followsPress(const QMouseEvent& event) const;
    void selectRows(std::vector<int> rows);

    FileBrowser* browser;
    // When a button was pressed last, but for the right one, and on what.
    ulong pressedTime = 0; // in milliseconds, of the event
    std::optional<QPoint> pressedPlace;
    QString pressedFolder;
    QByteArray pressedName;
    int widthHint = 0;
    int mouseRow = -1;
};

} // namespace Halvern::UI
