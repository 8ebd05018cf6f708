#include "dialog/DialogWindow.h"
#include "support/Faults.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QClipboard>
#include <QLabel>
#include <cerrno>

using namespace Halvern::UI;

/// What a person sees and may do while storage is slow or fails.
class SlowStorageTest : public Test
{
    Q_OBJECT

private slots:
    void init() { endFaults(); }

    // Rows are selected by keys, from one on, while attributes come and move them about.
    void keysExtendTheSelectionWhileAttributesArrive()
    {
        QVERIFY(SampleFiles::makeFrames(path(), "f%04d.txt", 1, 6000));
        for (const int column : {0, 2}) {
            delayCalls("fstatat", 2000);
            const BrowserWindow window(path(), true, false);
            window.list()->sortByColumn(column, Qt::AscendingOrder);
            QTRY_COMPARE(window.rows().size(), 6000);
            QVERIFY(!window.model()->hasAllAttributes());
            window.focusList();
            const QString first = window.proxy()->index(100, 0).data().toString();
            window.list()->scrollTo(window.proxy()->index(90, 0), QAbstractItemView::PositionAtTop);
            window.clickRow(first);
            const QSignalSpy resets(window.proxy(), SIGNAL(modelReset()));
            int pressed = 0;
            while (!window.model()->hasAllAttributes()) {
                QSignalSpy batches(window.proxy(), SIGNAL(dataChanged(QModelIndex, QModelIndex)));
                QVERIFY(batches.wait());
                QTest::keyClick(window.list(), Qt::Key_Down, Qt::ShiftModifier);
                ++pressed;
                const QItemSelection selection = window.list()->selectionModel()->selection();
                QVERIFY(selection.size() == 1 && selection.contains(window.row(first)));
                const QItemSelectionRange& range = selection.first();
                QCOMPARE(range.top() == window.row(first).row() ? range.bottom() : range.top(),
                         window.list()->currentIndex().row());
                QVERIFY(column == 2 || range.height() == pressed + 1);
            }
            QVERIFY(pressed > 2 && resets.isEmpty());
        }
    }

    // Nothing can be chosen while the cells are empty, and everything is chosen again afterwards.
    void whatIsReadAgainStaysChosen()
    {
        QVERIFY(make({"a", "b", "c"}));
        const DialogWindow window(path(), true);
        window.dialog.setSelectionType(FileBrowser::SelectionType::FilesAndDirectories);
        window.focusList();
        window.select({"a", "c"});
        QCOMPARE(window.buttons(), QString("ON"));
        const QString text = window.edit()->text();
        const QPoint place = window.place("b");
        delayCalls("readdir", 50000);
        QTest::keyClick(window.list(), Qt::Key_F5);
        QVERIFY(window.rows() == (QStringList{"", "", ""}) &&
                !window.list()->selectionModel()->hasSelection());
        QTest::keyClick(window.list(), Qt::Key_Down);
        QTest::mouseClick(window.list()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, {}, place);
        QVERIFY(QMetaObject::invokeMethod(window.dialog.fileBrowser(), "nextClicked"));
        QVERIFY(!window.list()->selectionModel()->hasSelection() && window.edit()->text() == text);
        QVERIFY(window.dialog.fileBrowser()->pickedFiles().isEmpty());
        QTest::keyClick(window.edit(), Qt::Key_Return);
        QVERIFY(window.dialog.isVisible());
        // Rows that are built in mid-read are those of some names only.
        window.list()->sortByColumn(1, Qt::AscendingOrder);
        window.dialog.setSequencesEnabled(false);
        QCOMPARE(window.buttons(), QString("--"));
        QTRY_COMPARE(window.dialog.selectedFiles(), (QStringList{path("a"), path("c")}));
        QCOMPARE(window.list()->currentIndex(), window.row("c"));
        QVERIFY(window.open()->isEnabled());

        QVERIFY(QFile::remove(path("c")));
        QTest::keyClick(window.list(), Qt::Key_F5);
        QTRY_COMPARE(window.dialog.selectedFiles(), QStringList(path("a")));
    }

    // Their names change with their range.
    void sequencesStayChosenWhenTheyGrow()
    {
        QVERIFY(make({"a.1.exr", "a.2.exr", "b.1.exr", "b.2.exr"}));
        const DialogWindow window(path(), true);
        window.focusList();
        window.select({"a.#.exr 1-2"});
        delayCalls("readdir", 20000);
        QVERIFY(make({"a.3.exr"}));
        QTest::keyClick(window.list(), Qt::Key_F5);
        QTRY_COMPARE(window.dialog.selectedFiles(), QStringList(path("a.#.exr 1-3")));
        QTest::keyClick(window.list(), Qt::Key_Down, Qt::ShiftModifier);
        // The field shows the first of them.
        QVERIFY(make({"a.4.exr", "b.4.exr", "b.5.exr"}));
        QTest::keyClick(window.list(), Qt::Key_F5);
        QTRY_COMPARE(window.dialog.selectedFiles(), (QStringList{path("a.#.exr 1-4"), path("b.#.exr 1-5")}));
        QVERIFY(make({"a.5.exr", "b.6.exr"}) && window.model()->update());
        QTRY_COMPARE(window.dialog.selectedFiles(), (QStringList{path("a.#.exr 1-5"), path("b.#.exr 1-6")}));
        // One row that becomes two leaves open which is meant.
        window.control<QCheckBox>("splitCheck")->click();
        QTRY_COMPARE(window.rows().size(), 3);
        QCOMPARE(window.dialog.selectedFiles(), QStringList(path("a.#.exr 1-5")));
    }

