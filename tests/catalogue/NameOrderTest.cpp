#include "catalogue/NameOrder.h"
#include "catalogue/FileInfo.h"
#include "support/Test.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>

using namespace Halvern::UI;

/// The order of many names, found while they arrive or at once.
class NameOrderTest : public Test
{
    Q_OBJECT

private slots:
    void ordersAsAStableSort();
    void keepsPlacesWhereOneHasNoRank();

private:
    static std::vector<FileInfo> someEntries(int count);
};

std::vector<FileInfo> NameOrderTest::someEntries(int count)
{
    std::vector<FileInfo> entries;
    entries.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        entries.emplace_back(QByteArray("shot_010_comp.").append(QByteArray::number(i)).constData(), false);
    return entries;
}

// Enough for several pieces, and each name many times.
void NameOrderTest::ordersAsAStableSort()
{
    std::vector<FileInfo> some = someEntries(300);
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same names in every run
    std::vector<FileInfo*> entries(70000);
    std::generate(entries.begin(), entries.end(), [&] { return &some[random() % some.size()]; });
    std::vector<int> places(entries.size());
    std::iota(places.begin(), places.end(), 0);
    const auto key = [&](int place) { return entries[static_cast<std::size_t>(place)]->getStringSortName(); };
    std::stable_sort(places.begin(), places.end(),
                     [&](int a, int b) { return std::strcmp(key(a), key(b)) < 0; });

    NameOrder arriving;
    for (const FileInfo* entry : entries)
        arriving.add(entry);
    arriving.finish();
    const NameOrder atOnce(entries);
    for (const NameOrder* order : std::initializer_list<const NameOrder*>{&arriving, &atOnce}) {
        QCOMPARE(order->size(), entries.size());
        QVERIFY(order->places() == places);
        std::vector<FileInfo*> sorted = entries;
        order->apply(sorted);
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            QCOMPARE(order->name(i), sorted[i]->fileName());
            QVERIFY(i == 0 ||
                    order->ranks()[i] - order->ranks()[i - 1] == (key(places[i - 1]) != key(places[i])));
        }
    }
}

void NameOrderTest::keepsPlacesWhereOneHasNoRank()
{
    FileInfo b("b", false);
    FileInfo a("a", false);
    FileInfo tooLong(QByteArray(129, 'a').constData(), false);
    const NameOrder order({&b, nullptr, &a, &tooLong, &b});
    QCOMPARE(order.places(), (std::vector<int>{0, 1, 2, 3, 4}));
    QCOMPARE(order.name(1), "");
    QCOMPARE(order.name(2), "a");
    QCOMPARE(order.name(3), tooLong.fileName());
    QCOMPARE(order.ranks()[1], NameOrder::NoRank);
    QCOMPARE(order.ranks()[3], NameOrder::NoRank);
    QVERIFY(order.ranks()[2] < order.ranks()[0]);
    QCOMPARE(order.ranks()[4], order.ranks()[0]);
}

QTEST_GUILESS_MAIN(NameOrderTest)
#include "NameOrderTest.moc"
