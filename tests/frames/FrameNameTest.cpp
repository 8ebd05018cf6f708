#include "frames/FrameName.h"
#include "catalogue/FileInfo.h"
#include "frames/Placeholder.h"
#include "support/Test.h"

using namespace Halvern::UI;

/// Frame numbers in names, and what stands for them.
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
        // Name, pattern and frame, and the smallest padded width so far.
        const std::tuple<QString, const char*, int> rows[] = {
            {"shot.42.exr", "shot.##.exr 42", 4},
            {"shot.00042.exr", "shot.#####.exr 42", 4},
            {QStringLiteral("a\u0664\u0662.exr"), "a##.exr 42", 4},
            {QStringLiteral("a\u06602147483647.exr"), "a###########.exr 2147483647", 4},
            {"shot.042.exr", "shot.###.exr 42", 3}};
        FrameName::resetSmallestPaddedWidth();
        QString pattern;
        int frame = 0;
        for (const auto& [name, expected, width] : rows) {
            QVERIFY(FrameName::read(name, pattern, frame));
            QCOMPARE(pattern + ' ' + QString::number(frame), QString(expected));
            QCOMPARE(FrameName::smallestPaddedWidth(), width);
        }
        QVERIFY(!FrameName::read(QStringLiteral("a2147483648.exr"), pattern, frame));

        const char* pairs[][3] = {{"f.##.exr", "f.##.exr", "f.##.exr"},
                                  {"f.##.exr", "g.##.exr", nullptr},
                                  {"f.##.exr", "f.###.exr", "f.#.exr"}};
        for (const auto& [first, second, common] : pairs) {
            QString a = first;
            QString b = second;
            QCOMPARE(FrameName::reconcilePatterns(a, b), common != nullptr);
            QVERIFY(a == (common ? common : first) && b == (common ? common : second));
        }
    }

    void writesTokensAndHashes()
    {
        // Name, with a token, with hashes.
        const char* rows[][3] = {{"img.####.exr", "img.%04d.exr", "img.####.exr"},
                                 {"img.#.exr", "img.%d.exr", "img.#.exr"},
                                 {"a##b#", "a%04d", "a##b#"},
                                 {"%03d.%d", "%03d.%d", "###.###"},
                                 {"%x %5", "%x %5", "%x %5"}};
        for (const auto& [name, token, hashes] : rows) {
            QCOMPARE(Placeholder::withToken(name), QString(token));
            QCOMPARE(Placeholder::withHashes(name), QString(hashes));
        }
        QCOMPARE(Placeholder::withHashes("%2147483647d").size(), 1024);
        QCOMPARE(Placeholder::widened("a.#.#", 3), std::string("a.###.#"));
        QCOMPARE(Placeholder::widened("a", 3), std::string("a"));
    }

    void splitsRanges()
    {
        const std::pair<const char*, const char*> rows[] = {
            {"/p 1-2 (x)/a b.# 1-100 ( 1-50 60-100 )", "/p 1-2 (x)/a b.#, 1 to 100"},
            {"a -3--1", "a, -3 to -1"},
            {"a 5-", ""},
            {"p/ 1-2 /a", ""},
            {"1-2", ""},
            {" (1-2", ""}};
        for (const auto& [path, wanted] : rows) {
            const auto split = Placeholder::splitRange(path);
            QCOMPARE(split
                         ? QStringLiteral("%1, %2 to %3").arg(split->name).arg(split->first).arg(split->last)
                         : QString(),
                     QString(wanted));
        }
    }
};

QTEST_GUILESS_MAIN(FrameNameTest)
#include "FrameNameTest.moc"