    void typedRowBecomesCurrentWhenItIsListed()
    {
        QVERIFY(make({"sub/", "sub/only", "sub/only.bak", "sub/other"}));
        for (const char* name : {"only", "other"}) {
            endFaults();
            const DialogWindow window(path());
            delayCalls("readdir", 20000);
            QApplication::clipboard()->setText(path("sub/") + name);
            window.edit()->selectAll();
            window.edit()->paste();
            QVERIFY(window.rows() == QStringList(QString()) && window.buttons() == "--");
            QTRY_VERIFY(window.list()->selectionModel()->hasSelection());
            QCOMPARE(window.list()->currentIndex(), window.row(name));
            QVERIFY(window.open()->isEnabled() && window.edit()->text() == path("sub/") + name);
        }
    }

    // What the list says, and that F5 reads what could not be read.
    void saysWhyThereIsNothing()
    {
        QVERIFY(make({"empty/", "locked/", "locked/a.exr", "locked/b.exr", "locked/.hidden"}));
        BrowserWindow window(path("empty"));
        const auto says = [&](const QString& text) { return window.list()->accessibleDescription() == text; };
        const auto problem = [&] {
            const auto* label = window.control<QLabel>("problemLabel");
            return label->isVisible() ? label->text() : QString();
        };
        const auto refresh = [&] { QMetaObject::invokeMethod(&window.browser, "refreshDirectory"); };
        QVERIFY(says("This folder is empty."));

        failCalls("opendir", EACCES);
        window.browser.setDirectory(QDir(path("locked")), false, true);
        QVERIFY(says("This folder can't be read: permission denied"));
        delayCalls("readdir", 100000);
        refresh();
        QTRY_VERIFY(says(QString("Reading ") + QChar(0x2026)));
        endFaults();
        const QStringList names = {"a.exr", "b.exr"}; // a row that is read again has none
        QTRY_COMPARE(window.rows(), names);
        QVERIFY(says(QString()));

        window.control<QComboBox>("filterCombo")->setEditText("*.dpx");
        QVERIFY(says("No file matches the filter *.dpx."));
        window.control<QComboBox>("filterCombo")->setEditText("");
        QTest::keyClicks(window.edit(), "xy");
        QVERIFY(says("Nothing here begins with \"xy\"."));
        QTest::keyClick(window.edit(), Qt::Key_Backspace);
        QTest::keyClick(window.edit(), Qt::Key_Backspace);

        // The rows stay if the folder can't be opened again.
        failCalls("opendir", EIO);
        refresh();
        QCOMPARE(problem(), QString("Not all of this folder could be read: input/output error"));
        QCOMPARE(window.rows(), names);
        // Half of it, and nothing of it.
        for (const int most : {5, 1}) {
            endFaults();
            refresh();
            QTRY_VERIFY(problem().isEmpty() && window.rows() == names);
            faults[MostNames] = most;
            refresh();
            QTRY_VERIFY(most > 1 ? window.rows().size() < 3 && problem().contains("input/output")
                                 : says("This folder can't be read: input/output error"));
        }
        endFaults(); // so that the folder can be removed
    }

    // This thread asks the disk for nothing, and waits for no call of the worker.
    void updateLeavesTheUserAlone()
    {
        QVERIFY(QDir(path()).mkdir("a") && QDir(path()).mkdir("b"));
        BrowserWindow window(path());
        window.browser.setSelectionType(FileBrowser::SelectionType::Directories);
        window.list()->setCurrentIndex(window.row("b/"));
        std::vector<FileBrowser::Acceptance> answers;
        connect(&window.browser, &FileBrowser::choiceChanged, this,
                [&] { answers.push_back(window.browser.acceptance()); });
        QVERIFY(QDir(path()).rmdir("b"));
        takeCalls();
        QVERIFY(window.model()->update());
        QTRY_COMPARE(window.rows(), QStringList("a/"));
        QCOMPARE(takeCalls(), QStringList());
        QVERIFY(answers == std::vector{FileBrowser::Acceptance::None});

        delayCalls("fstatat", 500000);
        QVERIFY(window.model()->update());
        QTRY_COMPARE(faults[NowDelayed].load(), 1);
        window.control<QCheckBox>("splitCheck")->click();
        QCOMPARE(faults[NowDelayed].load(), 1);
        QTRY_VERIFY(!window.model()->isUpdating());
        QCOMPARE(window.model()->updateError(), 0);

        // The folder goes away while attributes are read.
        delayCalls("fstatat", 200000);
        QVERIFY(window.model()->update());
        QTRY_VERIFY(faults[DelayedCalls] > 1);
        QVERIFY(QDir(path()).removeRecursively());
        QTRY_VERIFY(!window.model()->isUpdating());
        QCOMPARE(window.model()->updateError(), ENOENT);
        QCOMPARE(window.rows(), QStringList("a/"));
    }
};

QTEST_MAIN(SlowStorageTest)
#include "SlowStorageTest.moc"
