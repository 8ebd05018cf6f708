#include "browser/BrowserWindow.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QPointer>
#include <algorithm>
#include <functional>
#include <unistd.h>

using namespace Halvern::UI;

namespace {

// Makes one row of two files, and one of nothing.
class OneForTwo : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        interrupt();
        if (dies) {
            delete this;
            return {files.front()};
        }
        const auto isFolder = [](FileInfo* file) { return file->isDirectory(); };
        files.erase(std::remove_if(files.begin(), files.end(), isFolder), files.end());
        return {nullptr, buildFileSequence("everything", {1, 2}, files)};
    }
    std::function<void()> interrupt = [] {};
    bool dies = false;
};

// Ends the browser that asks, if it is to.
class Closer : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        ++asked;
        if (browser)
            browser->deleteLater();
        return files;
    }
    FileBrowser* browser = nullptr; // it is asked no more once that is gone
    int asked = 0;
};

// Gives the files of the given names, in their order.
class InOrder : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        rows.clear();
        for (const QString& name : names) {
            const auto isNamed = [&name](const FileInfo* file) { return name == file->fileName(); };
            const auto found = std::find_if(files.begin(), files.end(), isNamed);
            if (found != files.end())
                rows.push_back(*found);
        }
        return rows;
    }
    QStringList names;
    std::vector<FileInfo*> rows;
};

} // namespace

