#pragma once

#include "base/Export.h"

#include <QLineEdit>

/// A line editor for paths. With Control held, the editing keys move over and delete path components instead
/// of words. Positions and distances are in characters of text().
///
/// With Control held ("|" is the cursor in the examples):
/// - Backspace deletes back to the previous separator, which stays. A separator right before the cursor is
///   deleted too. "/usr/local/|" gives "/usr/|".
/// - Delete deletes up to the next separator. "/|usr/local" gives "/|/local".
/// - Left and Right move the cursor by the same distances, and with Shift extend the selection.
///
/// Each deletion is one edit: one textEdited() and one step of undo. If text is selected, Backspace and
/// Delete remove only the selection. If there is no such separator, for all other keys, and in a read-only
/// editor, QLineEdit handles the key.
class HVCOREUI_EXPORT FilePathEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit FilePathEdit(QWidget* parent);

    /// Finds the last separator before the cursor, except one right before it, and sets @p count to the
    /// number of characters between it and the cursor. If there is none, sets @p count to 0 and returns
    /// false. Example: "/usr/local/|" gives 6.
    bool getPreceedingPathSeparator(int& count) const;

    /// Finds the next separator after the cursor, except one right at it, and sets @p count to the number of
    /// characters from the cursor to it. If there is none, sets @p count to 0 and returns false.
    /// Example: "/|usr/local" gives 3.
    bool getNextPathSeparator(int& count) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool editComponent(const QKeyEvent& event);
};
