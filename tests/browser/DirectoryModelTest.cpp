#include "browser/BrowserWindow.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QAbstractItemModelTester>
#include <QDateTime>
#include <QFont>
#include <QHeaderView>
#include <unistd.h>

using namespace Halvern::UI;

/// What the list shows of a directory, and in which order.
class DirectoryModelTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }
    void showsSizes_data();
    void showsSizes();
    void showsFoldersAndSequences();
    void modelsAreConsistent();
    void filtersRows_data();
    void filtersRows();
    void turnsTokensIntoHashes_data();
    void turnsTokensIntoHashes();
    void sortsByEveryColumn();
    void equalNamesAreLessBothWays();
    void longNamesAreCompared();
    void rowsAreEmptyDuringARead();
    void evaluatorDecides();
    void evaluatorMayReturnNull();
    void evaluatorMayLeaveTheDirectory();
    void oddNamesAreShown();
};

void DirectoryModelTest::showsSizes_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<QVariant>("shown");
    QTest::newRow("empty") << 0 << QVariant(0ULL);
    QTest::newRow("last number") << 1024 << QVariant(1024ULL);
    QTest::newRow("first with a unit") << 1025 << QVariant("1KB");
    QTest::newRow("cut") << 2047 << QVariant("1KB");
    QTest::newRow("last KB") << 1048576 << QVariant("1024KB");
    QTest::newRow("first MB") << 1048577 << QVariant("1MB");
}

void DirectoryModelTest::showsSizes()
{
    QFETCH(int, bytes);
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), "file", bytes));
    const BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows(), QStringList("file"));
    QTRY_VERIFY(window.proxy()->index(0, 2).data().toDateTime().toSecsSinceEpoch() > 0);
    QTEST(window.proxy()->index(0, 1).data(), "shown");
    QCOMPARE(window.proxy()->index(0, 1).data(Qt::EditRole), window.proxy()->index(0, 1).data());
}

void DirectoryModelTest::showsFoldersAndSequences()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("sub")));
    QVERIFY(SampleFiles::make(folder.path(), {"s.001.exr", "s.002.exr", "s.004.exr", "note"}));
    const BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows(), (QStringList{"note", "s.###.exr 1-4 ( 1-2 4 )", "sub/"}));
    const QModelIndex sequence = window.row("s.###.exr 1-4 ( 1-2 4 )");
    const QModelIndex sub = window.row("sub/");
    QCOMPARE(sub.data(Qt::UserRole), QVariant("sub"));
    QCOMPARE(sequence.data(Qt::UserRole), QVariant("s.###.exr 1-4"));
    QCOMPARE(sub.sibling(sub.row(), 1).data(), QVariant(""));
    QCOMPARE(sub.data(Qt::FontRole).value<QFont>().weight(), 75);
    QVERIFY(!sequence.data(Qt::FontRole).isValid());
    const FileBrowser::DirectoryModel& model = *window.model();
    QCOMPARE(model.getFullFilePath(window.proxy()->mapToSource(sequence)), folder.path() + "/s.###.exr 1-4");
    QCOMPARE(model.headerData(0, Qt::Horizontal), QVariant("Name"));
    QCOMPARE(model.headerData(1, Qt::Vertical), QVariant("Size"));
    QCOMPARE(model.headerData(2, Qt::Horizontal), QVariant("Modified"));
    QVERIFY(!model.headerData(3, Qt::Horizontal).isValid());
    QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());
    QVERIFY(!model.data(model.index(model.rowCount(), 0), Qt::DisplayRole).isValid());

    // In printf form where that is the default of the class.
    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Expanded);
    QCOMPARE(sequence.data().toString(), QStringLiteral("s.%03d.exr 1-4 ( 1-2 4 )"));
    FileBrowser::SetDefaultSequenceMode(FileBrowser::SequenceMode::Collapsed);
}

