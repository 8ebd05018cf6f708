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
    const int cursor = text.indexOf('|');
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

    void endsWhereAListenerChangesTheText()
    {
        FilePathEdit edit(nullptr);
        connect(&edit, &QLineEdit::textEdited, this, [&edit](const QString& text) {
            if (text == "~/")
                edit.setText("/home/artist/");
        });
        QCOMPARE(pressed(edit, "~/shots/|", {Qt::Key_Backspace}), QString("/home/artist/|"));
    }
};

QTEST_MAIN(FilePathEditTest)
#include "FilePathEditTest.moc"
