#include "browser/BrowserWindow.h"
#include "browser/NameFilter.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <algorithm>
#include <functional>
#include <unistd.h>
#include <utime.h>

using namespace Halvern::UI;

namespace {

using Files = std::vector<FileInfo*>;

// Answers as a function does.
struct Evaluator : FileSequenceEvaluator
{
    explicit Evaluator(std::function<Files(Evaluator&, Files)> rows)
        : answer(std::move(rows))
    {
    }
    Files evaluateFiles(Files files) override { return answer(*this, std::move(files)); }
    std::function<Files(Evaluator&, Files)> answer;
};

} // namespace

/// What the list shows of a directory, and in which order.
class DirectoryModelTest : public Test
{
    Q_OBJECT

private slots:
    void filtersRows()
    {
        const QByteArray many = 'b' + QByteArray(40, 'a') + "xcb" + QByteArray(40, 'a');
        QVERIFY(make({"dark/", "day.01.exr", "day.02.exr", "notes.txt", "Other.TXT", ".hidden.txt"}));
        QVERIFY(SampleFiles::make(path(), many));
        BrowserWindow window(path());
        // Pattern, prefix, rows.
        const std::tuple<const char*, const char*, QStringList> table[] = {
            {"", ".h", {".hidden.txt"}},
            {"", "oTH", {"Other.TXT"}},
            {"", "day.%02d", {"day.##.exr 1-2"}},
            {"", "%99999999999d", {}},
            {"*b*a*a*a*a*a*a*a*a*a*a*a*a?c*", "", {many, "dark/"}},
            {"[!d]*.t?t [n-z]*", "", {"dark/", "notes.txt", "Other.TXT"}},
            {"day.#.exr *.none", "d", {"dark/", "day.##.exr 1-2"}}};
        for (const auto& [pattern, prefix, expected] : table) {
            window.proxy()->setFilterPattern(pattern);
            window.proxy()->setNamePrefix(prefix);
            window.proxy()->apply();
            QCOMPARE(window.rows(), expected);
        }
        QStringList filters{"*.exr", "*.txt *.dpx"};
        window.browser.setFilters(filters, true);
        QCOMPARE(window.rows(), (QStringList{"dark/", "day.##.exr 1-2"}));
        window.control<QComboBox>("filterCombo")->setCurrentIndex(1);
        QCOMPARE(window.rows(), (QStringList{"dark/", "notes.txt", "Other.TXT"}));
        QTest::keyClicks(window.control<QComboBox>("filterCombo"), " *");
        QCOMPARE(window.rows().size(), 5);
    }

