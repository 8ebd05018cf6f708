#include "browser/BrowserWindow.h"
#include "favorites/EditFavoriteDialog.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"

#include <QAbstractItemModelTester>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <functional>

using namespace Halvern::UI;

namespace {

class Panel : public BrowserWindow
{
public:
    explicit Panel(const QString& folder, int type = FaveAll)
        : BrowserWindow(folder)
        , modelTester(favoritesModel(), QAbstractItemModelTester::FailureReportingMode::QtTest)
        , proxyTester(favorites()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest)
    {
        browser.setFaveType(static_cast<FaveType>(type));
    }

    FavoritesList* favorites() const { return browser.findChild<FavoritesList*>("favoritesList"); }
    FavoritesModel* favoritesModel() const { return browser.findChild<FavoritesModel*>(); }
    QModelIndex favorite(const QString& name) const
    {
        const QModelIndexList found = favorites()->model()->match(favorites()->model()->index(0, 0),
                                                                  Qt::DisplayRole, name, 1, Qt::MatchExactly);
        return found.value(0);
    }
    QString names() const
    {
        QStringList shown;
        for (int row = 0; row < favorites()->model()->rowCount(); ++row)
            shown.append(favorites()->model()->index(row, 0).data().toString());
        return shown.join(QLatin1Char(' '));
    }
    QPoint placeOf(const QString& name) const { return favorites()->visualRect(favorite(name)).center(); }
    void choose(const QString& name) const
    {
        QTest::mouseClick(favorites()->viewport(), Qt::LeftButton, Qt::NoModifier, placeOf(name));
    }
    QString place() const { return browser.directory().dirName(); }
    bool mayEdit() const
    {
        const bool may = control("editFavoriteButton")->isEnabled();
        return may == control("removeFavoriteButton")->isEnabled() && may;
    }
    void go(const QString& folder) { browser.setDirectory(QDir(folder), false, true); }

    QAbstractItemModelTester modelTester;
    QAbstractItemModelTester proxyTester;
};

// Presses a button that opens a dialog, and does in that what a user does.
template <class Dialog>
void press(QPushButton* button, const std::function<void(Dialog&)>& use)
{
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&use] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog && QTest::qWaitForWindowExposed(dialog));
        use(*dialog);
    });
    timer.start(0);
    button->click();
}

QLineEdit* edit(EditFavoriteDialog& dialog, const char* name)
{
    return dialog.findChild<QLineEdit*>(QLatin1String(name));
}

} // namespace

