#include "base/FrameRanges.h"
#include "support/StandardOutput.h"
#include "support/Test.h"

#include <climits>

using Halvern::Base::FrameRange;
using Halvern::Base::FrameRanges;

class FrameRangesTest : public Test
{
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void refusesOtherInput();
    void holdsHugeRanges_data();
    void holdsHugeRanges();
    void isWhatItsRangesAre();
};

void FrameRangesTest::reads_data()
{
    QTest::addColumn<bool>("displayName");
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QVector<int>>("frames");
    QTest::addColumn<QByteArray>("shortest");

    const auto text = [](const char* given, const QVector<int>& frames, const char* shortest) {
        QTest::newRow(given) << false << QByteArray(given) << frames << QByteArray(shortest);
    };
    text("1-10x2,15,20-22", {1, 3, 5, 7, 9, 15, 20, 21, 22}, "1-9x2,15,20-22");
    text(" 5 , 3-4 ", {3, 4, 5}, "3-5");
    text(" ", {}, "");
    text("7", {7}, "7");
    text("1,3", {1, 3}, "1,3");
    text("10-1x3", {1, 4, 7, 10}, "1-10x3");
    text("10-2x3", {4, 7, 10}, "4-10x3");
    text("5-5x9", {5}, "5");
    text("-10--5x2,-1-1", {-10, -8, -6, -1, 0, 1}, "-10--6x2,-1-1");
    text("1-5,3-8,4", {1, 2, 3, 4, 5, 6, 7, 8}, "1-8");
    text("1-9x2,2-8x2", {1, 2, 3, 4, 5, 6, 7, 8, 9}, "1-9");
    text("1-7x2,1-7x3", {1, 3, 4, 5, 7}, "1,3-5,7");
    text("0-20x4,2-20x4", {0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20}, "0-20x2");
    text("1,3,5,6,7,8", {1, 3, 5, 6, 7, 8}, "1,3,5-8");
    text("1,2,4,6,8", {1, 2, 4, 6, 8}, "1,2-8x2");
    text("1-3,5-9x2", {1, 2, 3, 5, 7, 9}, "1-3,5-9x2");
    text("-100,0,100", {-100, 0, 100}, "-100,0,100");
    text("1,2,4,5", {1, 2, 4, 5}, "1-2,4-5");
    text("-2147483648,2147483647", {INT_MIN, INT_MAX}, "-2147483648,2147483647");
    text("1-20x2147483647", {1}, "1");

    const auto name = [](const char* given, const QVector<int>& frames, const char* shortest) {
        QTest::newRow(given) << true << QByteArray(given) << frames << QByteArray(shortest);
    };
    name("x.#.exr 1-7,2", {1, 3, 5, 7}, "1-7x2");
    name("my shot.##.exr 8-11", {8, 9, 10, 11}, "8-11");
    name("x.#.exr 1-9 ( 1-2  5-5  8-9 )", {1, 2, 5, 8, 9}, "1-2,5,8-9");
    name("x.#.exr 1-4 ( 1-2 4 )", {1, 2, 4}, "1-2,4");
    name("x.#.exr 1-4 ( 1-2 )", {1, 2, 4}, "1-2,4");
    name("1-9,2 ( 1-3  7-9 )", {1, 3, 7, 9}, "1,3,7,9");
    name("3-4", {3, 4}, "3-4");
}

void FrameRangesTest::reads()
{
    QFETCH(bool, displayName);
    QFETCH(QByteArray, given);
    QFETCH(QVector<int>, frames);
    const auto ranges = displayName ? FrameRanges::parseDisplayName(given.constData())
                                    : FrameRanges::parse(given.constData());
    QVERIFY(ranges);
    QCOMPARE(QVector<int>(ranges->begin(), ranges->end()), frames);
    QCOMPARE(ranges->count(), static_cast<long long>(frames.size()));
    for (int i = 0; i < frames.size(); ++i) {
        QCOMPARE(ranges->frame(i), std::optional<int>(frames.at(i)));
        QVERIFY(ranges->contains(frames.at(i)));
        QVERIFY(frames.at(i) == INT_MAX ||
                ranges->contains(frames.at(i) + 1) == frames.contains(frames.at(i) + 1));
    }
    QTEST(QByteArray::fromStdString(ranges->text()), "shortest");
    const auto again = FrameRanges::parse(ranges->text());
    QCOMPARE(QVector<int>(again->begin(), again->end()), frames);
}

