#include "widgets/FilePathEdit.h"

#include <QDir>
#include <QKeyEvent>

FilePathEdit::FilePathEdit(QWidget* parent)
    : QLineEdit(parent)
{
}

bool FilePathEdit::getPreceedingPathSeparator(int& count) const
{
    const int cursor = cursorPosition();
    // lastIndexOf() would count a negative position from the end of the text.
    const int separator =
        cursor < 2 ? -1 : static_cast<int>(text().lastIndexOf(QDir::separator(), cursor - 2));
    count = separator < 0 ? 0 : cursor - 1 - separator;
    return separator >= 0;
}

bool FilePathEdit::getNextPathSeparator(int& count) const
{
    const int cursor = cursorPosition();
    const auto separator = static_cast<int>(text().indexOf(QDir::separator(), cursor + 1));
    count = separator < 0 ? 0 : separator - cursor;
    return separator >= 0;
}

void FilePathEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier) && editComponent(*event))
        event->accept();
    else
        QLineEdit::keyPressEvent(event);
}

bool FilePathEdit::editComponent(const QKeyEvent& event)
{
    const bool backwards = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Left;
    const bool deletes = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete;
    if (!backwards && event.key() != Qt::Key_Delete && event.key() != Qt::Key_Right)
        return false;
    if (deletes && isReadOnly())
        return false;
    if (deletes && hasSelectedText()) {
        // The standard handling would extend the selection by a word first.
        del();
        return true;
    }
    int count = 0;
    if (!(backwards ? getPreceedingPathSeparator(count) : getNextPathSeparator(count)))
        return false;
    int anchor = cursorPosition();
    const int target = anchor + (backwards ? -count : count);
    if (hasSelectedText())
        anchor = anchor == selectionStart() ? selectionEnd() : selectionStart();
    if (deletes || event.modifiers().testFlag(Qt::ShiftModifier))
        setSelection(anchor, target - anchor);
    else
        setCursorPosition(target);
    if (deletes)
        del();
    return true;
}