/// The panel of favourites, driven as a user does.
class FavoritesPanelTest : public Test
{
    Q_OBJECT

private slots:
    void init();
    void opensWhatIsChosen();
    void showsItsOwnKinds();
    void keepsWhatTheUserDoes();
    void asksForKinds();
    void highlightsAndOffersAMenu();
    void survivesWhatOthersRemove();

private:
    QString folder(const char* name) const { return root.filePath(QLatin1String(name)); }
    QByteArray stored() const
    {
        QFile file(root.filePath(QStringLiteral("favorites")));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir root;
};

void FavoritesPanelTest::init()
{
    AppSettings().clear();
    const QString path = root.filePath(QStringLiteral("favorites"));
    QFile file(path);
    QVERIFY(file.open(QFile::WriteOnly));
    file.write(QByteArray("add_favorite_dir all all \"\" $/all/\n"
                          "add_favorite_dir -image -sequence img img \"\" $/img/\n"
                          "add_favorite_dir -geo geo geo \"\" $/geo/\n"
                          "add_favorite_dir gone gone \"\" $/gone/\n")
                   .replace("$", root.path().toUtf8()));
    file.close();
    for (const char* name : {"all", "img", "geo"})
        QDir(root.path()).mkpath(QLatin1String(name));
    FileBrowser::SetPreferencesPath(path, QStringLiteral("Comp"));
    FileBrowser::SetDefaultFavoritePaths(root.path(), QString(), folder("geo"), QString(), false);
    FileBrowser::ResetFavorites();
}

void FavoritesPanelTest::opensWhatIsChosen()
{
    Panel panel(folder("img"));
    QVERIFY(QTest::qWaitForWindowExposed(&panel.browser));
    QCOMPARE(panel.names(), QStringLiteral("Home Current all gone"));
    panel.favorites()->setFocus(Qt::TabFocusReason);
    QCOMPARE(panel.place(), QStringLiteral("img"));
    QVERIFY(!panel.mayEdit() && panel.control("addFavoriteButton")->isEnabled());
    struct Step
    {
        const char* favorite;
        const char* place;
        bool editable;
    };
    for (const Step& step :
         {Step{"all", "all", true}, Step{"gone", "all", true}, Step{"Current", "geo", false}}) {
        panel.choose(step.favorite);
        QCOMPARE(panel.place(), QLatin1String(step.place));
        QCOMPARE(panel.mayEdit(), step.editable);
    }
    panel.go(folder("img"));
    panel.choose("Current");
    QCOMPARE(panel.place(), QStringLiteral("geo"));
    QCOMPARE(panel.favorite("all").data(Qt::ToolTipRole).toString(), folder("all"));
    QVERIFY(!panel.favorite("gone").data(Qt::DecorationRole).value<QIcon>().isNull());

    FileBrowser::AddFavoriteDir("new", "", folder("img").toStdString(), "", "tip", 0, true);
    panel.favoritesModel()->resetModel();
    panel.choose("new");
    QCOMPARE(panel.place(), QStringLiteral("geo"));
    panel.browser.refreshFavorites();
    QVERIFY(!panel.mayEdit());
    panel.choose("new");
    QCOMPARE(panel.place(), QStringLiteral("img"));
    QCOMPARE(panel.favorite("new").data(Qt::ToolTipRole).toString(), QStringLiteral("tip"));
}

void FavoritesPanelTest::showsItsOwnKinds()
{
    Panel image(folder("all"), FaveImage);
    Panel several(folder("all"), FaveSequence | FaveGeo);
    QCOMPARE(image.names(), QStringLiteral("Home Current all img gone"));
    QVERIFY(several.names().endsWith(QStringLiteral(" all img geo gone")));
    several.choose("geo");
    several.browser.setFaveType(FaveScript);
    QVERIFY(several.names().endsWith(QStringLiteral(" all gone")));
    QCOMPARE(several.place(), QStringLiteral("geo"));
    QVERIFY(!several.mayEdit());
}

void FavoritesPanelTest::keepsWhatTheUserDoes()
{
    const QByteArray before = stored();
    {
        Panel panel(folder("img"));
        const auto cancel = [](EditFavoriteDialog& dialog) {
            edit(dialog, "nameEdit")->setText("x");
            dialog.reject();
        };
        press<EditFavoriteDialog>(panel.control("addFavoriteButton"), cancel);
        panel.choose("all");
        press<EditFavoriteDialog>(panel.control("editFavoriteButton"), cancel);
        press<QMessageBox>(panel.control("removeFavoriteButton"), [](QMessageBox& box) {
            QCOMPARE(box.windowTitle(), QStringLiteral("Remove Favorite"));
            QCOMPARE(box.text(), QStringLiteral("Do you want to remove the folder 'all' from the list of "
                                                "favorite folders?"));
            QCOMPARE(box.defaultButton(), box.button(QMessageBox::Yes));
            box.button(QMessageBox::No)->click();
        });
        QVERIFY(panel.names().endsWith(QStringLiteral(" all gone")));
        panel.go(folder("img"));
        // What is left alone is not written.
        FileBrowser::AddFavoriteDir("unsaved", "", "/", "", "", 0, true);
        QVERIFY(panel.mayEdit());
    }
    QCOMPARE(stored(), before);
    {
        Panel panel(folder("img"));
        press<EditFavoriteDialog>(panel.control("addFavoriteButton"), [](EditFavoriteDialog& dialog) {
            QCOMPARE(dialog.windowTitle(), QStringLiteral("Edit favorite"));
            QCOMPARE(edit(dialog, "nameEdit")->text(), QStringLiteral("img"));
            edit(dialog, "nameEdit")->selectAll();
            QTest::keyClicks(edit(dialog, "nameEdit"), " my img ");
            QTest::keyClicks(edit(dialog, "tooltipEdit"), "a tip");
            dialog.accept();
        });
        panel.choose("all");
        press<EditFavoriteDialog>(panel.control("editFavoriteButton"), [this](EditFavoriteDialog& dialog) {
            edit(dialog, "folderEdit")->setText(folder("geo"));
            edit(dialog, "nameEdit")->clear();
            dialog.accept();
        });
        QVERIFY(!panel.mayEdit());
        panel.choose(QString());
        QCOMPARE(panel.place(), QStringLiteral("geo"));
        panel.choose("gone");
        press<QMessageBox>(panel.control("removeFavoriteButton"), [](QMessageBox& box) { box.accept(); });
        QVERIFY(panel.favorite("gone").isValid());
        press<QMessageBox>(panel.control("removeFavoriteButton"),
                           [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
        QVERIFY(!panel.favorite("gone").isValid());
    }
    QByteArrayList lines = stored().replace(root.path().toUtf8(), "").split('\n');
    QCOMPARE(
        lines.mid(1, 5).join('\n'),
        QByteArray(
            "add_favorite_dir \"\" \"\" \"\" /geo/\nadd_favorite_dir -image -sequence img img \"\" /img/\n"
            "add_favorite_dir -geo geo geo \"\" /geo/\nadd_favorite_dir unsaved unsaved \"\" /\n"
            "add_favorite_dir \" my img \" \" my img \" \"\" \"a tip\" /img/"));
}

void FavoritesPanelTest::asksForKinds()
{
    const QStringList six = {"FaveImage", "FaveMisc", "FavePython", "FaveProject", "FaveScript", "FaveFont"};
    struct Row
    {
        int before;
        QStringList clicked;
        bool shown;
        int after;
    };
    const Row rows[] = {
        {0, {}, true, 0},     {69, {}, true, 69}, {64, {"FaveSequence"}, true, 0}, {16, six, true, 0},
        {80, six, true, 255}, {69, {}, false, 0}, {-65, {"FaveImage"}, true, 190}};
    for (const Row& row : rows) {
        Favorite favorite(false, true);
        favorite.type = row.before;
        EditFavoriteDialog dialog(nullptr, favorite);
        dialog.setShowChooserTypes(row.shown);
        dialog.show();
        QCOMPARE(dialog.findChild<QWidget*>("chooserFrame")->isVisible(), row.shown);
        for (const QString& name : row.clicked)
            dialog.findChild<QCheckBox*>(name)->click();
        dialog.applyTo(favorite);
        QCOMPARE(favorite.type, row.after);
    }
}

void FavoritesPanelTest::highlightsAndOffersAMenu()
{
    Panel panel(folder("img"));
    QVERIFY(QTest::qWaitForWindowExposed(&panel.browser));
    const auto highlighted = [&] {
        QStringList names;
        for (int row = 0; row < panel.favorites()->model()->rowCount(); ++row) {
            const QModelIndex index = panel.favorites()->model()->index(row, 0);
            if (index.data(Qt::BackgroundRole).value<QColor>() == FileBrowser::GetHightlightColor())
                names.append(index.data().toString());
        }
        return names.join(QLatin1Char(' '));
    };
    for (const char* name : {"all", "gone"}) {
        QTest::mouseMove(panel.favorites()->viewport(), panel.placeOf(name) + QPoint(1, 0));
        QTest::mouseMove(panel.favorites()->viewport(), panel.placeOf(name));
        QTRY_COMPARE(highlighted(), QLatin1String(name));
    }
    QSignalSpy changes(panel.favoritesModel(), SIGNAL(dataChanged(QModelIndex, QModelIndex)));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(panel.favorites(), &leave);
    QCOMPARE(highlighted(), QString());
    QCOMPARE(changes.size(), 1);

    auto* menu = panel.browser.findChild<QMenu*>("favoritesMenu");
    for (const char* name : {"Current", "all"}) {
        panel.choose(name);
        QContextMenuEvent request(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(30, 30));
        QCoreApplication::sendEvent(panel.favorites()->viewport(), &request);
        QTRY_VERIFY(menu->isVisible());
        QStringList offered;
        for (const QAction* action : menu->actions())
            offered.append((action->isEnabled() ? "" : "not ") + action->text());
        QCOMPARE(offered.join(QLatin1Char('|')),
                 *name == 'C' ? QStringLiteral("not Edit...|not Remove||Add Current...")
                              : QStringLiteral("Edit...|Remove||Add Current..."));
        menu->close();
    }
}

void FavoritesPanelTest::survivesWhatOthersRemove()
{
    Panel panel(folder("img"));
    QVERIFY(QTest::qWaitForWindowExposed(&panel.browser));
    panel.choose("all");
    QVERIFY(panel.mayEdit());
    FileBrowser::RemoveFavoriteDir("all", 0, true);
    panel.control("editFavoriteButton")->click();
    panel.control("removeFavoriteButton")->click();
    panel.choose("gone");
    QVERIFY(panel.mayEdit());
    panel.go(folder("img"));
    panel.choose("all");
    QCOMPARE(panel.place(), QStringLiteral("all"));
    QVERIFY(!panel.mayEdit());
    panel.choose("gone");
    press<QMessageBox>(panel.control("removeFavoriteButton"), [](QMessageBox& box) {
        FileBrowser::ResetFavorites();
        FileBrowser::RemoveFavoriteDir("gone", 0, true);
        box.button(QMessageBox::Yes)->click();
    });
    panel.browser.refreshFavorites();
    QVERIFY(panel.names().endsWith(QStringLiteral(" all")));
}

QTEST_MAIN(FavoritesPanelTest)
#include "FavoritesPanelTest.moc"
