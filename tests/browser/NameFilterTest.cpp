#include "browser/NameFilter.h"
#include "support/Test.h"

#include <QDir>

using Halvern::UI::NameFilter;

class NameFilterTest : public Test
{
    Q_OBJECT

private slots:
    // QDir::match() warns of a pattern that it cannot read, so those stand apart.
    void matchesAsQtDoes()
    {
        const QString filters[] = {"*.exr",     "*.EXR *.tar.gz", "*.k",      ".exr;*.a b", "*",
                                   "*.*",       "a?.exr *x*y*",   "[a-c]*",   "[^]*",       "  ",
                                   "*. *.#",    "*.e[x]r",        "*.\u00e9", "a\\b",       "*.a;*.b ; *.c",
                                   "*b*.\u212a"};
        const QString names[] = {"a.exr",   "A.ExR",    ".exr",  "exr",  "b.tar.gz", "b.gz", "x.\u212a",
                                 "x.K",     "a.a b",    "",      "a.",   "a.#",      "axby", "c",
                                 "x/a.exr", "a.\u00c9", "a.b.c", "a\\b", "a\n.exr",  "ab.k"};
        for (const QString& filter : filters) {
            for (const QString& name : names) {
                const QString row = filter + ": " + name;
                QVERIFY2(NameFilter(filter).matches(name) == QDir::match(filter, name), qPrintable(row));
            }
        }
        QVERIFY(NameFilter().matches("a") && NameFilter(QString()).matches(""));
        const NameFilter unreadable("[z-a]* [ab c] *.exr (\\ [x]*");
        for (const char* name : {"a", "b", "c", "ab", "z", "[ab", "("})
            QVERIFY2(!unreadable.matches(name), name);
        QVERIFY(unreadable.matches("a.exr") && unreadable.matches("xyz"));
    }

    // More than one expression can hold, and each pattern counts.
    void takesThousandsOfPatterns()
    {
        QStringList patterns;
        for (int i = 0; i < 10000; ++i)
            patterns += QString(i % 2 ? "*.x%1" : "f%1_*.?xr").arg(i);
        const NameFilter filter(patterns.join(' '));
        for (int i = 0; i < 10000; i += 99) {
            QCOMPARE(filter.matches(QStringLiteral("a.x%1").arg(i)), i % 2 == 1);
            QCOMPARE(filter.matches(QStringLiteral("f%1_a.exr").arg(i)), i % 2 == 0);
        }
    }
};

QTEST_GUILESS_MAIN(NameFilterTest)
#include "NameFilterTest.moc"