void DirectoryModelTest::modelsAreConsistent()
{
    const QTemporaryDir first;
    const QTemporaryDir second;
    QVERIFY(SampleFiles::makeFrames(first.path(), "a%d.txt", 1, 300));
    QVERIFY(SampleFiles::make(second.path(), {"b", ".c"}));
    BrowserWindow window(first.path());
    const QAbstractItemModelTester model(window.model(),
                                         QAbstractItemModelTester::FailureReportingMode::Warning);
    const QAbstractItemModelTester proxy(window.proxy(),
                                         QAbstractItemModelTester::FailureReportingMode::Warning);
    QTRY_COMPARE(window.rows().size(), 300);
    window.browser.setDirectory(QDir(second.path()), false, true);
    QTRY_COMPARE(window.rows(), QStringList("b"));
    window.type(second.path() + "/.c");
    QTRY_COMPARE(window.rows(), QStringList(".c"));
    window.control<QCheckBox>("sequencesCheck")->click();
    window.list()->sortByColumn(1, Qt::DescendingOrder);
    window.hover(".c");
    QVERIFY(QDir(second.path()).removeRecursively());
    window.browser.setDirectory(QDir(first.path()), false, true);
    QTRY_COMPARE(window.rows().size(), 300);
}

void DirectoryModelTest::filtersRows_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("blocked");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QStringList>("expected");
    const QStringList everything{"dark/", "day.##.exr 1-2", "notes.txt", "Other.TXT"};
    QTest::newRow("nothing hides dot-files") << "" << false << "" << everything;
    QTest::newRow("a dot shows them") << "" << false << ".h" << QStringList{".hidden.txt"};
    QTest::newRow("no dot, no dot-file") << "" << false << "h" << QStringList{};
    QTest::newRow("prefix in any case") << "" << false << "oTH" << QStringList{"Other.TXT"};
    QTest::newRow("prefix longer than names") << "" << false << "notes.txt.bak" << QStringList{};
    QTest::newRow("prefix in printf form") << "" << false << "day.%02d" << QStringList{"day.##.exr 1-2"};
    QTest::newRow("pattern leaves folders")
        << "*.txt" << false << "" << QStringList{"dark/", "notes.txt", "Other.TXT"};
    QTest::newRow("pattern with sets")
        << "[!d]*.t?t [n-z]*" << false << "" << QStringList{"dark/", "notes.txt", "Other.TXT"};
    QTest::newRow("pattern and prefix") << "*.txt" << false << "n" << QStringList{"notes.txt"};
    QTest::newRow("several patterns")
        << "*.foo;*.exr" << false << "da" << QStringList{"dark/", "day.##.exr 1-2"};
    QTest::newRow("pattern sees the pattern name")
        << "day.#.exr *.none" << false << "d" << QStringList{"dark/", "day.##.exr 1-2"};
    QTest::newRow("blocked, no pattern")
        << "" << true << "zzz" << QStringList{".", "..", ".hidden.txt"} + everything;
    QTest::newRow("blocked with pattern")
        << "*.txt" << true << "zzz" << QStringList{"dark/", "notes.txt", "Other.TXT"};
}

void DirectoryModelTest::filtersRows()
{
    QFETCH(QString, pattern);
    QFETCH(bool, blocked);
    QFETCH(QString, prefix);
    QFETCH(QStringList, expected);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("dark")));
    QVERIFY(SampleFiles::make(folder.path(),
                              {"day.01.exr", "day.02.exr", "notes.txt", "Other.TXT", ".hidden.txt"}));
    const BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows().size(), 4);
    FileBrowser::ProxyModel& proxy = *window.proxy();
    proxy.setFilterPattern(pattern);
    proxy.setFilterBlocked(blocked);
    proxy.setNamePrefix(prefix);
    proxy.apply();
    QStringList shown = window.rows();
    for (QString& name : shown) {
        if (name == QLatin1String("./") || name == QLatin1String("../"))
            name.chop(1);
    }
    shown.sort(Qt::CaseInsensitive);
    expected.sort(Qt::CaseInsensitive);
    QCOMPARE(shown, expected);
    for (int row = 0; !pattern.isEmpty() && !blocked && prefix.isEmpty() && row < window.model()->rowCount();
         ++row) {
        const FileInfo& info = *window.model()->entry(row);
        if (!info.isDirectory())
            QCOMPARE(proxy.mapFromSource(window.model()->index(row, 0)).isValid(),
                     QDir::match(pattern, QString::fromUtf8(info.fileName())) && info.fileName()[0] != '.');
    }
}

void DirectoryModelTest::turnsTokensIntoHashes_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::newRow("shot.%04d") << "shot.####";
    QTest::newRow("img.%03d") << "img.###";
    QTest::newRow("a%d_%05d") << "a#_#";
    QTest::newRow("a%2d_%d.%d") << "a##_##.##";
    QTest::newRow("%1d%00d") << "##";
    QTest::newRow("100%") << "100%";
    QTest::newRow("%x") << "%x";
    QTest::newRow("%99999999999d") << "#";
}

