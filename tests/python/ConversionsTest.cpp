#include "python/Conversions.h"

#include "support/Test.h"

// What no exposed method returns yet, though it is part of the bridge.
class ConversionsTest : public Test
{
    Q_OBJECT

private slots:
    void givesPythonTextAndNumbers()
    {
        const auto written = [](PyObject* object) {
            return QByteArray(PyBytes_AsString(PyUnicode_AsUTF8String(PyObject_ASCII(object))));
        };
        QCOMPARE(written(Python::fromNumbers({1, -2})), "(1, -2)");
        QCOMPARE(written(Python::fromText({"\xc3\xa9\0b", 4})), "'\\xe9\\x00b'");
        QCOMPARE(written(Python::fromText({"ok\0\xff", 4})), "'ok'");
        QVERIFY(!Python::fromText("\xff") && PyErr_ExceptionMatches(PyExc_UnicodeDecodeError));
    }
};

int main(int argc, char** argv)
{
    Py_InitializeEx(0);
    ConversionsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ConversionsTest.moc"
