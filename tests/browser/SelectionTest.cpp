#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QLabel>
#include <QTextDocument>
#include <optional>

using namespace Halvern::UI;

/// What is chosen, and the pick list.
class SelectionTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(make({"sub/", "a", "b", "s.01.exr", "s.02.exr", "s.03.exr"}));
        m_window.emplace(path(), true);
        QCOMPARE(m_window->rows(), (QStringList{"a", "b", m_sequence, "sub/"}));
    }

    // What is announced stays readable, whatever a listener does.
    void listenersMayChangeTheFieldAndTheDirectory()
    {
        QSignalSpy texts(&m_window->browser, SIGNAL(filenameTextChanged(QString)));
        connect(&m_window->browser, &FileBrowser::fileSelected, this,
                [&](const FileInfo& info, const QDir& dir) {
                    m_window->edit()->setText(dir.path() + '/' + info.displayName() + '!');
                });
        m_window->browser.setMultipleSelections(false);
        m_window->clickRow(m_sequence);
        // What a listener writes is not announced.
        QCOMPARE(texts.size(), 1);
        QCOMPARE(m_window->browser.selectedFiles(), QStringList(path(m_sequence) + '!'));

        QString name;
        connect(&m_window->browser, QOverload<const FileInfo&>::of(&FileBrowser::fileDoubleClick), this,
                [&](const FileInfo& info) {
                    m_window->browser.setDirectory(QDir(path("sub")), false, true);
                    name = info.fileName();
                });
        m_window->clickRow("b");
        QTest::mouseDClick(m_window->list()->viewport(), Qt::LeftButton, {}, m_window->place("b"));
        QCOMPARE(name, QString("b"));
    }

    // A second click that comes while the folder that the first one opened is on screen is about no row of
    // it.
    void doubleClicksStayInTheirFolder()
    {
        QVERIFY(SampleFiles::make(path("sub"), {"a/", "b", "c", "d"}));
        const QSignalSpy opened(&m_window->browser, SIGNAL(fileDoubleClick()));
        const QPoint place = m_window->place("sub/");
        // At one moment, as far as the events tell; those of the test library are far apart.
        const auto send = [&](QEvent::Type type) {
            QMouseEvent event(type, place, place, Qt::LeftButton, Qt::LeftButton, {});
            QApplication::sendEvent(m_window->list()->viewport(), &event);
        };
        send(QEvent::MouseButtonPress);
        send(QEvent::MouseButtonRelease);
        QTRY_COMPARE(m_window->rows().value(3), QString("d"));
        send(QEvent::MouseButtonDblClick);
        send(QEvent::MouseButtonRelease);
        QVERIFY(opened.isEmpty());
        QCOMPARE(m_window->browser.selectedFiles(), QStringList(path("sub") + '/'));
    }

    void queueingResetsTheRows()
    {
        m_window->clickRow("a");
        m_window->clickRow("b", Qt::ControlModifier);
        m_window->control("nextButton")->click();
        QVERIFY(picked({"a", "b"}));
        QVERIFY(!m_window->list()->selectionModel()->hasSelection());
        QCOMPARE(m_window->list()->currentIndex(), m_window->row("b"));
        // An action on nothing leaves the selection alone. Below the last row nothing is under the mouse,
        // whatever was before.
        m_window->focusList();
        m_window->clickRow("a");
        m_window->hover("b");
        QTest::mouseMove(m_window->list()->viewport(), m_window->place("sub/") + QPoint(0, 80));
        QTRY_COMPARE(m_window->model()->hoveredRow(), -1);
        QTest::keyClick(m_window->list(), Qt::Key_Space);
        QVERIFY(picked({"a", "b"}));
        QCOMPARE(m_window->browser.selectedFiles(), (QStringList{path("a"), path("b")}));
        QVERIFY(m_window->list()->selectionModel()->isSelected(m_window->row("a")));
    }

    void spaceTakesWhatIsUnderTheMouse()
    {
        m_window->clickRow("a");
        m_window->clickRow(m_sequence, Qt::ControlModifier);
        pressSpaceOver("b");
        pressSpaceOver("b");
        QVERIFY(picked({"b"}));
        m_window->clickRow("a");
        m_window->clickRow(m_sequence, Qt::ControlModifier);
        pressSpaceOver("a");
        QVERIFY(picked({"b", "a", m_sequence}));
        // The button asks nobody whether a row is queued already.
        m_window->clickRow("b");
        m_window->control("nextButton")->click();
        // With no selected row it takes the folder, if folders can be chosen.
        m_window->control("nextButton")->click();
        QVERIFY(picked({"b", "a", m_sequence, "b"}));
        m_window->browser.setSelectionType(FileBrowser::SelectionType::Directories);
        m_window->control("nextButton")->click();
        m_window->focusList();
        pressSpaceOver("a");
        pressSpaceOver("sub/");
        QVERIFY(picked({"b", "a", m_sequence, "b", path(), "sub"}));
    }

    void pickListIsShownBelowTheList()
    {
        auto* line = m_window->control<QLabel>("pickListLine");
        QVERIFY(!line->isVisible());
        QVERIFY(make({"<b>x"}));
        m_window->model()->refreshList();
        QTRY_COMPARE(m_window->rows().size(), 5);
        for (const QString name : {"<b>x", "a"}) {
            m_window->clickRow(name);
            m_window->control("nextButton")->click();
        }
        QVERIFY(line->isVisible() && line->y() >= m_window->list()->geometry().bottom());
        QTextDocument tooltip;
        tooltip.setHtml(line->toolTip());
        QCOMPARE(tooltip.toPlainText(), path("<b>x") + '\n' + path("a"));

        // What is queued stays so in another folder, and the line has the menu.
        m_window->browser.setDirectory(QDir(path("sub")), false, true);
        m_window->control("backButton")->click();
        QTRY_VERIFY(m_window->rows().contains("a"));
        for (const QString name : {"a", "<b>x"}) {
            QCOMPARE(line->text(), QString(name == "a" ? "2 in the pick list" : "1 in the pick list"));
            QCOMPARE(m_window->row(name).data(Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
            m_window->clickRow(name);
            QTest::mouseClick(line, Qt::LeftButton);
            QTRY_VERIFY(m_window->menu()->isVisible());
            QVERIFY(!action(0)->isEnabled() && action(1)->isEnabled());
            m_window->menu()->hide();
            action(1)->trigger();
        }
        QVERIFY(picked({}) && !line->isVisible());
    }

    void menuItemsAreKeptUntilUsed()
    {
        const auto closeMenuOver = [&](const QString& name) {
            m_window->clickRow(name, Qt::NoModifier, Qt::RightButton);
            m_window->menu()->hide();
        };
        closeMenuOver("a");
        m_window->hover("b");
        action(0)->trigger();
        QVERIFY(picked({"a"}));
        action(0)->trigger();
        QVERIFY(picked({"a", "b"}));

        // Another read takes the menu's items away.
        closeMenuOver(m_sequence);
        m_window->model()->refreshList();
        QTRY_COMPARE(m_window->rows().first(), QString("a"));
        action(0)->trigger();
        QVERIFY(picked({"a", "b"}));
    }

private:
    QAction* action(int index) const { return m_window->menu()->actions().at(index); }

    void pressSpaceOver(const QString& name) const
    {
        m_window->hover(name);
        QTest::keyClick(m_window->list(), Qt::Key_Space);
    }

    bool picked(const QStringList& names) const
    {
        return QStringList(m_window->browser.pickedFiles()).replaceInStrings(path() + '/', QString()) ==
               names;
    }

    const QString m_sequence = QString("s.##.exr 1-3");
    std::optional<BrowserWindow> m_window;
};

QTEST_MAIN(SelectionTest)
#include "SelectionTest.moc"
