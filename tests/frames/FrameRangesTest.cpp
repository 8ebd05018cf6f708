#include "frames/FrameRanges.h"
#include "support/Test.h"

#include <cstdio>
#include <unistd.h>

using Halvern::Base::FrameRange;
using Halvern::Base::FrameRanges;

namespace {

// What the work prints on standard output. A failing check belongs outside: its message would be caught too.
QByteArray standardOutputOf(const std::function<void()>& work)
{
    std::FILE* file = std::tmpfile();
    std::fflush(stdout);
    const int previous = ::dup(STDOUT_FILENO);
    ::dup2(::fileno(file), STDOUT_FILENO);
    work();
    std::fflush(stdout);
    ::dup2(previous, STDOUT_FILENO);
    ::close(previous);
    QByteArray text(static_cast<int>(::lseek(::fileno(file), 0, SEEK_END)), '\0');
    const ssize_t read = ::pread(::fileno(file), text.data(), static_cast<std::size_t>(text.size()), 0);
    std::fclose(file);
    return text.left(static_cast<int>(read));
}

} // namespace

class FrameRangesTest : public Test
{
    Q_OBJECT

private slots:
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
        const QByteArrayList texts{"1-",  "1,,2", "1,",    "a",      "+1",          "1-2-3",
                                   "5x2", "1 2",  "1-9x0", "1-9x-2", "1-2147483648"};
        const QByteArrayList displayNames{"", "x.#.exr", "x 1-9 )", "x 1-9 ( 1-3 a )", "x 1-9,0"};
        QByteArrayList accepted;
        const QByteArray said = standardOutputOf([&] {
            for (const QByteArray& text : texts)
                accepted += FrameRanges::parse(text.constData()) ? text : "";
            for (const QByteArray& name : displayNames)
                accepted += FrameRanges::parseDisplayName(name.constData()) ? name + " (name)" : "";
        });
        QCOMPARE(accepted.join(), QByteArray());
        QCOMPARE(said.count('\n'), texts.size() + displayNames.size());
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
};

QTEST_GUILESS_MAIN(FrameRangesTest)
#include "FrameRangesTest.moc"
