#include "widgets/FilePathEdit.h"
#include "support/Test.h"

#include <tuple>
#include <vector>

namespace {

// Sets the text, puts the cursor where it has a "|", presses the keys with Control, and returns the text with
// "|".
QString pressed(FilePathEdit& edit, QString text, const std::vector<int>& keys)
{
    const auto cursor = text.indexOf('|');
    edit.setText(text.remove('|'));
    edit.setCursorPosition(static_cast<int>(cursor));
    for (const int key : keys)
        QTest::keyClick(&edit, Qt::Key(key & ~int(Qt::KeyboardModifierMask)),
                        Qt::ControlModifier | Qt::KeyboardModifiers(key & int(Qt::ShiftModifier)));
    return edit.text().insert(edit.cursorPosition(), '|');
}

} // namespace

class FilePathEditTest : public Test
{
    Q_OBJECT

private slots:
    void editsComponents()
    {
        constexpr int shift = Qt::ShiftModifier;
        const std::tuple<const char*, std::vector<int>, const char*, const char*> rows[] = {
            {"/usr/local/|", {Qt::Key_Backspace}, "/usr/|", ""},
            {"/a/\U0001F3AC\U0001F3AC|", {Qt::Key_Backspace}, "/a/|", ""},
            {"two words|", {Qt::Key_Backspace}, "two |", ""},
            {"/usr|/local/bin", {Qt::Key_Delete}, "/usr|/bin", ""},
            {"/|\U0001F3AC\U0001F3AC/b", {Qt::Key_Delete}, "/|/b", ""},
            {"/usr/local/|", {Qt::Key_Left}, "/usr/|local/", ""},
            {"/usr|/local/bin", {Qt::Key_Right}, "/usr/local|/bin", ""},
            {"/a/b|c", {shift | Qt::Key_Left, shift | Qt::Key_Left, shift | Qt::Key_Right}, "/a|/bc", "/b"},
            {"/a/b|c", {shift | Qt::Key_Left, Qt::Key_Backspace}, "/a/|c", ""},
        };
        FilePathEdit edit(nullptr);
        for (const auto& [text, keys, wanted, selected] : rows) {
            QCOMPARE(pressed(edit, text, keys), QString(wanted));
            QCOMPARE(edit.selectedText(), QString(selected));
        }
        edit.setReadOnly(true);
        QCOMPARE(pressed(edit, "/usr/|local/", {Qt::Key_Backspace}), QString("/usr/|local/"));
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