void DirectoryModelTest::turnsTokensIntoHashes()
{
    const QTemporaryDir folder;
    const BrowserWindow window(folder.path());
    window.proxy()->setNamePrefix(QString::fromLatin1(QTest::currentDataTag()));
    QTEST(QString::fromStdString(window.proxy()->prefix()), "prefix");
}

void DirectoryModelTest::sortsByEveryColumn()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("z")));
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("m")));
    QVERIFY(SampleFiles::make(folder.path(), "B", 1));
    QVERIFY(SampleFiles::make(folder.path(), "a", 5000));
    QVERIFY(SampleFiles::make(folder.path(), "n", 1));
    qint64 time = 1000000;
    for (const char* name : {"n", "a", "B"}) {
        QFile file(folder.path() + '/' + name);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(++time), QFileDevice::FileModificationTime));
    }
    BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows(), (QStringList{"a", "B", "m/", "n", "z/"}));
    QTRY_VERIFY(window.proxy()->index(0, 2).data().toDateTime().toSecsSinceEpoch() > 0);
    const auto clickHeader = [&](int column) {
        QHeaderView* header = window.list()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(header->sectionViewportPosition(column) + 20, header->height() / 2));
    };
    clickHeader(0);
    QCOMPARE(window.rows(), (QStringList{"z/", "n", "m/", "B", "a"}));
    clickHeader(1);
    QCOMPARE(window.rows(), (QStringList{"m/", "z/", "B", "n", "a"}));
    clickHeader(2);
    QCOMPARE(window.rows().mid(0, 3), (QStringList{"n", "a", "B"}));
}

void DirectoryModelTest::equalNamesAreLessBothWays()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"Same", "same", "other"}));
    const BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows().size(), 3);
    struct Proxy : FileBrowser::ProxyModel
    {
        using FileBrowser::ProxyModel::lessThan;
    };
    const auto less = [&](const char* left, const char* right) {
        const FileBrowser::ProxyModel& proxy = *window.proxy();
        return (proxy.*&Proxy::lessThan)(proxy.mapToSource(window.row(QLatin1String(left))),
                                         proxy.mapToSource(window.row(QLatin1String(right))));
    };
    QVERIFY(less("Same", "same") && less("same", "Same"));
    QVERIFY(less("other", "same") && !less("same", "other"));
    const QModelIndex cell = window.model()->index(0, 0);
    QVERIFY(!(window.proxy()->*&Proxy::lessThan)(cell, cell.sibling(1, 1)));
}

void DirectoryModelTest::longNamesAreCompared()
{
    const QTemporaryDir folder;
    const QByteArray tail(130, 'x');
    for (const char* head : {"c", "a", "b"})
        QVERIFY(SampleFiles::make(folder.path(), head + tail));
    const BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows(), (QStringList{"a" + tail, "b" + tail, "c" + tail}));
}

void DirectoryModelTest::rowsAreEmptyDuringARead()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a", "b", "c"}));
    BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows(), (QStringList{"a", "b", "c"}));
    window.clickRow("b");
    window.hover("c");
    const QString typed = window.edit()->text();
    int selections = 0;
    connect(&window.browser, &FileBrowser::fileSelected, this, [&] { ++selections; });

    window.model()->refreshList();
    QCOMPARE(window.model()->rowCount(), 5);
    QCOMPARE(window.rows(), (QStringList{"", "", ""}));
    QVERIFY(QMetaObject::invokeMethod(&window.browser, "refresh"));
    QCOMPARE(window.rows(), (QStringList{"", "", ""}));
    QCOMPARE(window.model()->hoveredRow(), -1);
    window.list()->sortByColumn(1, Qt::DescendingOrder);
    window.browser.setFilename(QStringLiteral("a"));
    window.edit()->setText(typed);
    for (int row = 0; row < 3; ++row) {
        const QPoint place = window.list()->visualRect(window.proxy()->index(row, 0)).center();
        QTest::mouseClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        QVERIFY(QMetaObject::invokeMethod(&window.browser, "hoverItem",
                                          Q_ARG(QModelIndex, window.proxy()->index(row, 0))));
        QVERIFY(QMetaObject::invokeMethod(&window.browser, "addItemToQueue"));
        QVERIFY(QMetaObject::invokeMethod(&window.browser, "nextClicked"));
    }
    QCOMPARE(selections, 0);
    QCOMPARE(window.edit()->text(), typed);
    QCOMPARE(window.model()->hoveredRow(), -1);
    QVERIFY(window.browser.pickedFiles().isEmpty());
    QTRY_COMPARE(window.rows(), QStringList("b"));
}

