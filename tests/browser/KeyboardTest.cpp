#include "browser/BrowserWindow.h"
#include "dialog/FilePreview.h"
#include "favorites/EditFavoriteDialog.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QAccessible>
#include <QHeaderView>
#include <QShortcut>
#include <QVBoxLayout>

using namespace Halvern::UI;

/// That a browser can be used without a mouse, and without seeing it.
class KeyboardTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }

    void everyControlHasItsOwnName()
    {
        FileBrowser browser;
        browser.setPreviewWidget(new FilePreview(&browser, 0));
        Favorite favorite;
        EditFavoriteDialog dialog(nullptr, favorite);
        for (const QWidget* window : {static_cast<QWidget*>(&browser), static_cast<QWidget*>(&dialog)}) {
            QStringList names;
            for (QWidget* control : window->findChildren<QWidget*>()) {
                const bool inside =
                    qobject_cast<QComboBox*>(control->parent()) || control->window() != window;
                if (inside || (control->focusPolicy() & Qt::TabFocus) == 0)
                    continue;
                const QString name = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
                QVERIFY2(name.size() > 1 && !names.contains(name),
                         qPrintable(QLatin1String(control->metaObject()->className()) + name));
                names.append(name);
            }
            QVERIFY2(names.size() >= 14, qPrintable(names.join(' ')));
        }
    }

    void tabGoesRoundAsItIsLaidOut()
    {
        const QTemporaryDir folder;
        BrowserWindow window(folder.path());
        window.browser.setMultipleSelections(true);
        window.focusList();
        QStringList visited;
        // Backwards, since Tab completes the name in the filename field.
        for (int i = 0; i < 13; ++i) {
            visited.append(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        }
        QCOMPARE(
            visited.join(' '),
            QString(
                "filesList addFavoriteButton favoritesList backButton upButton newFolderButton cancelButton "
                "nextButton filterCombo splitCheck sequencesCheck filenameEdit filesList"));
    }

    void keysSortAndOpenTheMenu()
    {
        const SampleFolder folder{"a", "b"};
        BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows(), (QStringList{"a", "b"}));
        window.focusList();
        QTest::keyClick(window.list(), Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(window.rows(), (QStringList{"b", "a"}));
        // Not with another modifier, and not if the host has a shortcut of these keys.
        QShortcut shortcut(QKeySequence("Ctrl+2"), &window.browser);
        const QSignalSpy used(&shortcut, SIGNAL(activated()));
        QTest::keyClick(window.browser.windowHandle(), Qt::Key_2, Qt::ControlModifier);
        QTest::keyClick(window.browser.windowHandle(), Qt::Key_3, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(used.size(), 1);
        QCOMPARE(window.list()->header()->sortIndicatorSection(), 0);
        QTest::keyClick(window.browser.windowHandle(), Qt::Key_3, Qt::ControlModifier);
        QCOMPARE(window.list()->header()->sortIndicatorSection(), 2);

        window.browser.setMultipleSelections(true);
        window.list()->setCurrentIndex(window.row("b"));
        QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(window.list(), &menuKey);
        QTRY_VERIFY(window.menu()->isVisible());
        QTest::keyClick(window.menu(), Qt::Key_Down);
        QTest::keyClick(window.menu(), Qt::Key_Return);
        QCOMPARE(window.browser.pickedFiles(), QStringList(folder.path() + "/b"));
    }

    void menuKeyOpensTheMenuInsideTheList()
    {
        const SampleFolder folder("f%03d.txt", 1, 200);
        BrowserWindow window(folder.path());
        QTRY_COMPARE(window.rows().size(), 200);
        const QWidget& viewport = *window.list()->viewport();
        for (const int current : {0, 199}) {
            window.list()->setCurrentIndex(window.proxy()->index(current, 0));
            window.list()->scrollTo(window.proxy()->index(199 - current, 0));
            QPoint place;
            connect(window.list(), &FileBrowser::FilesList::menuRequested, &window.browser,
                    [&](const QPoint& global) { place = viewport.mapFromGlobal(global); });
            QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
            QApplication::sendEvent(window.list(), &menuKey);
            QVERIFY(viewport.rect().contains(place));
            window.menu()->hide();
        }
    }

    // The dialog's default button is Open, which would accept once more.
    void returnIsAnsweredOnce()
    {
        QDialog dialog;
        auto* browser = new FileBrowser(&dialog);
        (new QVBoxLayout(&dialog))->addWidget(browser);
        browser->setAcceptButtonEnabled(true);
        const QSignalSpy accepted(browser, SIGNAL(accepted()));
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        for (const auto& [control, times] :
             {std::pair("filenameEdit", 1), {"filterCombo", 1}, {"filesList", 2}}) {
            auto* widget = browser->findChild<QWidget*>(QLatin1String(control));
            widget->setFocus();
            QTRY_VERIFY(widget->hasFocus());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QCOMPARE(accepted.size(), times);
        }
    }
};

QTEST_MAIN(KeyboardTest)
#include "KeyboardTest.moc"
