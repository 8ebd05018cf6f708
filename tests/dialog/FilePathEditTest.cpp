#include "dialog/FilePathEdit.h"
#include "support/Test.h"

#include <QSignalSpy>
#include <memory>

class FilePathEditTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QWidget>();
        m_edit = new FilePathEdit(m_window.get());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_edit->setFocus();
    }

    void findsSeparators()
    {
        put(QStringLiteral("/usr|/local/"));
        int count = -1;
        QVERIFY(m_edit->getPreceedingPathSeparator(count) && count == 3);
        QVERIFY(m_edit->getNextPathSeparator(count) && count == 6);
        put(QStringLiteral("/|usr"));
        QVERIFY(!m_edit->getPreceedingPathSeparator(count) && count == 0);
        QVERIFY(!m_edit->getNextPathSeparator(count));
        m_edit->setText(QStringLiteral("/usr/"));
        m_edit->setCursorPosition(0);
        QVERIFY(!m_edit->getPreceedingPathSeparator(count));
    }

    void editsComponents_data();
    void editsComponents()
    {
        QFETCH(QString, text);
        QFETCH(Qt::Key, key);
        put(text);
        QTest::keyClick(m_edit, key, Qt::ControlModifier);
        QTEST(marked(), "expected");
    }

    void selectsWithShift()
    {
        const Qt::KeyboardModifiers modifiers = Qt::ControlModifier | Qt::ShiftModifier;
        put(QStringLiteral("/usr/loc|al/bin"));
        QTest::keyClick(m_edit, Qt::Key_Left, modifiers);
        QTest::keyClick(m_edit, Qt::Key_Left, modifiers);
        QCOMPARE(m_edit->selectedText(), QStringLiteral("usr/loc"));
        QTest::keyClick(m_edit, Qt::Key_Right, modifiers);
        QTest::keyClick(m_edit, Qt::Key_Right, modifiers);
        QCOMPARE(m_edit->selectedText(), QStringLiteral("al"));
        QCOMPARE(marked(), QStringLiteral("/usr/local|/bin"));
        QTest::keyClick(m_edit, Qt::Key_Left, Qt::ControlModifier);
        QVERIFY(!m_edit->hasSelectedText());
    }

    void removesSelectionOnly()
    {
        for (const Qt::Key key : {Qt::Key_Backspace, Qt::Key_Delete}) {
            for (const char* text : {"/usr/local/bin", "many words"}) {
                m_edit->setText(QString::fromLatin1(text));
                m_edit->setSelection(6, 2);
                QTest::keyClick(m_edit, key, Qt::ControlModifier);
                QCOMPARE(marked(), QString::fromLatin1(text).replace(6, 2, QLatin1Char('|')));
            }
        }
    }

    void readOnlyTextStays()
    {
        put(QStringLiteral("/usr/|local/"));
        m_edit->setReadOnly(true);
        QTest::keyClick(m_edit, Qt::Key_Backspace, Qt::ControlModifier);
        QTest::keyClick(m_edit, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(marked(), QStringLiteral("/usr/|local/"));
    }

    void endsWhereAListenerChangesTheText()
    {
        put(QStringLiteral("~/shots/|"));
        connect(m_edit, &QLineEdit::textEdited, this, [this](const QString& text) {
            if (text == QLatin1String("~/"))
                m_edit->setText(QStringLiteral("/home/artist/"));
        });
        const QSignalSpy edited(m_edit, SIGNAL(textEdited(QString)));
        QTest::keyClick(m_edit, Qt::Key_Backspace, Qt::ControlModifier);
        QCOMPARE(marked(), QStringLiteral("/home/artist/|"));
        QCOMPARE(edited.count(), 6);
    }

private:
    /// Sets the text and puts the cursor where it has a "|".
    void put(QString text)
    {
        const int cursor = text.indexOf(QLatin1Char('|'));
        m_edit->setText(text.remove(QLatin1Char('|')));
        m_edit->setCursorPosition(cursor);
    }

    QString marked() const { return m_edit->text().insert(m_edit->cursorPosition(), QLatin1Char('|')); }

    std::unique_ptr<QWidget> m_window;
    FilePathEdit* m_edit = nullptr;
};

void FilePathEditTest::editsComponents_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](Qt::Key key, const char* text, const char* expected) {
        QTest::addRow("%s %x", text, key) << key << QString::fromUtf8(text) << QString::fromUtf8(expected);
    };
    row(Qt::Key_Backspace, "/usr/local/|", "/usr/|");
    row(Qt::Key_Backspace, "/usr/local|", "/usr/|");
    row(Qt::Key_Backspace, "/usr/lo|cal/bin", "/usr/|cal/bin");
    row(Qt::Key_Backspace, "/a/\U0001F3AC\U0001F3AC|", "/a/|");
    row(Qt::Key_Backspace, "two words|", "two |");
    row(Qt::Key_Backspace, "|/usr/", "|/usr/");
    row(Qt::Key_Delete, "/|usr/local", "/|/local");
    row(Qt::Key_Delete, "/usr|/local/bin", "/usr|/bin");
    row(Qt::Key_Delete, "/|\U0001F3AC\U0001F3AC/b", "/|/b");
    row(Qt::Key_Delete, "/usr/|two words", "/usr/|words");
    row(Qt::Key_Left, "/usr/local/|", "/usr/|local/");
    row(Qt::Key_Left, "/a/\U0001F3AC/|", "/a/|\U0001F3AC/");
    row(Qt::Key_Left, "two words|", "two |words");
    row(Qt::Key_Right, "/usr|/local/bin", "/usr/local|/bin");
    row(Qt::Key_Right, "/usr/|two words", "/usr/two |words");
}

QTEST_MAIN(FilePathEditTest)
#include "FilePathEditTest.moc"
