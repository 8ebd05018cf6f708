#include "catalogue/NaturalOrder.h"
#include "support/Test.h"

using namespace Halvern::UI;

class NaturalOrderTest : public Test
{
    Q_OBJECT

private slots:
    void orders_data();
    void orders();
};

// The names of a row are in ascending order; every pair of them is compared, both ways round.
void NaturalOrderTest::orders_data()
{
    QTest::addColumn<bool>("forSequences");
    QTest::addColumn<QByteArrayList>("names");

    const auto both = [](const char* row, const QByteArrayList& names) {
        QTest::addRow("%s, plain", row) << false << names;
        QTest::addRow("%s, for sequences", row) << true << names;
    };
    both("numbers", {"a", "a.2.exr", "a.10.exr", "a.11.exr", "a.99999999999999999999.exr"});
    both("leading zeros are digits", {"a1", "a9", "a01", "a09", "a10", "a001"});
    both("case", {"ab", "aB", "Aa", "AA", "b", "B", "Ba", "c"});
    both("prefixes", {"", ".", "..", "a", "a.", "aa"});
    both("bytes beyond ASCII", {"z", "\x7f", "\xc3\xa9", "\xff"});
    both("digits beside letters", {"a-", "a1", "a12", "a:", "ab"});
    QTest::newRow("a number decides at once")
        << false << QByteArrayList{"a1b", "a1c", "a2a", "a10.2", "a11.1"};
    QTest::newRow("frames stand together")
        << true << QByteArrayList{"a2a", "a1b", "a10b", "s1.1.exr", "s1.2.exr", "s2.1.exr", "s1.1.tif"};
}

void NaturalOrderTest::orders()
{
    QFETCH(bool, forSequences);
    QFETCH(QByteArrayList, names);
    const auto compare = forSequences ? NaturalOrder::compareForSequences : NaturalOrder::compare;
    for (int i = 0; i < names.size(); ++i) {
        for (int j = 0; j < names.size(); ++j) {
            const int answer = compare(names.at(i).constData(), names.at(j).constData());
            const QByteArray pair = names.at(i) + " and " + names.at(j);
            QVERIFY2((answer < 0) == (i < j) && (answer > 0) == (i > j), pair.constData());
        }
    }
}

QTEST_GUILESS_MAIN(NaturalOrderTest)
#include "NaturalOrderTest.moc"