/// What the list shows of a directory, and in which order.
class DirectoryModelTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }

    void modelsAreConsistent()
    {
        const QTemporaryDir first;
        const QTemporaryDir second;
        QVERIFY(SampleFiles::makeFrames(first.path(), "a%d.txt", 1, 300));
        QVERIFY(SampleFiles::make(second.path(), {"b"}));
        BrowserWindow window(first.path());
        const auto mode = QAbstractItemModelTester::FailureReportingMode::Warning;
        const QAbstractItemModelTester model(window.model(), mode);
        const QAbstractItemModelTester proxy(window.proxy(), mode);
        QTRY_COMPARE(window.rows().size(), 300);
        window.browser.setDirectory(QDir(second.path()), false, true);
        QTRY_COMPARE(window.rows(), QStringList("b"));
        window.control<QCheckBox>("sequencesCheck")->click();
        window.list()->sortByColumn(1, Qt::DescendingOrder);
        QVERIFY(QDir(second.path()).removeRecursively());
        window.browser.setDirectory(QDir(first.path()), false, true);
        QTRY_COMPARE(window.rows().size(), 300);
    }

    void filtersRows()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("dark")));
        QVERIFY(SampleFiles::make(folder.path(),
                                  {"day.01.exr", "day.02.exr", "notes.txt", "Other.TXT", ".hidden.txt"}));
        const QByteArray many = 'b' + QByteArray(40, 'a') + "xcb" + QByteArray(40, 'a');
        QVERIFY(SampleFiles::make(folder.path(), many));
        const BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows().size(), 5);
        // Pattern, prefix, rows.
        const std::tuple<const char*, const char*, QStringList> table[] = {
            {"", ".h", {".hidden.txt"}},
            {"", "oTH", {"Other.TXT"}},
            {"", "day.%02d", {"day.##.exr 1-2"}},
            {"", "%99999999999d", {}},
            {"*b*a*a*a*a*a*a*a*a*a*a*a*a?c*", "", {many, "dark/"}},
            {"*.[ *.[0 day*", "", {"dark/", "day.##.exr 1-2"}},
            {"[!d]*.t?t [n-z]*", "", {"dark/", "notes.txt", "Other.TXT"}},
            {"day.#.exr *.none", "d", {"dark/", "day.##.exr 1-2"}}};
        for (const auto& [pattern, prefix, expected] : table) {
            window.proxy()->setFilterPattern(pattern);
            window.proxy()->setNamePrefix(prefix);
            window.proxy()->apply();
            QCOMPARE(window.rows(), expected);
        }
    }

    void sortsByEveryColumn()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("z")));
        qint64 time = 1000000;
        for (const char* name : {"n", "a", "B"}) {
            QVERIFY(SampleFiles::make(folder.path(), name, *name == 'a' ? 1048576 : 1024));
            QFile file(folder.path() + '/' + name);
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(
                file.setFileTime(QDateTime::fromSecsSinceEpoch(++time), QFileDevice::FileModificationTime));
        }
        const BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows(), (QStringList{"a", "B", "n", "z/"}));
        QTRY_VERIFY(window.proxy()->index(0, 2).data().toDateTime().toSecsSinceEpoch() > 0);
        window.list()->sortByColumn(1, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"z/", "B", "n", "a"}));
        QCOMPARE(window.proxy()->index(1, 1).data(), QVariant(1024ULL));
        QCOMPARE(window.proxy()->index(3, 1).data(), QVariant("1024KB"));
        for (const int column : {0, 1, 2}) {
            const QVariant alignment = window.proxy()->index(3, column).data(Qt::TextAlignmentRole);
            QCOMPARE((alignment.toInt() & Qt::AlignRight) != 0, column == 1);
            QCOMPARE(window.proxy()->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole), alignment);
        }
        window.list()->sortByColumn(2, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"n", "a", "B", "z/"}));

        // What is found out anew is ordered anew, and names too long for a sort key with the others.
        const QString longName(200, 'm');
        QVERIFY(SampleFiles::make(folder.path(), {"c", longName.toLatin1().constData()}));
        QVERIFY(QFile::resize(folder.path() + "/n", 3000000));
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
        const QTemporaryDir folder;
        InOrder evaluator;
        QVERIFY(SampleFiles::make(folder.path(), {"d", "b", "B", "a", "c"}));
        evaluator.names = QStringList{"c", "B", "d", "a", "b"};
        for (const char* name : {"a", "b", "B", "c", "d"}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadWrite));
            QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(*name == 'd' ? 2000000 : 1000000),
                                     QFileDevice::FileModificationTime));
        }
        BrowserWindow window(folder.path());
        window.browser.setFileSequenceEvaluator(&evaluator);
        QTRY_COMPARE(window.rows(), (QStringList{"a", "b", "B", "c", "d"}));
        QTRY_VERIFY(window.model()->hasAllAttributes());
        window.list()->sortByColumn(0, Qt::DescendingOrder);
        QCOMPARE(window.rows(), (QStringList{"d", "c", "b", "B", "a"}));
        window.list()->sortByColumn(1, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"a", "b", "B", "c", "d"}));
        window.list()->sortByColumn(2, Qt::AscendingOrder);
        QCOMPARE(window.rows(), (QStringList{"a", "b", "B", "c", "d"}));
        window.list()->sortByColumn(2, Qt::DescendingOrder);
        QCOMPARE(window.rows(), (QStringList{"d", "a", "b", "B", "c"}));
        window.model()->buildRunningList();
        QCOMPARE(window.rows(), (QStringList{"d", "c", "B", "a", "b"}));
        window.list()->sortByColumn(2, Qt::AscendingOrder);
        window.model()->buildRunningList();
        QCOMPARE(window.rows(), (QStringList{"c", "B", "a", "b", "d"}));
        for (const int column : {1, 2}) {
            for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                window.list()->sortByColumn(0, order);
                window.list()->sortByColumn(column, order);
                window.proxy()->showAttributes();
                const QStringList shown = window.rows();
                window.proxy()->invalidate();
                QCOMPARE(shown, window.rows());
            }
        }
        window.list()->sortByColumn(-1, Qt::AscendingOrder);
        QCOMPARE(window.rows(), evaluator.names);

        // An evaluator may rename what it gave.
        evaluator.rows.front()->setFileName("new");
        window.proxy()->setNamePrefix("n");
        window.proxy()->apply();
        QCOMPARE(window.rows(), QStringList("new"));
    }

    void rowsAreEmptyDuringARead()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a", "b"}));
        BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
        window.clickRow("b");
        int selections = 0;
        connect(&window.browser, &FileBrowser::fileSelected, this, [&] { ++selections; });
        window.model()->refreshList();
        QCOMPARE(window.rows(), (QStringList{"", ""}));
        window.list()->sortByColumn(1, Qt::DescendingOrder);
        const QPoint place = window.list()->visualRect(window.proxy()->index(0, 0)).center();
        QTest::mouseClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(QMetaObject::invokeMethod(&window.browser, "nextClicked"));
        QCOMPARE(selections, 0);
        QCOMPARE(window.edit()->text(), folder.path() + "/b");
        QVERIFY(window.browser.pickedFiles().isEmpty());
        QTRY_VERIFY(window.rows().contains("b"));
    }

    void evaluatorDecides()
    {
        const QTemporaryDir folder;
        const QTemporaryDir other;
        QVERIFY(SampleFiles::make(folder.path(), {"a", "b"}));
        QVERIFY(SampleFiles::make(other.path(), {"c", "d"}));
        OneForTwo evaluator;
        BrowserWindow window(folder.path());
        window.browser.setFileSequenceEvaluator(&evaluator);
        QTRY_COMPARE(window.rows(), QStringList("everything"));
        window.proxy()->sort(1);

        // Asked about one directory, it goes to another.
        evaluator.interrupt = [&] { window.browser.setDirectory(QDir(other.path()), false, true); };
        window.model()->refreshList();
        QTRY_COMPARE(window.browser.directory(), QDir(other.path()));
        window.browser.setFileSequenceEvaluator(nullptr);
        QTRY_COMPARE(window.rows(), (QStringList{"c", "d"}));

        // Asked, it wants to be asked again; then it goes, between two questions or while it is asked.
        for (const bool dies : {false, true}) {
            auto* mortal = new OneForTwo;
            mortal->interrupt = [&] { window.browser.setSequencesEnabled(true); };
            window.browser.setFileSequenceEvaluator(mortal);
            QCOMPARE(window.rows(), QStringList("everything"));
            mortal->dies = dies;
            if (!dies)
                delete mortal;
            window.model()->refreshList();
            QTRY_COMPARE(window.rows(), (QStringList{"c", "d"}));
        }
    }

    // Each way to change how rows are built asks the evaluator once, at once; it may end the browser.
    void evaluatorIsAskedOnceAndMayEndItsBrowser()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a", "b"}));
        for (const bool byBox : {true, false}) {
            Closer closer;
            const QPointer<FileBrowser> browser = new FileBrowser;
            browser->setSequencesEnabled(true);
            browser->setFileSequenceEvaluator(&closer);
            QCOMPARE(closer.asked, 1);
            closer.browser = browser;
            AppSettings().setValue(QStringLiteral("FileBrowser/splitsequences"), true);
            if (byBox)
                browser->findChild<QCheckBox*>("splitCheck")->click();
            else
                browser->updateFromPreferences();
            QCOMPARE(closer.asked, 2);
            QTRY_VERIFY(!browser);
        }
    }

    // Its rows may be its own: it frees them when it is asked again, and has the list painted.
    void evaluatorMayFreeItsRows()
    {
        struct Owner : FileSequenceEvaluator
        {
            std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> /*files*/) override
            {
                rows.clear();
                if (browser)
                    browser->grab();
                rows.push_back(std::make_unique<FileInfo>("own", false));
                return {rows.back().get()};
            }
            std::vector<std::unique_ptr<FileInfo>> rows;
            FileBrowser* browser = nullptr;
        };
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a"}));
        Owner owner;
        BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows(), QStringList("a"));
        window.browser.setFileSequenceEvaluator(&owner);
        window.list()->setCurrentIndex(window.proxy()->index(0, 0));
        owner.browser = &window.browser;
        window.browser.setFileSequenceEvaluator(&owner);
        QCOMPARE(window.rows(), QStringList("own"));
        QVERIFY(window.list()->selectionModel()->isRowSelected(0, QModelIndex()));
        window.browser.setFileSequenceEvaluator(nullptr);
        QCOMPARE(window.rows(), QStringList("a"));
    }

    void oddNamesAreShown()
    {
        const QTemporaryDir folder;
        QVERIFY(QFile::link(".", folder.filePath("loop")) && QFile::link("self", folder.filePath("self")));
        for (const char* name : {"%d", "%s%n", "####", "<b>&amp;", "new\nline", "*", "-1"})
            QVERIFY(QDir(folder.path()).mkdir(name) &&
                    SampleFiles::make(folder.filePath(name), {"x.1.exr", "x.2.exr"}));
        QVERIFY(SampleFiles::make(folder.path(), QByteArray(255, 'L')));
        QVERIFY(SampleFiles::make(folder.path(), {"bytes\xff\xfe", "<b>bold"}));
        BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows().size(), 12);
        for (const QString& name : window.rows()) {
            window.clickRow(name);
            // A link to its own folder changes nothing.
            if (name.endsWith('/') && name != "loop/") {
                QTRY_COMPARE(window.rows(), QStringList("x.#.exr 1-2"));
                window.clickRow("x.#.exr 1-2");
                QCOMPARE(window.browser.selectedFiles(), QStringList(folder.filePath(name + "x.#.exr 1-2")));
                window.control("backButton")->click();
                QTRY_VERIFY(window.rows().contains(name));
            }
            QVERIFY(window.browser.directory().path() == folder.path() &&
                    !window.browser.selectedFiles().isEmpty());
        }
        window.browser.grab();
        ::unlink((QFile::encodeName(folder.path()) + "/bytes\xff\xfe").constData());
    }
};

QTEST_MAIN(DirectoryModelTest)
#include "DirectoryModelTest.moc"
