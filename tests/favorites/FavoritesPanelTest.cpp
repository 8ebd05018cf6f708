#include "browser/BrowserWindow.h"
#include "favorites/CachedFileIconProvider.h"
#include "favorites/Evaluator.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "support/SampleFiles.h"
#include "support/Test.h"

#include <QAbstractItemModelTester>
#include <QContextMenuEvent>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QTextDocument>
#include <functional>

using namespace Halvern::UI;

namespace {

class Panel : public BrowserWindow
{
public:
    using BrowserWindow::BrowserWindow;
    QString names() const
    {
        QStringList shown;
        for (int row = 0; row < favorites->model()->rowCount(); ++row)
            shown.append(favorites->model()->index(row, 0).data().toString());
        return shown.join(' ');
    }
    void choose(const QString& name) const
    {
        const QModelIndex index = favorites->model()->index(int(names().split(' ').indexOf(name)), 0);
        QTest::mouseClick(favorites->viewport(), Qt::LeftButton, {}, favorites->visualRect(index).center());
    }
    QString place() const { return browser.directory().dirName(); }
    bool mayEdit() const { return control("editFavoriteButton")->isEnabled(); }
    // Presses a button that opens a dialog, does in that what a user does, and closes it with the key.
    void press(
        const char* button, Qt::Key key, const std::function<void(QDialog&)>& use = [](QDialog&) {}) const
    {
        QTimer::singleShot(0, control(button), [use, key] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog && QTest::qWaitForWindowExposed(dialog));
            use(*dialog);
            QTest::keyClick(dialog, key);
        });
        control(button)->click();
    }

    FavoritesList* favorites = browser.findChild<FavoritesList*>();
    QAbstractItemModelTester modelTester{browser.findChild<FavoritesModel*>()};
    QAbstractItemModelTester proxyTester{favorites->model()};
};

} // namespace

