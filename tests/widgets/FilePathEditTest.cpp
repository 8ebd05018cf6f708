#include "widgets/FilePathEdit.h"
#include "support/Test.h"

#include <initializer_list>

namespace {

// A key that is pressed with Control and whatever else.
struct Press
{
    Press(Qt::Key pressed, Qt::KeyboardModifiers with = Qt::NoModifier)
        : key(pressed)
        , modifiers(with)
    {
    }
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

// Sets the text, puts the cursor where it has a "|", presses the keys, and gives the text marked likewise.
QString pressed(FilePathEdit& edit, QString text, std::initializer_list<Press> keys)
{
    const auto cursor = int(text.indexOf('|'));
    edit.setText(text.remove('|'));
    edit.setCursorPosition(cursor);
    for (const Press& press : keys)
        QTest::keyClick(&edit, press.key, Qt::ControlModifier | press.modifiers);
    return edit.text().insert(edit.cursorPosition(), '|');
}

} // namespace

class FilePathEditTest : public Test
{
    Q_OBJECT

private slots:
    void editsComponents()
    {
        FilePathEdit edit(nullptr);
        const auto backspace = [&](const char* text) { return pressed(edit, text, {Qt::Key_Backspace}); };
        QCOMPARE(backspace("/usr/local/|"), QString("/usr/|"));
        QCOMPARE(backspace("/a/\U0001F3AC\U0001F3AC|"), QString("/a/|"));
        QCOMPARE(backspace("two words|"), QString("two |"));
        QCOMPARE(pressed(edit, "/usr|/local/bin", {Qt::Key_Delete}), QString("/usr|/bin"));
        QCOMPARE(pressed(edit, "/|\U0001F3AC\U0001F3AC/b", {Qt::Key_Delete}), QString("/|/b"));
        QCOMPARE(pressed(edit, "/usr/local/|", {Qt::Key_Left}), QString("/usr/|local/"));
        QCOMPARE(pressed(edit, "/usr|/local/bin", {Qt::Key_Right}), QString("/usr/local|/bin"));
        const Press left(Qt::Key_Left, Qt::ShiftModifier);
        QCOMPARE(pressed(edit, "/a/b|c", {left, left, {Qt::Key_Right, Qt::ShiftModifier}}),
                 QString("/a|/bc"));
        QCOMPARE(edit.selectedText(), QString("/b"));
        QCOMPARE(pressed(edit, "/a/b|c", {left, Qt::Key_Backspace}), QString("/a/|c"));
        edit.setReadOnly(true);
        QCOMPARE(backspace("/usr/|local/"), QString("/usr/|local/"));
    }

    void aDeletionIsOneEdit()
    {
        FilePathEdit edit(nullptr);
        const QSignalSpy edits(&edit, &QLineEdit::textEdited);
        for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
            edit.setText("/a/bc/de/f");
            edit.setCursorPosition(5);
            edit.insert("x");
            const int before = edits.size();
            QTest::keyClick(&edit, key, Qt::ControlModifier);
            QCOMPARE(edits.size(), before + 1);
            QCOMPARE(edit.text(), QString(key == Qt::Key_Delete ? "/a/bcx/f" : "/a//de/f"));
            edit.undo();
            QCOMPARE(edit.text(), QString("/a/bcx/de/f"));
        }
    }
};

QTEST_MAIN(FilePathEditTest)
#include "FilePathEditTest.moc"
