#pragma once

#include "base/Export.h"

#include <QLineEdit>

/// A line editor for paths, in which the Control key makes the editing keys jump over and delete whole
/// components instead of words. Positions and distances are in characters of text().
///
/// With Control held, and "|" for the cursor in the examples:
/// - Backspace deletes back to the previous separator, which stays. A separator right before the cursor goes
///   too. "/usr/local/|" gives "/usr/|".
/// - Delete deletes up to the next separator. "/|usr/local" gives "/|/local".
/// - Left and Right move the cursor by the same distances, and with Shift extend the selection.
///
/// Each deletion is one edit: one textEdited() and one step of undo. If something is selected, Backspace and
/// Delete remove just that. If there is no separator to go to, for every other key, and for deleting in a
/// read-only editor, QLineEdit does what it always does.
class HVCOREUI_EXPORT FilePathEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit FilePathEdit(QWidget* parent);

    /// Finds the separator before the cursor, a separator right before it not counted, and sets @p count to
    /// the number of characters between it and the cursor. False, with a @p count of 0, if there is none.
    /// Example: "/usr/local/|" gives 6.
    bool getPreceedingPathSeparator(int& count) const;

    /// Finds the separator after the cursor, a separator right at it not counted, and sets @p count to the
    /// number of characters from the cursor to it. False, with a @p count of 0, if there is none.
    /// Example: "/|usr/local" gives 3.
    bool getNextPathSeparator(int& count) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool editComponent(const QKeyEvent& event);
};
