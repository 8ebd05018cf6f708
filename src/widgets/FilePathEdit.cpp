#include "widgets/FilePathEdit.h"

#include <QDir>
#include <QKeyEvent>

FilePathEdit::FilePathEdit(QWidget* parent)
    : QLineEdit(parent)
{
}

bool FilePathEdit::getPreceedingPathSeparator(int& count) const
{
    count = 0;
    const int cursor = cursorPosition();
    // lastIndexOf() would count a negative position from the end of the text.
    const int separator = cursor < 2 ? -1 : text().lastIndexOf(QDir::separator(), cursor - 2);
    if (separator < 0)
        return false;
    count = cursor - 1 - separator;
    return true;
}

bool FilePathEdit::getNextPathSeparator(int& count) const
{
    count = 0;
    const int cursor = cursorPosition();
    const int separator = text().indexOf(QDir::separator(), cursor + 1);
    if (separator < 0)
        return false;
    count = separator - cursor;
    return true;
}

void FilePathEdit::keyPressEvent(QKeyEvent* event)
{
    const bool control = event->modifiers().testFlag(Qt::ControlModifier) && event->key() != Qt::Key_Control;
    if (control && editComponent(*event))
        event->accept();
    else
        QLineEdit::keyPressEvent(event);
}

bool FilePathEdit::editComponent(const QKeyEvent& event)
{
    int count = 0;
    switch (event.key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        if (isReadOnly())
            return false;
        if (hasSelectedText()) {
            // The standard handling would extend the selection by a word first.
            del();
            return true;
        }
        if (event.key() == Qt::Key_Backspace) {
            if (!getPreceedingPathSeparator(count))
                return false;
            backspaceTo(cursorPosition() - count);
        } else {
            if (!getNextPathSeparator(count))
                return false;
            deleteForwards(count);
        }
        return true;
    case Qt::Key_Left:
        if (!getPreceedingPathSeparator(count))
            return false;
        moveTo(cursorPosition() - count, event.modifiers().testFlag(Qt::ShiftModifier));
        return true;
    case Qt::Key_Right:
        if (!getNextPathSeparator(count))
            return false;
        moveTo(cursorPosition() + count, event.modifiers().testFlag(Qt::ShiftModifier));
        return true;
    default:
        return false;
    }
}

void FilePathEdit::backspaceTo(int position)
{
    // One backspace may take two characters, and whoever listens to textEdited() may put in another text.
    int before = cursorPosition() + 1;
    while (cursorPosition() > position && cursorPosition() < before) {
        before = cursorPosition();
        backspace();
    }
}

void FilePathEdit::deleteForwards(int count)
{
    const int cursor = cursorPosition();
    const int length = text().size() - count;
    int before = text().size() + 1;
    while (text().size() > length && text().size() < before && cursorPosition() == cursor) {
        before = text().size();
        del();
    }
}

void FilePathEdit::moveTo(int position, bool select)
{
    if (!select) {
        setCursorPosition(position);
        return;
    }
    int anchor = cursorPosition();
    if (hasSelectedText())
        anchor = anchor == selectionStart() ? selectionEnd() : selectionStart();
    setSelection(anchor, position - anchor);
}
