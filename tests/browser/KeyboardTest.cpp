#include "browser/BrowserWindow.h"
#include "dialog/FilePreview.h"
#include "favorites/EditFavoriteDialog.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QAccessible>
#include <QHeaderView>
#include <QShortcut>

using namespace Halvern::UI;

/// That a browser can be used without a mouse, and without seeing it.
class KeyboardTest : public Test
{
    Q_OBJECT

private slots:
    void everyControlHasItsOwnName()
    {
        FileBrowser browser;
        browser.setPreviewWidget(new FilePreview(&browser, 0));
        Favorite favorite;
        EditFavoriteDialog dialog(nullptr, favorite);
        for (const QWidget* window : {static_cast<QWidget*>(&browser), static_cast<QWidget*>(&dialog)}) {
            QStringList names;
            for (QWidget* control : window->findChildren<QWidget*>()) {
                if (qobject_cast<QComboBox*>(control->parent()) || control->window() != window ||
                    (control->focusPolicy() & Qt::TabFocus) == 0)
                    continue;
                names.append(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name));
                QVERIFY2(names.last().size() > 1 && names.count(names.last()) == 1,
                         qPrintable(QLatin1String(control->metaObject()->className()) + names.last()));
            }
            QVERIFY2(names.size() >= 14, qPrintable(names.join(' ')));
        }
    }

    void tabGoesRoundAsItIsLaidOut()
    {
        BrowserWindow window(path(), true);
        window.focusList();
        // Backwards, since Tab completes the name in the filename field.
        for (const char* name : {"filesList", "addFavoriteButton", "favoritesList", "backButton", "upButton",
                                 "newFolderButton", "cancelButton", "nextButton", "filterCombo", "splitCheck",
                                 "sequencesCheck", "filenameEdit", "filesList"}) {
            QCOMPARE(QApplication::focusWidget()->objectName(), QString(name));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        }
    }

    void keysSortAndOpenTheMenu()
    {
        const SampleFolder folder("f%03d.txt", 1, 200);
        BrowserWindow window(folder.path(), true);
        window.focusList();
        QTest::keyClick(window.list(), Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(window.rows().first(), QString("f200.txt"));
        // Not with another modifier, and not if the host has a shortcut of these keys.
        QShortcut shortcut(QKeySequence("Ctrl+2"), &window.browser);
        const QSignalSpy used(&shortcut, SIGNAL(activated()));
        QTest::keyClick(window.browser.windowHandle(), Qt::Key_2, Qt::ControlModifier);
        QTest::keyClick(window.browser.windowHandle(), Qt::Key_3, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(used.size() == 1 && window.list()->header()->sortIndicatorSection() == 0);

        // The menu opens inside the list, wherever the current row is.
        const QWidget& viewport = *window.list()->viewport();
        QPoint place;
        connect(window.list(), &FileBrowser::FilesList::menuRequested, &window.browser,
                [&](const QPoint& global) { place = viewport.mapFromGlobal(global); });
        for (const int current : {0, 199}) {
            window.menu()->hide();
            window.list()->setCurrentIndex(window.proxy()->index(current, 0));
            window.list()->scrollTo(window.proxy()->index(199 - current, 0));
            place = {-1, -1};
            QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(), QPoint());
            QApplication::sendEvent(window.list(), &menuKey);
            QVERIFY(viewport.rect().contains(place));
        }
        QTRY_VERIFY(window.menu()->isVisible());
        QTest::keyClick(window.menu(), Qt::Key_Down);
        QTest::keyClick(window.menu(), Qt::Key_Return);
        QCOMPARE(window.browser.pickedFiles(), QStringList(folder.path() + "/f001.txt"));
    }
};

QTEST_MAIN(KeyboardTest)
#include "KeyboardTest.moc"
