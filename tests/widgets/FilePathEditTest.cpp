#include "widgets/FilePathEdit.h"
#include "support/Test.h"

namespace {

// Sets the text, puts the cursor where it has a "|", presses the keys, and returns the text with "|".
QString pressed(FilePathEdit& edit, QString text, const char* keys)
{
    const auto cursor = text.indexOf('|');
    edit.setText(text.remove('|'));
    edit.setCursorPosition(static_cast<int>(cursor));
    QTest::keySequence(&edit, QKeySequence(keys));
    return edit.text().insert(edit.cursorPosition(), '|');
}

} // namespace

class FilePathEditTest : public Test
{
    Q_OBJECT

private slots:
    void editsComponents()
    {
        const char* const rows[][4] = {
            {"/usr/local/|", "Ctrl+Backspace", "/usr/|", ""},
            {"/a/\U0001F3AC\U0001F3AC|", "Ctrl+Backspace", "/a/|", ""},
            {"two words|", "Ctrl+Backspace", "two |", ""},
            {"/usr|/local/bin", "Ctrl+Del", "/usr|/bin", ""},
            {"/|\U0001F3AC\U0001F3AC/b", "Ctrl+Del", "/|/b", ""},
            {"/usr/local/|", "Ctrl+Left", "/usr/|local/", ""},
            {"/usr|/local/bin", "Ctrl+Right", "/usr/local|/bin", ""},
            {"/a/b|c", "Ctrl+Shift+Left, Ctrl+Shift+Left, Ctrl+Shift+Right", "/a|/bc", "/b"},
            {"/a/b|c", "Ctrl+Shift+Left, Ctrl+Backspace", "/a/|c", ""}};
        FilePathEdit edit(nullptr);
        for (const auto& [text, keys, wanted, selected] : rows) {
            QCOMPARE(pressed(edit, text, keys), QString(wanted));
            QCOMPARE(edit.selectedText(), QString(selected));
        }
        edit.setReadOnly(true);
        QCOMPARE(pressed(edit, "/usr/|local/", "Ctrl+Backspace"), QString("/usr/|local/"));
    }

    void aDeletionIsOneEdit()
    {
        FilePathEdit edit(nullptr);
        const QSignalSpy edits(&edit, &QLineEdit::textEdited);
        for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
            edit.setText("/a/bc/de/f");
            edit.setCursorPosition(5);
            edit.insert("x");
            const auto before = edits.size();
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
