#include "catalogue/FileInfo.h"
#include "frames/FrameName.h"
#include "frames/FrameRanges.h"
#include "frames/Placeholder.h"
#include "support/Test.h"

#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

using namespace Halvern::UI;
using Halvern::Base::FrameRange;
using Halvern::Base::FrameRanges;

/// Frame numbers in names, what stands for them, and ranges of frames.
class FramesTest : public Test
{
    Q_OBJECT

private slots:
    void readsNames()
    {
        int frame = 0;
        int digits = 0;
        bool padded = false;
        char pattern[FileInfo::NameSize];
        for (const auto& [name, expected] : {std::pair("shot_010.0042.exr", "shot_010.#.exr 42 4 1"),
                                             {"x.-5.exr", "x.-#.exr 5 1 0"},
                                             {"0001", "# 1 4 1"},
                                             {"a.7z", "a.#z 7 1 0"},
                                             {"x.2147483647.exr", "x.#.exr 2147483647 10 0"}}) {
            QVERIFY2(FrameName::read(name, frame, pattern, digits, padded), name);
            QCOMPARE(QString::asprintf("%s %d %d %d", pattern, frame, digits, padded), QString(expected));
        }
        for (const char* name : {"x.2147483648.exr", "", "7", "1.exr", ".hidden5", "photo.cr2"})
            QVERIFY2(!FrameName::read(name, frame, pattern, digits, padded), name);
    }

    void readsText()
    {
        // Name, pattern and frame, and the smallest padded width so far.
        const std::tuple<QString, const char*, int> rows[] = {
            {"shot.42.exr", "shot.##.exr 42", 4},
            {"shot.00042.exr", "shot.#####.exr 42", 4},
            {QString("a\u0664\u0662.exr"), "a##.exr 42", 4},
            {QString("a\u06602147483647.exr"), "a###########.exr 2147483647", 4},
            {"shot.042.exr", "shot.###.exr 42", 3}};
        FrameName::resetSmallestPaddedWidth();
        QString pattern;
        int frame = 0;
        for (const auto& [name, expected, width] : rows) {
            QVERIFY(FrameName::read(name, pattern, frame));
            QCOMPARE(pattern + ' ' + QString::number(frame), QString(expected));
            QCOMPARE(FrameName::smallestPaddedWidth(), width);
        }
        QVERIFY(!FrameName::read(QString("a2147483648.exr"), pattern, frame));

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

    void readsAndWritesText()
    {
        const std::pair<const char*, const char*> rows[] = {
            {" 5 , 3-4 ", "3-5"},       {" ", ""},
            {"10-2x3", "4-10x3"},       {"1,2,4,6,8", "1-2,4-8x2"},
            {"8,5-7,3,1", "1-5x2,6-8"}, {"-2147483648,2147483647", "-2147483648,2147483647"},
            {"1-20x2147483647", "1"}};
        for (const auto& row : rows)
            QCOMPARE(FrameRanges::parse(row.first)->text(), std::string(row.second));
        const std::pair<const char*, const char*> displayNames[] = {
            {"my shot.##.exr 8-11", "8-11"},
            {"x.# 1-9 ( 1-2  5-5  8-9 )", "1-2,5,8-9"},
            {"x.# 1-4 ( 1-2 )", "1-2,4"},
            {"1-9,2 ( 1-3  7-9 )", "1,3,7,9"}};
        for (const auto& row : displayNames)
            QCOMPARE(FrameRanges::parseDisplayName(row.first)->text(), std::string(row.second));
    }

    void refusesWithOneLineEach()
    {
        const char* const texts[] = {"1-",  "1,,2", "1,",    "a",      "+1",          "1-2-3",
                                     "5x2", "1 2",  "1-9x0", "1-9x-2", "1-2147483648"};
        const char* const displayNames[] = {"", "x.#.exr", "x 1-9 )", "x 1-9 ( 1-3 a )", "x 1-9,0"};
        QByteArray accepted;
        // Failing checks stand outside: their messages would be caught too.
        char* said = nullptr;
        std::size_t size = 0;
        std::FILE* const previous = std::exchange(stdout, ::open_memstream(&said, &size));
        for (const char* text : texts)
            accepted += FrameRanges::parse(text) ? text : "";
        for (const char* name : displayNames)
            accepted += FrameRanges::parseDisplayName(name) ? name : "";
        std::fclose(std::exchange(stdout, previous));
        QCOMPARE(accepted, QByteArray());
        QCOMPARE(std::count(said, said + size, '\n'), 16);
        std::free(said);
    }

    void holdsHugeRanges()
    {
        const std::tuple<const char*, long long, int> rows[] = {{"1-50000000,2-60000000", 60000000, 30000001},
                                                                {"1-50000000x2", 25000000, 25000001},
                                                                {"-2147483648-2147483647", 4294967296, 0},
                                                                {"-2147483648-2147483647x2147483647", 3, -1}};
        for (const auto& [text, count, middle] : rows) {
            const auto ranges = FrameRanges::parse(text);
            QCOMPARE(ranges->count(), count);
            QCOMPARE(*ranges->frame(count / 2), middle);
        }
        QVERIFY(!FrameRanges::parse("1-50000000x2,1-50000000x3"));
    }

    // Against a plain set, over many small unions.
    void isWhatItsRangesAre()
    {
        QRandomGenerator random(1);
        for (int round = 0; round < 3000; ++round) {
            std::vector<FrameRange> ranges;
            std::set<int> expected;
            for (int i = random.bounded(5); i >= 0; --i) {
                const FrameRange range{random.bounded(-30, 30), random.bounded(-30, 30),
                                       random.bounded(1, 8)};
                ranges.push_back(range);
                const int direction = range.first <= range.last ? 1 : -1;
                for (int frame = range.first; (range.last - frame) * direction >= 0;
                     frame += range.step * direction)
                    expected.insert(frame);
            }
            const auto united = FrameRanges::unite(ranges);
            const auto again = FrameRanges::parse(united->text());
            for (const FrameRanges& one : {*united, *again})
                QVERIFY(std::equal(one.begin(), one.end(), expected.begin(), expected.end()));
            QVERIFY(again->text() == united->text() && again->runs().size() == united->runs().size());
        }
    }
};

QTEST_GUILESS_MAIN(FramesTest)
#include "FramesTest.moc"
