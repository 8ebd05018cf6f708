#include "frames/FrameName.h"
#include "catalogue/FileInfo.h"
#include "support/Test.h"

using namespace Halvern::UI;

class FrameNameTest : public Test
{
    Q_OBJECT

private slots:
    void readsNames()
    {
        const std::pair<const char*, const char*> rows[] = {{"shot_010.0042.exr", "shot_010.#.exr 42 4 1"},
                                                            {"a.b.0010", "a.b.# 10 4 1"},
                                                            {"x.-5.exr", "x.-#.exr 5 1 0"},
                                                            {"0001", "# 1 4 1"},
                                                            {"a.7z", "a.#z 7 1 0"},
                                                            {"x.2147483647.exr", "x.#.exr 2147483647 10 0"}};
        int frame = 0;
        int digits = 0;
        bool padded = false;
        char pattern[FileInfo::NameSize];
        for (const auto& row : rows) {
            QVERIFY2(FrameName::read(row.first, frame, pattern, digits, padded), row.first);
            QCOMPARE(QString::asprintf("%s %d %d %d", pattern, frame, digits, padded), QString(row.second));
        }
        for (const char* name : {"", "7", "1.exr", ".hidden5", "photo.cr2", "x.2147483648.exr"})
            QVERIFY2(!FrameName::read(name, frame, pattern, digits, padded), name);
    }

    void readsText()
    {
        QString pattern;
        int frame = 0;
        FrameName::resetSmallestPaddedWidth();
        QVERIFY(FrameName::read(QStringLiteral("shot.42.exr"), pattern, frame));
        QVERIFY(FrameName::read(QStringLiteral("shot.00042.exr"), pattern, frame));
        QVERIFY(FrameName::read(QStringLiteral("a\u0664\u0662.exr"), pattern, frame));
        QCOMPARE(frame, 42);
        QCOMPARE(pattern, QStringLiteral("a##.exr"));
        QVERIFY(FrameName::read(QStringLiteral("a\u06602147483647.exr"), pattern, frame));
        QVERIFY(!FrameName::read(QStringLiteral("a2147483648.exr"), pattern, frame));
        QCOMPARE(FrameName::smallestPaddedWidth(), 4);
        QVERIFY(FrameName::read(QStringLiteral("shot.042.exr"), pattern, frame));
        QCOMPARE(pattern, QStringLiteral("shot.###.exr"));
        QCOMPARE(FrameName::smallestPaddedWidth(), 3);
    }

    void reconcilesWidths()
    {
        QString a = QStringLiteral("f.##.exr");
        QString b = a;
        QVERIFY(FrameName::reconcilePatterns(a, b) && a == QLatin1String("f.##.exr"));
        b = QStringLiteral("g.##.exr");
        QVERIFY(!FrameName::reconcilePatterns(a, b) && b == QLatin1String("g.##.exr"));
        b = QStringLiteral("f.###.exr");
        QVERIFY(FrameName::reconcilePatterns(a, b) && a == QLatin1String("f.#.exr") && b == a);
    }
};

QTEST_GUILESS_MAIN(FrameNameTest)
#include "FrameNameTest.moc"