/// The panel of favourites, driven as a user does.
class FavoritesPanelTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        QFile::remove(folder("favorites"));
        FileBrowser::SetFavoriteExpressionEvaluator(nullptr);
        for (const char* name : {"all", "geo", "img"})
            QDir(root.path()).mkdir(name);
        FileBrowser::SetPreferencesPath(folder("favorites"), QString());
        FileBrowser::SetDefaultFavoritePaths(root.path(), QString(), folder("geo"), QString(), false);
        FileBrowser::ResetFavorites();
        for (const std::string name : {"all", "geo", "gone"})
            FileBrowser::AddFavoriteDir(name, "", folder(name.c_str()).toStdString(), "", "",
                                        name == "geo" ? FaveGeo : FaveAll, true);
        FileBrowser::SaveFavorites();
    }

    void opensWhatIsChosenAndOnlyThat()
    {
        Panel panel(folder("img"));
        QVERIFY(QTest::qWaitForWindowExposed(&panel.browser));
        panel.favorites->setFocus(Qt::TabFocusReason);
        QCOMPARE(panel.place(), QString("img"));
        for (const auto& [name, place] : {std::pair("all", "all"), {"gone", "img"}, {"Current", "geo"}}) {
            panel.browser.setDirectory(QDir(folder("img")), false, true);
            panel.choose(name);
            QCOMPARE(panel.place(), QString(place));
            QCOMPARE(panel.mayEdit(), *name != 'C');
        }
        panel.browser.setFaveType(static_cast<FaveType>(FaveSequence | FaveGeo));
        QCOMPARE(panel.names(), QString("Home Current all geo gone"));
        panel.choose("geo");
        panel.browser.setFaveType(FaveScript);
        QCOMPARE(panel.names(), QString("Home Current all gone"));
        QVERIFY(panel.place() == "geo" && !panel.mayEdit());
    }

    void keepsWhatTheUserDoes()
    {
        {
            Panel panel(folder("geo"));
            panel.press("addFavoriteButton", Qt::Key_Return);
            panel.press("addFavoriteButton", Qt::Key_Escape);
            panel.choose("all");
            panel.press("removeFavoriteButton", Qt::Key_Escape);
            QCOMPARE(panel.names(), QString("Home Current all gone geo"));
            panel.choose("gone");
            panel.press("editFavoriteButton", Qt::Key_Return, [this](QDialog& dialog) {
                dialog.findChild<QLineEdit*>("folderEdit")->setText(folder("all"));
                dialog.findChild<QLineEdit*>("nameEdit")->setText("-\"<b>\"\nfurther");
                dialog.findChild<QLineEdit*>("tooltipEdit")->setText("<u>&lt;</u>");
            });
            panel.choose("all");
            panel.press("removeFavoriteButton", Qt::Key_Return, [](QDialog& box) {
                QCOMPARE(box.property("textFormat").toInt(), int(Qt::PlainText));
            });
        }
        FileBrowser::ResetFavorites();
        const Panel panel(folder("geo"));
        QCOMPARE(panel.names(), QString("Home Current _-’<b>’ geo"));
        panel.choose("_-’<b>’");
        QCOMPARE(panel.place(), QString("all"));
        // Markup stands for itself, "&lt;" too.
        QTextDocument tooltip;
        tooltip.setHtml(panel.favorites->currentIndex().data(Qt::ToolTipRole).toString());
        QCOMPARE(tooltip.toPlainText(), QString("<u>&lt;</u>"));
    }

    void editsTheRowThatWasChosen()
    {
        // A host's evaluator that changes the list when it is asked.
        FileBrowser::SetFavoriteExpressionEvaluator(new Evaluator([](const Favorite& favorite) {
            if (favorite.name == "new")
                FileBrowser::AddFavoriteDir("first", "", "/", "", "", FaveAll, false);
            return favorite.path;
        }));
        Panel panel(folder("geo"));
        panel.choose("gone");
        panel.press("editFavoriteButton", Qt::Key_Return,
                    [](QDialog& dialog) { dialog.findChild<QLineEdit*>("nameEdit")->setText("new"); });
        QCOMPARE(panel.names(), QString("Home Current first all new"));
    }

    void readsIconsAtTheirSize()
    {
        const std::tuple<const char*, QByteArray, int, int> rows[] = {
            {"icon", "P4 8 4\n" + QByteArray(4, 'x'), 8, 8},
            {"wide", "P4 2000 10\n" + QByteArray(2500, 'x'), 16, 64},
            {"huge", "P4 24000 24000\n" + QByteArray(100, 'x'), 0, 0},
            {"text", "text", 0, 0}};
        for (const auto& [name, image, least, most] : rows) {
            QVERIFY(SampleFiles::write(folder(name), image));
            const int width =
                CachedFileIconProvider::iconOfFile(folder(name)).availableSizes().value(0).width();
            QVERIFY2(qMax(width, 0) >= least && width <= most, name);
        }
    }

    void survivesWhatOthersRemove()
    {
        const Panel panel(root.path());
        panel.choose("all");
        FileBrowser::RemoveFavoriteDir("all", 0, true);
        panel.control("editFavoriteButton")->click();
        panel.control("removeFavoriteButton")->click();
        for (const bool isThere : {false, true}) {
            QContextMenuEvent event(QContextMenuEvent::Mouse, {1, 1},
                                    panel.favorites->mapToGlobal(QPoint(1, 1)));
            QApplication::sendEvent(panel.favorites->viewport(), &event);
            const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu && menu->actions().constFirst()->isEnabled() == isThere);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
            panel.choose("gone");
        }
        panel.press("removeFavoriteButton", Qt::Key_Return, [](QDialog&) {
            FileBrowser::ResetFavorites();
            FileBrowser::RemoveFavoriteDir("gone", 0, true);
        });
        QCOMPARE(FileBrowser::Favorites()->size(), 4);
    }

private:
    QString folder(const char* name) const { return root.filePath(name); }

    QTemporaryDir root;
};

QTEST_MAIN(FavoritesPanelTest)
#include "FavoritesPanelTest.moc"
