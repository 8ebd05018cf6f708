#include "catalogue/FrameName.h"
#include "catalogue/FileInfo.h"
#include "support/Test.h"

using namespace Halvern::UI;

class FrameNameTest : public Test
{
    Q_OBJECT

private slots:
    void readsNames_data();
    void readsNames();
    void readsText_data();
    void readsText();
    void reconcilesWidths();
};

void FrameNameTest::readsNames_data()
{
    QTest::addColumn<QByteArray>("pattern"); // empty: no frame
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("digits");
    QTest::addColumn<bool>("padded");

    const auto row = [](const char* name, const char* pattern, int frame, int digits, bool padded) {
        QTest::newRow(name) << QByteArray(pattern) << frame << digits << padded;
    };
    row("shot_010.0042.exr", "shot_010.#.exr", 42, 4, true);
    row("img7.tif", "img#.tif", 7, 1, false);
    row("take.12", "take.#", 12, 2, false);
    row("a.b.0010", "a.b.#", 10, 4, true);
    row("v2_plate.exr", "v#_plate.exr", 2, 1, false);
    row("x.-5.exr", "x.-#.exr", 5, 1, false);
    row("0001", "#", 1, 4, true);
    row("0001.exr", "#.exr", 1, 4, true);
    row("01.exr", "#.exr", 1, 2, true);
    row("a1.exr", "a#.exr", 1, 1, false);
    row("a.7z", "a.#z", 7, 1, false);
    row("x.2147483647.exr", "x.#.exr", 2147483647, 10, false);
    for (const char* name : {"", "7", "readme.txt", "1.exr", ".hidden5", ".exr", "photo.cr2",
                             "x.2147483648.exr", "x.99999999999999999999999.exr"})
        QTest::newRow(*name ? name : "empty") << QByteArray() << 0 << 0 << false;
}

void FrameNameTest::readsNames()
{
    QFETCH(QByteArray, pattern);
    const QByteArray name = QTest::currentDataTag() == QByteArray("empty") ? "" : QTest::currentDataTag();
    int frame = 0;
    int digits = 0;
    bool padded = false;
    char found[FileInfo::NameSize];
    QCOMPARE(FrameName::read(name.constData(), frame, found, digits, padded), !pattern.isEmpty());
    if (pattern.isEmpty())
        return;
    QCOMPARE(QByteArray(found), pattern);
    QTEST(frame, "frame");
    QTEST(digits, "digits");
    QTEST(padded, "padded");
}

void FrameNameTest::readsText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("pattern"); // empty: no frame
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("smallestWidth");

    QTest::newRow("a # for each digit") << "shot.0042.exr"
                                        << "shot.####.exr" << 42 << 4;
    QTest::newRow("narrow padding") << "shot.042.exr"
                                    << "shot.###.exr" << 42 << 3;
    QTest::newRow("unpadded") << "shot.42.exr"
                              << "shot.##.exr" << 42 << 4;
    QTest::newRow("wide padding") << "shot.00042.exr"
                                  << "shot.#####.exr" << 42 << 4;
    QTest::newRow("lone zero") << "shot.0.exr"
                               << "shot.#.exr" << 0 << 4;
    QTest::newRow("beyond int") << "shot.4294967296.exr"
                                << "" << 0 << 4;
    QTest::newRow("numeric extension") << "photo.cr2"
                                       << "" << 0 << 4;
    QTest::newRow("digits without a value") << QStringLiteral("a\u0664\u0662.exr") << "" << 0 << 4;
}

void FrameNameTest::readsText()
{
    QFETCH(QString, name);
    QFETCH(QString, pattern);
    FrameName::resetSmallestPaddedWidth();
    QString found;
    int frame = 0;
    QCOMPARE(FrameName::read(name, found, frame), !pattern.isEmpty());
    QTEST(FrameName::smallestPaddedWidth(), "smallestWidth");
    if (pattern.isEmpty())
        return;
    QCOMPARE(found, pattern);
    QTEST(frame, "frame");
}

void FrameNameTest::reconcilesWidths()
{
    QString a = QStringLiteral("f.##.exr");
    QString b = QStringLiteral("f.###.exr");
    QVERIFY(FrameName::reconcilePatterns(a, b));
    QCOMPARE(a, QStringLiteral("f.#.exr"));
    QCOMPARE(b, a);

    QString same = QStringLiteral("f.##.exr");
    QString again = same;
    QVERIFY(FrameName::reconcilePatterns(same, again));
    QCOMPARE(same, QStringLiteral("f.##.exr"));

    QString other = QStringLiteral("g.##.exr");
    QVERIFY(!FrameName::reconcilePatterns(same, other));
    QCOMPARE(other, QStringLiteral("g.##.exr"));
    QString plain = QStringLiteral("f.");
    QVERIFY(!FrameName::reconcilePatterns(same, plain));
}

QTEST_GUILESS_MAIN(FrameNameTest)
#include "FrameNameTest.moc"
