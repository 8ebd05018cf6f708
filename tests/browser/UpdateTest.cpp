#include "browser/BrowserWindow.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <functional>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <utime.h>

using namespace Halvern::UI;

namespace {

using NameSet = ChangedNames::value_type;

// Makes a row of the files of each first letter, all rows its own, and has the list painted meanwhile.
class ByLetter : public FileSequenceEvaluator
{
public:
    std::vector<FileInfo*> evaluateFiles(std::vector<FileInfo*> files) override
    {
        ++asked;
        rows.clear();
        const std::function<void()> work = interrupt; // which may replace it
        work();
        std::map<char, std::vector<FileInfo*>> groups;
        for (FileInfo* file : files) {
            if (!file->isDirectory())
                groups[*file->fileName()].push_back(file);
        }
        std::vector<FileInfo*> answer;
        for (const auto& [letter, members] : groups) {
            const std::string name = letter + (" " + std::to_string(members.size()));
            if (makesOwnRows)
                rows.push_back(std::make_unique<FileInfo>(name.c_str(), false));
            std::vector<int> frames(members.size());
            std::iota(frames.begin(), frames.end(), 1);
            answer.push_back(makesOwnRows ? rows.back().get() : buildFileSequence(name, frames, members));
        }
        return answer;
    }
    std::vector<std::unique_ptr<FileInfo>> rows;
    std::function<void()> interrupt = [] {};
    bool makesOwnRows = false;
    int asked = 0;
};

// Whether the update succeeded.
bool update(const BrowserParts& parts, const ChangedNames& changed = std::nullopt)
{
    QSignalSpy ends(parts.model(), &FileBrowser::DirectoryModel::updated);
    return parts.model()->update(changed) && (!ends.isEmpty() || ends.wait()) && ends.first().at(1).toBool();
}

QVariantList cells(const BrowserParts& parts)
{
    QVariantList all;
    for (int row = 0; row < parts.proxy()->rowCount(); ++row) {
        for (int column = 0; column < 3; ++column)
            all.append(parts.proxy()->index(row, column).data());
    }
    return all;
}

// Watches whether the list is painted, and never with an empty cell.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(const BrowserParts& shown)
        : parts(shown)
    {
        parts.list()->viewport()->installEventFilter(this);
    }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints;
            for (const QVariant& cell : cells(parts))
                blank += cell.isValid() ? 0 : 1;
        }
        return false;
    }
    bool sawOnlyFullRows() const { return paints > 0 && blank == 0; }

    const BrowserParts& parts;
    int paints = 0;
    int blank = 0;
};

QStringList selectedNames(const BrowserParts& parts)
{
    QStringList names;
    for (const QModelIndex& row : parts.list()->selectionModel()->selectedRows())
        names.append(row.data().toString().section(' ', 0, 0));
    names.sort();
    return names;
}

} // namespace

