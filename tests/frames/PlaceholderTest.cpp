#include "frames/Placeholder.h"
#include "support/Test.h"

using namespace Halvern::UI;

class PlaceholderTest : public Test
{
    Q_OBJECT

private slots:
    void writesTokensAndHashes()
    {
        const std::tuple<const char*, const char*, const char*> rows[] = {
            // name, with a token, with hashes
            {"img.####.exr", "img.%04d.exr", "img.####.exr"},
            {"img.#.exr", "img.%d.exr", "img.#.exr"},
            {"a##b#", "a%04d", "a##b#"},
            {"%03d.%d", "%03d.%d", "###.###"},
            {"%x %5", "%x %5", "%x %5"},
        };
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
            const auto text =
                split ? QStringLiteral("%1, %2 to %3").arg(split->name).arg(split->first).arg(split->last)
                      : QString();
            QCOMPARE(text, QString(wanted));
        }
    }
};

QTEST_GUILESS_MAIN(PlaceholderTest)
#include "PlaceholderTest.moc"
