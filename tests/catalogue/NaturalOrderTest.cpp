#include "catalogue/NaturalOrder.h"
#include "support/Test.h"

using namespace Halvern::UI;

class NaturalOrderTest : public Test
{
    Q_OBJECT

private slots:
    void orders();
};

// Every pair of the names, which are in ascending order, is compared both ways round.
static void expectAscending(int (*compare)(const char*, const char*), const QByteArrayList& names)
{
    for (int i = 0; i < names.size(); ++i) {
        for (int j = 0; j < names.size(); ++j) {
            const int answer = compare(names.at(i).constData(), names.at(j).constData());
            const QByteArray pair = names.at(i) + " and " + names.at(j);
            QVERIFY2((answer < 0) == (i < j) && (answer > 0) == (i > j), pair.constData());
        }
    }
}

void NaturalOrderTest::orders()
{
    for (const auto compare : {NaturalOrder::compare, NaturalOrder::compareForSequences}) {
        expectAscending(compare, {"", ".", "..", "a", "a.2.exr", "a.10.exr", "a.99999999999999999999.exr"});
        expectAscending(compare, {"a1", "a9", "a01", "a10", "a001", "ab", "aB", "AA", "b", "\xc3\xa9"});
    }
    expectAscending(NaturalOrder::compare, {"a1b", "a1c", "a2a", "a10.2", "a11.1"});
    expectAscending(NaturalOrder::compareForSequences,
                    {"a2a", "a1b", "a10b", "s1.2.exr", "s2.1.exr", "s1.1.tif"});
}

QTEST_GUILESS_MAIN(NaturalOrderTest)
#include "NaturalOrderTest.moc"