/// Rows that change in place when the folder was read again.
class UpdateTest : public Test
{
    Q_OBJECT

private slots:
    void followsRandomEdits_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<int>("column");
        for (const char* mode : {"expanded", "collapsed", "split", "evaluated", "typed", "filtered"}) {
            for (const int column : {0, 1, 2})
                QTest::addRow("%s %d", mode, column) << mode << column;
        }
    }

    // In the end rows are those of a new listing, in its order. Rows that stay keep their selection.
    void followsRandomEdits()
    {
        QFETCH(const QString, mode);
        QFETCH(const int, column);
        const bool descends = column == 1 || mode == "expanded";
        ByLetter evaluators[2];
        std::mt19937 random(static_cast<unsigned>(qHash(mode)));
        edit(random, 60);
        BrowserWindow windows[2]{BrowserWindow(path(), true), BrowserWindow(path(), true)};
        for (BrowserWindow& window : windows) {
            if (mode == "evaluated")
                window.browser.setFileSequenceEvaluator(&evaluators[&window - windows]);
            if (mode == "expanded")
                window.control<QCheckBox>("sequencesCheck")->click();
            if (mode == "split")
                window.control<QCheckBox>("splitCheck")->click();
            if (mode == "typed")
                window.type(path("a"));
            if (mode == "filtered")
                window.control<QComboBox>("filterCombo")->setEditText("*.exr *.txt");
            window.list()->sortByColumn(column, descends ? Qt::DescendingOrder : Qt::AscendingOrder);
            window.model()->refreshList();
        }
        const BrowserWindow& window = windows[0];
        const BrowserWindow& fresh = windows[1];
        for (const BrowserWindow& each : windows)
            QTRY_VERIFY(each.isRead());
        const auto reporting = QAbstractItemModelTester::FailureReportingMode::Warning;
        const QAbstractItemModelTester model(window.model(), reporting);
        const QAbstractItemModelTester proxy(window.proxy(), reporting);
        const QSignalSpy resets(window.model(), &QAbstractItemModel::modelReset);
        const PaintWatch paints(window);
        for (int round = 0; round < 12; ++round) {
            const NameSet edited = edit(random, round % 5 == 0 ? 60 : 4);
            window.list()->clearSelection();
            for (int row = 0; row < window.proxy()->rowCount(); row += 1 + static_cast<int>(random() % 3))
                window.list()->selectionModel()->select(
                    window.proxy()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
            const QStringList selected = selectedNames(window);
            QVERIFY(update(window, round % 3 == 0 ? ChangedNames() : edited));
            fresh.model()->refreshList();
            QTRY_VERIFY(fresh.isRead());
            QTRY_COMPARE(cells(window), cells(fresh));
            if (mode != "expanded" && mode != "collapsed")
                continue;
            const QStringList nowSelected = selectedNames(window);
            const QRegularExpression frame("[0-9#]+");
            const QStringList patterns = QStringList(selected).replaceInStrings(frame, "#");
            for (const QString& row : window.rows()) {
                const QString name = row.section(' ', 0, 0);
                // A frame that was alone may be in a sequence, or the other way round.
                if (selected.contains(name) || !patterns.contains(QString(name).replace(frame, "#")))
                    QCOMPARE(nowSelected.contains(name), selected.contains(name));
            }
        }
        QCOMPARE(resets.size(), 0);
        QVERIFY(paints.sawOnlyFullRows());
    }

    // What a person looks at, points at and has chosen stays in its place.
    void keepsThePlace()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "f%03d.txt", 100, 400));
        BrowserWindow window(path(), true);
        // The display server may move the mouse at any other time.
        auto* model = window.model();
        QString hovered;
        connect(model, &FileBrowser::DirectoryModel::rowsAboutToBeUpdated, this,
                [&] { model->setHoveredRow(window.proxy()->mapToSource(window.row("f207.txt")).row()); });
        connect(model, &FileBrowser::DirectoryModel::rowsUpdated, this,
                [&] { hovered = model->displayName(model->hoveredRow()); });
        for (const int column : {0, 1}) {
            hovered.clear();
            window.list()->sortByColumn(column, Qt::AscendingOrder);
            window.list()->scrollTo(window.row(column == 0 ? "f200.txt" : "f201.txt"),
                                    QAbstractItemView::PositionAtTop);
            window.clickRow("f202.txt");
            window.clickRow("f203.txt", Qt::ControlModifier);
            window.clickRow("f205.txt", Qt::ShiftModifier);
            window.clickRow("f204.txt", Qt::NoModifier, Qt::RightButton);
            const QPoint place = window.place("f201.txt");
            // Rows come above, in the selection and below, and the first that is seen goes.
            NameSet changed{"f200.txt", "f150.txt", "f300.txt"};
            for (const std::string& name : changed)
                QCOMPARE(QFile::remove(path(name.c_str())), column == 0);
            for (const char* name : {"a", "f1000.txt", "f203b.txt", "z"}) {
                changed.insert(name + std::to_string(column));
                QVERIFY(SampleFiles::make(path(), (name + std::to_string(column)).c_str(), 5));
            }
            const PaintWatch paints(window);
            QVERIFY(update(window, column == 0 ? ChangedNames() : changed));
            QTRY_VERIFY(paints.sawOnlyFullRows());
            QCOMPARE(window.place("f201.txt"), place);
            QCOMPARE(selectedNames(window), (QStringList{"f202.txt", "f203.txt", "f204.txt", "f205.txt"}));
            QCOMPARE(window.list()->currentIndex().data(), QVariant("f205.txt"));
            QCOMPARE(hovered, "f207.txt");
            QCOMPARE(window.menu()->items().size(), 4);
            window.menu()->close();
            window.clickRow("f206.txt", Qt::ShiftModifier);
            QCOMPARE(selectedNames(window).size(), column == 0 ? 6 : 5);
        }
        // Those that vanish are scattered over many ranges.
        window.list()->selectAll();
        const auto rows = window.rows().size();
        for (int frame = 210; frame < 300; frame += 2)
            QVERIFY(QFile::remove(path(QString::asprintf("f%d.txt", frame))));
        const QSignalSpy removals(window.proxy(), &QAbstractItemModel::rowsRemoved);
        QVERIFY(update(window));
        QCOMPARE(removals.size(), 1);
        QCOMPARE(window.rows().size(), rows - 45);
        QCOMPARE(window.list()->selectionModel()->selectedRows().size(), rows - 45);
    }

    // Nothing else is chosen in place of what vanished.
    void whatVanishesIsNotChosen()
    {
        QVERIFY(make({"a", "b", "c"}));
        BrowserWindow window(path());
        window.clickRow("b");
        QCOMPARE(window.browser.acceptance(), FileBrowser::Acceptance::Open);
        QSignalSpy choices(&window.browser, &FileBrowser::choiceChanged);
        int files = 0;
        connect(&window.browser, &FileBrowser::fileSelected, this, [&] { ++files; });
        QVERIFY(update(window));
        QCOMPARE(choices.size(), 0);
        QVERIFY(QFile::remove(path("b")));
        QVERIFY(update(window));
        QCOMPARE(window.rows(), (QStringList{"a", "c"}));
        QVERIFY(!window.list()->selectionModel()->hasSelection());
        QCOMPARE(window.list()->currentIndex().data(), QVariant("c"));
        QCOMPARE(choices.size(), 1);
        QCOMPARE(files, 0);
        QCOMPARE(window.browser.acceptance(), FileBrowser::Acceptance::None);
        QCOMPARE(window.edit()->text(), path("b"));

        // What is typed can be chosen as soon as it is there.
        window.browser.setSelectionType(FileBrowser::SelectionType::Directories);
        QTRY_VERIFY(window.isRead());
        window.type(path("new"));
        QTRY_VERIFY(window.isRead());
        for (const bool comes : {true, false}) {
            choices.clear();
            QVERIFY(comes ? QDir(path()).mkdir("new") : QDir(path()).rmdir("new"));
            QVERIFY(update(window));
            QCOMPARE(choices.size(), 1);
            QCOMPARE(window.browser.acceptance() == FileBrowser::Acceptance::Open, comes);
        }
    }

    void sequenceGrowsInItsRow()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "s.%02d.exr", 1, 5));
        const BrowserWindow window(path());
        const auto toolTip = [&] { return window.proxy()->index(0, 0).data(Qt::ToolTipRole).toString(); };
        QCOMPARE(toolTip(), "5 frames are empty: 1, 2, 3, 4, 5");
        window.clickRow("s.##.exr 1-5");
        int files = 0;
        connect(&window.browser, &FileBrowser::fileSelected, this, [&] { ++files; });
        // The host is told of the path when the rows stand, and may update again.
        const auto announced = connect(window.edit(), &QLineEdit::textChanged, this, [&] {
            QCOMPARE(window.rows(), QStringList("s.##.exr 1-11 ( 1-5 7 10-11 )"));
            QVERIFY(update(window));
        });
        window.edit()->setCursorPosition(4);
        for (const char* name : {"s.02.exr", "s.07.exr", "s.10.exr", "s.11.exr"})
            QVERIFY(SampleFiles::make(path(), name, 7));
        QVERIFY(update(window));
        QCOMPARE(window.rows(), QStringList("s.##.exr 1-11 ( 1-5 7 10-11 )"));
        QCOMPARE(selectedNames(window), QStringList("s.##.exr"));
        QCOMPARE(toolTip(), "4 frames are empty: 1, 3, 4, 5\nMissing: 6, 8-9");
        QCOMPARE(window.edit()->text(), path("s.##.exr 1-11"));
        QCOMPARE(window.edit()->cursorPosition(), 4);
        QVERIFY(disconnect(announced));
        QCOMPARE(files, 1);
        QCOMPARE(window.browser.acceptance(), FileBrowser::Acceptance::Open);

        // Typed in full, it stays when the range grows beyond what is typed. What is half typed stays too.
        window.type(path("s.##.exr 1-11"));
        QTRY_COMPARE(selectedNames(window), QStringList("s.##.exr"));
        QTRY_VERIFY(window.isRead());
        QVERIFY(SampleFiles::makeFrames(path(), "s.%02d.exr", 12, 30));
        QVERIFY(update(window));
        QCOMPARE(selectedNames(window), QStringList("s.##.exr"));
        QVERIFY(toolTip().startsWith("23 frames are empty: 1, 3, 4, 5, 12, 13, 14, 15, \u2026\n"));
        window.type(path("s.##"));
        QTRY_VERIFY(window.isRead());
        QVERIFY(make({"s.31.exr", "t"}));
        QVERIFY(update(window));
        QCOMPARE(window.rows().size(), 1);
        QVERIFY(window.rows().first().startsWith("s.##.exr 1-31"));
        QCOMPARE(window.edit()->text(), path("s.##"));
    }

    // A row that is selected and in the pick list stays so when its name changes.
    void singleFrameBecomesASequence()
    {
        QVERIFY(SampleFiles::make(path(), "s.02.exr"));
        BrowserWindow window(path(), true);
        window.clickRow("s.02.exr");
        window.control<QPushButton>("nextButton")->click();
        window.clickRow("s.02.exr");
        for (const auto& [name, row] :
             {std::pair("s.01.exr", "s.##.exr 1-2"), {"s.03.exr", "s.##.exr 1-3"}}) {
            const QSignalSpy choices(&window.browser, &FileBrowser::choiceChanged);
            QVERIFY(SampleFiles::make(path(), name));
            QVERIFY(update(window));
            QCOMPARE(window.rows(), QStringList(row));
            QCOMPARE(selectedNames(window), QStringList("s.##.exr"));
            QCOMPARE(window.browser.pickedFiles(), QStringList(path(row)));
            QCOMPARE(window.browser.selectedFiles(), window.browser.pickedFiles());
            QCOMPARE(window.edit()->text(), path(row));
            QCOMPARE(choices.size(), 1);
        }
        for (const char* name : {"s.02.exr", "s.03.exr"})
            QVERIFY(QFile::remove(path(name)));
        QVERIFY(update(window));
        QCOMPARE(selectedNames(window), QStringList("s.01.exr"));
        QCOMPARE(window.browser.pickedFiles(), QStringList(path("s.01.exr")));
    }

    void evaluatorIsAskedOnceForEachState()
    {
        ByLetter evaluator;
        QVERIFY(make({"a1", "b1", "b2"}));
        BrowserWindow window(path());
        for (const bool makesOwnRows : {false, true}) {
            evaluator.makesOwnRows = makesOwnRows;
            evaluator.interrupt = [&] { window.browser.grab(); };
            window.browser.setFileSequenceEvaluator(&evaluator);
            QTRY_VERIFY(window.isRead());
            window.list()->setCurrentIndex(window.proxy()->index(0, 0));
            window.browser.setFileSequenceEvaluator(&evaluator);
            QCOMPARE(selectedNames(window), QStringList("a"));
            PaintWatch paints(window);
            evaluator.asked = 0;
            QVERIFY(update(window));
            QCOMPARE(evaluator.asked, 0);
            const char* name = makesOwnRows ? "b4" : "b3";
            QVERIFY(SampleFiles::make(path(), name));
            const utimbuf time{0, makesOwnRows ? 2 : 1};
            QCOMPARE(::utime(qPrintable(path()), &time), 0);
            QVERIFY(update(window, NameSet{name}));
            QCOMPARE(evaluator.asked, 1);
            QCOMPARE(window.rows(), (QStringList{"a 1", makesOwnRows ? "b 4" : "b 3"}));
            QCOMPARE(selectedNames(window), QStringList("a"));
            QVERIFY(update(window));
            QCOMPARE(evaluator.asked, 1);
            QVERIFY(paints.sawOnlyFullRows());
        }
        // Asked, it goes to another folder.
        const SampleFolder other{"x"};
        evaluator.interrupt = [&] {
            evaluator.interrupt = [] {};
            window.browser.setDirectory(QDir(other.path()), false, true);
            QTRY_VERIFY(!window.model()->isReading()); // its list waits for the answer
        };
        QVERIFY(make({"d"}));
        QVERIFY(!update(window));
        QTRY_COMPARE(window.rows(), QStringList("x 1"));
    }

    // Another read ends an update. Rows that are built anew don't wait for what it reads.
    void updateGivesWay()
    {
        const SampleFolder other{"x"};
        QVERIFY(make({"a", "b"}));
        BrowserWindow window(path());
        const std::pair<bool, std::function<void()>> ways[] = {
            {true, [&] { window.model()->refreshList(); }},
            {false, [&] { window.browser.setSequencesEnabled(true); }},
            {true, [&] { window.browser.setDirectory(QDir(other.path()), false, true); }}};
        for (const auto& [abandons, way] : ways) {
            QSignalSpy ends(window.model(), &FileBrowser::DirectoryModel::updated);
            QVERIFY(window.model()->update() && !window.model()->update());
            way();
            QCOMPARE(ends.size(), abandons ? 1 : 0);
            QTRY_VERIFY(window.isRead() && !window.model()->isUpdating());
            QCOMPARE(ends.first().at(1).toBool(), !abandons);
            QVERIFY(update(window));
            QCOMPARE(ends.size(), 2);
        }
        QCOMPARE(window.rows(), QStringList("x"));
        QVERIFY(window.model()->update());
    }

private:
    // Makes, resizes, removes and replaces files, frames and folders. Returns their names.
    NameSet edit(std::mt19937& random, int edits) const
    {
        NameSet names;
        for (int i = 0; i < edits; ++i) {
            const auto number = static_cast<int>(random() % 20);
            const char* const patterns[] = {"a.%04d.exr", "b%d.dpx", "B%d.dpx",
                                            "c.%d.txt",   "a%d",     "d%03d.exr"};
            const QString name = QString::asprintf(patterns[random() % std::size(patterns)], number);
            const QString file = path(name);
            names.insert(name.toStdString());
            QDir(file).removeRecursively();
            QFile::remove(file);
            const auto kind = random() % 8;
            if (kind == 0)
                QDir(path()).mkdir(name);
            else if (kind > 3)
                SampleFiles::make(path(), name.toUtf8(), static_cast<int>(random() % 3000));
        }
        return names;
    }
};

QTEST_MAIN(UpdateTest)
#include "UpdateTest.moc"