void FrameRangesTest::refuses_data()
{
    QTest::addColumn<QByteArray>("said");

    const auto row = [](const char* text, const char* said) { QTest::newRow(text) << QByteArray(said); };
    row("1-", "\"1-\": a frame");
    row("1,,2", "\"\": a frame");
    row("1,", "\"\": a frame");
    row("a", "\"a\": a frame");
    row("+1", "\"+1\": a frame");
    row("1--", "\"1--\": a frame");
    row("1-2-3", "\"1-2-3\"");
    row("5x2", "\"5x2\"");
    row("1 2", "\"1 2\"");
    row("1-9x0", "\"1-9x0\": a step");
    row("1-9x-2", "\"1-9x-2\": a step");
    row("1-9x", "\"1-9x\": a step");
    row("1-9x2y", "\"1-9x2y\": a step");
    row("1-2147483648", "\"1-2147483648\": a frame");
    row("99999999999999999999", "a frame");
    row("1-50000000x2,1-50000000x3", "interleave");
    row("1-50000000x3,2-50000000x3", "interleave");
}

void FrameRangesTest::refuses()
{
    QFETCH(QByteArray, said);
    bool accepted = true;
    const auto parse = [&] { accepted = FrameRanges::parse(QTest::currentDataTag()).has_value(); };
    const QByteArray line = standardOutputOf(parse);
    QVERIFY(!accepted);
    QVERIFY2(line.contains(said) && line.count('\n') == 1, line.constData());
}

void FrameRangesTest::refusesOtherInput()
{
    int accepted = 0;
    const QByteArray lines = standardOutputOf([&] {
        for (const char* name : {"", "x.#.exr", "x 1-9 )", "x 1-9 ( 1-3 a )", "x 1-9,0"})
            accepted += FrameRanges::parseDisplayName(name) ? 1 : 0;
        accepted += FrameRanges::unite({{1, 9, 0}}) ? 1 : 0;
        accepted += FrameRanges().frame(0) ? 1 : 0;
    });
    QCOMPARE(accepted, 0);
    QCOMPARE(lines.count('\n'), 7);
}

void FrameRangesTest::holdsHugeRanges_data()
{
    QTest::addColumn<long long>("count");
    QTest::addColumn<int>("middle");
    QTest::addColumn<QByteArray>("shortest");

    const auto row = [](const char* text, long long count, int middle, const char* shortest) {
        QTest::newRow(text) << count << middle << QByteArray(shortest);
    };
    row("1-50000000", 50000000, 25000001, "1-50000000");
    row("50000000-1", 50000000, 25000001, "1-50000000");
    row("1-50000000x2,2-50000000x2", 50000000, 25000001, "1-50000000");
    row("1-50000000,7-49999999x3", 50000000, 25000001, "1-50000000");
    row("-2147483648-2147483647", 4294967296, 0, "-2147483648-2147483647");
    row("-2147483648-2147483647x2147483647", 3, -1, "-2147483648,-1,2147483646");
}

void FrameRangesTest::holdsHugeRanges()
{
    QFETCH(long long, count);
    QFETCH(int, middle);
    QElapsedTimer timer;
    timer.start();
    const auto ranges = FrameRanges::parse(QTest::currentDataTag());
    QVERIFY(ranges);
    QCOMPARE(ranges->count(), count);
    QCOMPARE(*ranges->frame(count / 2), middle);
    QVERIFY(ranges->contains(middle));
    QTEST(QByteArray::fromStdString(ranges->text()), "shortest");
    QVERIFY(timer.elapsed() < 5000);
    const QByteArray said = standardOutputOf([&] { ranges->frame(count), ranges->frame(-1); });
    QCOMPARE(said.count("there are " + QByteArray::number(count) + " frames"), 2);
}

// Against a plain set, over many small unions.
void FrameRangesTest::isWhatItsRangesAre()
{
    unsigned seed = 1;
    const auto random = [&seed](int below) {
        seed = seed * 1103515245U + 12345U;
        return static_cast<int>(seed >> 16) % below;
    };
    for (int round = 0; round < 3000; ++round) {
        std::vector<FrameRange> ranges;
        QMap<int, bool> expected;
        for (int i = random(5); i >= 0; --i) {
            const FrameRange range{random(60) - 30, random(60) - 30, random(7) + 1};
            ranges.push_back(range);
            const int direction = range.first <= range.last ? 1 : -1;
            for (int frame = range.first; (range.last - frame) * direction >= 0;
                 frame += range.step * direction)
                expected.insert(frame, true);
        }
        const auto united = FrameRanges::unite(ranges);
        QCOMPARE(QList<int>(united->begin(), united->end()), expected.keys());
        const std::string text = united->text();
        const auto again = FrameRanges::parse(text);
        QCOMPARE(QList<int>(again->begin(), again->end()), expected.keys());
        QVERIFY(again->text() == text && again->runs().size() == united->runs().size());
    }
}

QTEST_GUILESS_MAIN(FrameRangesTest)
#include "FrameRangesTest.moc"
