#include "catalogue/NaturalOrder.h"
#include "base/SortKeys.h"
#include "support/Test.h"

using namespace Halvern;
using Halvern::UI::NaturalOrder;

class NaturalOrderTest : public Test
{
    Q_OBJECT

private slots:
    void orders();
};

// The keys of the names, which are in ascending order, are compared in pairs and sorted from the last on.
static void expectAscending(NaturalOrder::Numbers numbers, QByteArrayList names)
{
    std::reverse(names.begin(), names.end());
    Base::SortKeys keys;
    std::vector<int> ascending;
    for (int i = 0; i < names.size(); ++i) {
        keys.appendFrom(
            [&](std::vector<char>& key) { NaturalOrder(numbers).appendKey(names.at(i).constData(), key); });
        QVERIFY2(i == 0 || qstrcmp(keys[keys.size() - 2], keys[keys.size() - 1]) > 0,
                 names.at(i).constData());
        ascending.insert(ascending.begin(), i);
    }
    QCOMPARE(Base::ordered(keys), ascending);
}

void NaturalOrderTest::orders()
{
    for (const auto numbers : {NaturalOrder::DecideAtOnce, NaturalOrder::DecideLast}) {
        expectAscending(numbers, {"", ".", "..", "a", "a.2.exr", "a.10.exr", "a.99999999999999999999.exr"});
        expectAscending(numbers, {"a1", "a9", "a01", "a10", "a001", "ab", "aB", "AA", "b", "\xc3\xa9"});
        expectAscending(numbers, {"a", "a" + QByteArray(253, '1'), "a" + QByteArray(255, '0'), "b"});
    }
    expectAscending(NaturalOrder::DecideAtOnce, {"a1b", "a1c", "a2a", "a10.2", "a11.1"});
    expectAscending(NaturalOrder::DecideLast, {"a2a", "a1b", "a10b", "s1.2.exr", "s2.1.exr", "s1.1.tif"});
}

QTEST_GUILESS_MAIN(NaturalOrderTest)
#include "NaturalOrderTest.moc"