namespace {

// One row for all files that are no folders.
class OneForAll : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        ++calls;
        std::vector<FileInfo*> members;
        std::vector<int> frames;
        for (FileInfo* file : files) {
            if (file->isDirectory())
                continue;
            members.push_back(file);
            frames.push_back(static_cast<int>(frames.size()));
        }
        return {nullptr, buildFileSequence("everything", frames, members)};
    }
    int calls = 0;
};

// Answers a question about one directory by going to another.
class Wanderer : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        browser->setDirectory(there, false, true);
        return files;
    }
    FileBrowser* browser = nullptr;
    QDir there;
};

} // namespace

void DirectoryModelTest::evaluatorDecides()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), "a", 600));
    QVERIFY(SampleFiles::make(folder.path(), "b", 700));
    OneForAll evaluator;
    BrowserWindow window(folder.path());
    window.browser.setFileSequenceEvaluator(&evaluator);
    QVERIFY(window.control<QCheckBox>("splitCheck")->isHidden());
    QTRY_COMPARE(window.rows(), QStringList("everything"));
    QTRY_COMPARE(window.proxy()->index(0, 1).data().toString(), QStringLiteral("1KB"));
    const int calls = evaluator.calls;
    window.control<QCheckBox>("sequencesCheck")->click();
    QCOMPARE(window.rows(), (QStringList{"a", "b"}));
    QCOMPARE(evaluator.calls, calls);
    window.control<QCheckBox>("sequencesCheck")->click();
    QCOMPARE(window.rows(), QStringList("everything"));
    window.browser.setFileSequenceEvaluator(nullptr);
    QCOMPARE(window.rows(), (QStringList{"a", "b"}));
    QVERIFY(!window.control<QCheckBox>("splitCheck")->isHidden());
}

void DirectoryModelTest::evaluatorMayReturnNull()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"a"}));
    OneForAll evaluator;
    BrowserWindow window(folder.path());
    window.browser.setFileSequenceEvaluator(&evaluator);
    QTRY_COMPARE(window.rows(), QStringList("everything"));
    QCOMPARE(window.model()->rowCount(), 2);
    QVERIFY(!window.model()->index(0, 0).data().isValid());
    window.proxy()->sort(1);
    window.model()->setHoveredRow(0);
    window.focusList();
    QTest::keyClick(window.list(), Qt::Key_Space);
    QVERIFY(window.browser.pickedFiles().isEmpty());
}

void DirectoryModelTest::evaluatorMayLeaveTheDirectory()
{
    const QTemporaryDir folder;
    const QTemporaryDir other;
    QVERIFY(SampleFiles::make(folder.path(), {"a"}));
    QVERIFY(SampleFiles::make(other.path(), {"b"}));
    Wanderer evaluator;
    BrowserWindow window(folder.path());
    evaluator.browser = &window.browser;
    evaluator.there = QDir(other.path());
    window.browser.setFileSequenceEvaluator(&evaluator);
    QTRY_COMPARE(window.rows(), QStringList("b"));
    QCOMPARE(window.browser.directory(), QDir(other.path()));
}

void DirectoryModelTest::oddNamesAreShown()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), "bytes\xff\xfe"));
    QVERIFY(SampleFiles::make(folder.path(), "new\nline"));
    QVERIFY(SampleFiles::make(folder.path(), QByteArray(255, 'L')));
    QVERIFY(SampleFiles::make(folder.path(), "<b>bold"));
    BrowserWindow window(folder.path());
    QTRY_COMPARE(window.rows().size(), 4);
    for (const QString& name : window.rows()) {
        window.clickRow(name);
        QVERIFY(!window.browser.selectedFiles().isEmpty());
    }
    QVERIFY(!window.browser.grab().isNull());
    ::unlink((QFile::encodeName(folder.path()) + "/bytes\xff\xfe").constData());
}

QTEST_MAIN(DirectoryModelTest)
#include "DirectoryModelTest.moc"
