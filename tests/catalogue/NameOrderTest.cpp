#include "catalogue/NameOrder.h"
#include "catalogue/FileInfo.h"
#include "catalogue/NaturalOrder.h"
#include "support/Test.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>

using namespace Halvern;
using namespace Halvern::UI;

/// The orders of many names: by sort key, found while they arrive or at once, and the natural one.
class NameOrderTest : public Test
{
    Q_OBJECT

private slots:
    // Each name many times.
    void ordersAsAStableSort()
    {
        std::vector<FileInfo> some;
        some.reserve(300);
        for (int i = 0; i < 300; ++i)
            some.emplace_back(qPrintable(QString::asprintf("shot_010_comp.%d", i)), false);
        std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same names in every run
        std::vector<FileInfo*> entries(70000);
        std::generate(entries.begin(), entries.end(), [&] { return &some[random() % some.size()]; });
        std::vector<int> places(entries.size());
        std::iota(places.begin(), places.end(), 0);
        const auto key = [&](int place) { return entries[std::size_t(place)]->getStringSortName(); };
        std::stable_sort(places.begin(), places.end(),
                         [&](int a, int b) { return std::strcmp(key(a), key(b)) < 0; });

        const NameOrder order(entries);
        QVERIFY(order.size() == entries.size() && order.places() == places);
        std::vector<FileInfo*> sorted = entries;
        order.apply(sorted);
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            QCOMPARE(order.name(i), sorted[i]->fileName());
            QVERIFY(i == 0 ||
                    order.ranks()[i] - order.ranks()[i - 1] == (key(places[i - 1]) != key(places[i])));
        }
    }

    void ordersNaturally()
    {
        const auto atOnce = NaturalOrder::DecideAtOnce;
        const auto last = NaturalOrder::DecideLast;
        using Numbers = QVector<NaturalOrder::Numbers>;
        const std::pair<Numbers, QByteArrayList> rows[] = {
            {{atOnce, last}, {"", ".", "..", "a", "a.2.exr", "a.10.exr", "a.99999999999999999999.exr"}},
            {{atOnce, last}, {"a1", "a9", "a01", "a10", "a001", "ab", "aB", "AA", "b", "\xc3\xa9"}},
            {{atOnce, last}, {"a", "a" + QByteArray(253, '1'), "a" + QByteArray(255, '0'), "b"}},
            {{atOnce}, {"a1b", "a1c", "a2a", "a10.2", "a11.1"}},
            {{last}, {"a2a", "a1b", "a10b", "s1.2.exr", "s2.1.exr", "s1.1.tif"}}};
        for (const auto& [orders, names] : rows) {
            for (const auto numbers : orders) {
                // From the last name on, so that sorting has to turn them round.
                Base::SortKeys keys;
                std::vector<int> ascending;
                for (int i = int(names.size()) - 1; i >= 0; --i) {
                    ascending.push_back(i);
                    keys.appendFrom([&, name = names.at(i).constData()](std::vector<char>& key) {
                        NaturalOrder(numbers).appendKey(name, key);
                    });
                }
                QCOMPARE(Base::ordered(keys), ascending);
            }
        }
    }
};

QTEST_GUILESS_MAIN(NameOrderTest)
#include "NameOrderTest.moc"