    void sortsByEveryColumn()
    {
        const SampleFolder folder{"z/"};
        utimbuf times{0, 1000000};
        for (const char* name : {"n", "a", "B"}) {
            ++times.modtime;
            QVERIFY(SampleFiles::make(folder.path(), name, *name == 'a' ? 1048576 : 1024));
            QCOMPARE(::utime(qPrintable(folder.filePath(name)), &times), 0);
        }
        const BrowserWindow window(folder.path());
        QCOMPARE(window.rows(), (QStringList{"a", "B", "n", "z/"}));
        window.list()->sortByColumn(1, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"z/", "B", "n", "a"}));
        QCOMPARE(window.proxy()->index(1, 1).data(), QVariant(1024ULL));
        QCOMPARE(window.proxy()->index(3, 1).data(), QVariant("1024KB"));
        window.list()->sortByColumn(2, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"n", "a", "B", "z/"}));

        // What is found out anew is ordered anew, and names too long for a sort key with the others.
        const QString longName(200, 'm');
        QVERIFY(SampleFiles::make(folder.path(), {"c", longName.toLatin1().constData()}));
        QVERIFY(QFile::resize(folder.filePath("n"), 3000000));
        window.list()->sortByColumn(1, Qt::AscendingOrder);
        window.model()->refreshList();
        QTRY_COMPARE(window.rows().mid(3), (QStringList{"B", "a", "n"}));
        window.list()->sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(window.rows(), (QStringList{"z/", "n", longName, "c", "B", "a"}));
    }

    // Sorted by another column, equal rows stay as they stand; built anew, they come as they were given.
    // Names with equal keys come the other way round.
    void equalRowsKeepTheirOrder()
    {
        const SampleFolder folder{"d", "b", "B", "a", "c"};
        const QStringList given{"c", "B", "d", "a", "b"};
        Evaluator evaluator([&](Evaluator& /*self*/, const Files& files) {
            Files rows;
            for (const QString& name : given)
                rows.push_back(*std::find_if(files.begin(), files.end(),
                                             [&](const FileInfo* file) { return file->fileName() == name; }));
            return rows;
        });
        for (const QString& name : given) {
            const utimbuf times{0, name == "d" ? 2000000 : 1000000};
            QCOMPARE(::utime(qPrintable(folder.filePath(name)), &times), 0);
        }
        BrowserWindow window(folder.path());
        window.browser.setFileSequenceEvaluator(&evaluator);
        QCOMPARE(window.rows(), (QStringList{"a", "b", "B", "c", "d"}));
        // Column, order, whether the rows are built anew, and the rows.
        const std::tuple<int, Qt::SortOrder, bool, const char*> steps[] = {
            {0, Qt::DescendingOrder, false, "dcbBa"}, {1, Qt::AscendingOrder, false, "abBcd"},
            {2, Qt::AscendingOrder, false, "abBcd"},  {2, Qt::DescendingOrder, false, "dabBc"},
            {2, Qt::DescendingOrder, true, "dcBab"},  {2, Qt::AscendingOrder, true, "cBabd"}};
        for (const auto& [column, order, isNew, expected] : steps) {
            window.list()->sortByColumn(column, order);
            if (isNew)
                window.model()->buildRunningList();
            QCOMPARE(window.rows().join(QString()), QString(expected));
        }
        window.list()->sortByColumn(-1, Qt::AscendingOrder);
        QCOMPARE(window.rows(), given);
    }

    void evaluatorDecides()
    {
        const SampleFolder folder{"a", "b"};
        const SampleFolder other{"c", "d"};
        BrowserWindow window(folder.path());
        const auto mode = QAbstractItemModelTester::FailureReportingMode::Warning;
        const QAbstractItemModelTester model(window.model(), mode);
        const QAbstractItemModelTester proxy(window.proxy(), mode);
        int asked = 0;
        // Makes one row of two files, and one of nothing.
        Evaluator evaluator([&](Evaluator& self, Files files) {
            ++asked;
            const auto isFolder = [](FileInfo* file) { return file->isDirectory(); };
            files.erase(std::remove_if(files.begin(), files.end(), isFolder), files.end());
            return Files{nullptr, self.buildFileSequence("everything", {1, 2}, files)};
        });
        // Each way to change how rows are built asks it once, at once.
        window.browser.setFileSequenceEvaluator(&evaluator);
        QCOMPARE(asked, 1);
        window.control<QCheckBox>("splitCheck")->click();
        QCOMPARE(asked, 2);
        AppSettings().setValue(QString("FileBrowser/splitsequences"), false);
        window.browser.updateFromPreferences();
        QCOMPARE(asked, 3);
        QTRY_COMPARE(window.rows(), QStringList("everything"));

        // Asked about one directory, it goes to another.
        evaluator.answer = [&](Evaluator& /*self*/, const Files& files) {
            window.browser.setDirectory(QDir(other.path()), false, true);
            return files;
        };
        window.model()->refreshList();
        QTRY_COMPARE(window.browser.directory(), QDir(other.path()));
        window.browser.setFileSequenceEvaluator(nullptr);
        QTRY_COMPARE(window.rows(), (QStringList{"c", "d"}));
    }

    void oddNamesAreShown()
    {
        const SampleFolder folder{"bytes\xff\xfe", "<b>bold"};
        QVERIFY(QFile::link(".", folder.filePath("loop")) && QFile::link("self", folder.filePath("self")));
        for (const char* name : {"%d", "%s%n", "####", "<b>&amp;", "new\nline", "*", "-1"})
            QVERIFY(QDir(folder.path()).mkdir(name) &&
                    SampleFiles::make(folder.filePath(name), {"x.1.exr", "x.2.exr"}));
        QVERIFY(SampleFiles::make(folder.path(), QByteArray(255, 'L')));
        BrowserWindow window(folder.path());
        QCOMPARE(window.rows().size(), 12);
        for (const QString& name : window.rows()) {
            // Nothing is known of a link to nothing, and all others have their own attributes.
            const QVariant time = window.row(name).siblingAtColumn(2).data();
            QCOMPARE(time.toDateTime().toSecsSinceEpoch() == 0, name == "self");
            window.clickRow(name);
            // A link to its own folder changes nothing.
            if (name.endsWith('/') && name != "loop/") {
                QTRY_COMPARE(window.rows(), QStringList("x.#.exr 1-2"));
                window.clickRow("x.#.exr 1-2");
                QCOMPARE(window.browser.selectedFiles(), QStringList(folder.filePath(name + "x.#.exr 1-2")));
                window.control("backButton")->click();
                QTRY_VERIFY(window.isRead() && window.rows().contains(name));
            }
            QVERIFY(window.browser.directory().path() == folder.path() &&
                    !window.browser.selectedFiles().isEmpty());
        }
        window.browser.grab();
        ::unlink((QFile::encodeName(folder.path()) + "/bytes\xff\xfe").constData());
    }

    // QDir::match() warns of a pattern that it cannot read, so those stand apart.
    void filtersAsQtDoes()
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

        // Each of thousands of patterns counts.
        QStringList patterns;
        for (int i = 0; i < 10000; ++i)
            patterns += QString("f%1_*.?xr").arg(i);
        const NameFilter many(patterns.join(' '));
        for (int i = 0; i < 20000; i += 99)
            QCOMPARE(many.matches(QString("f%1_a.exr").arg(i)), i < 10000);
    }
};

QTEST_MAIN(DirectoryModelTest)
#include "DirectoryModelTest.moc"
