#include "dialog/DialogWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QWindow>
#include <fstream>

using namespace Halvern::UI;
using SelectionType = FileBrowser::SelectionType;

class FileDialogTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        AppSettings().clear();
        m_folder = std::make_unique<SampleFolder>(std::initializer_list<const char*>{"sub/", "a", "b"});
    }

    void buttonsFollowTheSelection()
    {
        // What is selected, or with a "!" typed, and two letters each for: plain, multiple, mayNotExist,
        // both.
        const std::tuple<SelectionType, QStringList, const char*> rows[] = {
            {SelectionType::Files, {"a"}, "O-ONO-ON"},
            {SelectionType::Files, {"!sub"}, "----O-O-"},
            {SelectionType::Files, {"a", "b"}, "--ONO-ON"},
            {SelectionType::Files, {"a", "sub/"}, "----O-O-"},
            {SelectionType::Directories, {"!sub"}, "O-ONO-ON"},
            {SelectionType::Directories, {"!none"}, "----O-O-"},
            {SelectionType::FilesAndDirectories, {"!sub"}, "O-ONO-ON"},
            {SelectionType::FilesAndDirectories, {"a", "sub/"}, "--ONO-ON"}};
        for (const auto& [type, selected, expected] : rows) {
            DialogWindow window(m_folder->path(), true);
            window.dialog.setSelectionType(type);
            if (selected.first().startsWith('!'))
                window.edit()->setText(path(selected.first().mid(1)));
            else
                window.select(selected);
            QString enabled;
            for (int i = 0; i < 4; ++i) {
                window.dialog.setMultipleSelections((i & 1) != 0);
                window.dialog.setMayNotExist((i & 2) != 0);
                QVERIFY(QMetaObject::invokeMethod(&window.dialog, "fileSelectionChanged"));
                enabled += window.buttons();
            }
            QVERIFY2(enabled == expected, qPrintable(selected.join('+') + ' ' + enabled));
        }
    }

    void buttonsFollowTheRows()
    {
        DialogWindow window(m_folder->path(), true);
        // What is used while "a" is selected and under the mouse. Into the filter box "z" is typed.
        const char* const uses[][3] = {{"splitCheck", "click", "ON"},     {"filterCombo", "", "--"},
                                       {"addAction", "trigger", "O-"},    {"removeAction", "trigger", "--"},
                                       {"nextButton", "click", "O-"},     {"removeAction", "trigger", "--"},
                                       {"refreshAction", "trigger", "ON"}};
        for (const auto& [name, slot, expected] : uses) {
            window.edit()->setText(path({}));
            window.filter()->clearEditText();
            QTRY_COMPARE(window.rows(), m_rows);
            window.select({"a"});
            window.model()->setHoveredRow(window.proxy()->mapToSource(window.row("a")).row());
            QCOMPARE(window.buttons(), QString("ON"));
            if (*slot)
                QMetaObject::invokeMethod(window.dialog.findChild<QObject*>(name), slot);
            else
                window.filter()->setEditText("z");
            QTRY_COMPARE(window.buttons(), QString(expected));
        }
    }

    // Whatever changes what would be opened, nobody else tells the dialog.
    void buttonsFollowTheCalls()
    {
        QVERIFY(QDir(path("sub")).mkdir("a"));
        DialogWindow window(m_folder->path(), true);
        FileDialog& dialog = window.dialog;
        const auto listAgain = [&] {
            dialog.setFilterBlock(false); // setFilename() has set it
            dialog.setDirectory(QDir(m_folder->path()), false, true);
            QTRY_COMPARE(window.rows(), m_rows);
            window.select({"a"});
        };
        const QUrl sub = QUrl::fromLocalFile(path("sub"));
        QVERIFY(!drop(window, {sub, sub}) && !drop(window, {QUrl("https://example.org/a.exr")}));
        QVERIFY(!window.edit()->acceptDrops() && !window.filter()->lineEdit()->acceptDrops());
        AppSettings().setValue("FileBrowser/render/directory", path("sub/a"));
        const std::pair<std::function<void()>, const char*> steps[] = {
            {[&] { window.select({"a"}); }, "ON"},
            {[&] { dialog.setSelectionType(SelectionType::Directories); }, "--"},
            {[&] { dialog.setMayNotExist(true); }, "O-"},
            {[&] { dialog.setMayNotExist(false); }, "--"},
            {[&] { window.list()->clearSelection(), window.edit()->setText(path("none")); }, "--"},
            {[&] { dialog.setFilename(path("sub")); }, "ON"},
            {[&] { dialog.setFilename(path("a")); }, "--"},
            {[&] { QVERIFY(drop(window, {sub}) && window.edit()->text() == path("sub")); }, "ON"},
            {[&] { dialog.setFilename(path("a")), dialog.setDirectory(QDir(path("sub")), false, false); },
             "ON"},
            {[&] { dialog.setSelectionType(SelectionType::Files), listAgain(); }, "ON"},
            // A list that is older than the directory: its rows are what they were.
            {[&] { dialog.setDirectory(QDir(path("sub")), true, false); }, "ON"},
            {[&] { QCOMPARE(dialog.selectedFiles().first(), path("a")); }, "ON"},
            {[&] { dialog.buildSettingsNamespace("render"); }, "--"}};
        for (const auto& step : steps) {
            step.first();
            QVERIFY2(window.buttons() == step.second, qPrintable(QString("step %1").arg(&step - steps)));
        }
        QTRY_COMPARE(window.rows(), QStringList());
        QCOMPARE(window.edit()->text(), path("sub/a/"));
        dialog.buildSettingsNamespace("/");
    }

    void previewGivesTheSizeBack()
    {
        DialogWindow window(m_folder->path());
        window.dialog.resize(900, 500);
        auto* preview = addPreview(window.dialog);
        auto* button = window.control<DisclosureButton>("previewButton");
        button->click();
        QTRY_VERIFY(window.dialog.height() > 500);
        for (int i = 0; i < 3; ++i) // the last one closes it
            button->click();
        QTRY_COMPARE(window.dialog.size(), QSize(900, 500));
        // The size that a person gives the window in between is the one that stays, by the display server.
        button->click();
        QTRY_VERIFY(window.dialog.height() > 500);
        window.dialog.windowHandle()->resize(1000, 950);
        QTRY_COMPARE(window.dialog.size(), QSize(1000, 950));
        connect(window.dialog.fileBrowser(), SIGNAL(previewClosed()), &window.dialog, SLOT(deleteLater()));
        button->click();
        QVERIFY(!preview->isVisible());
        QCOMPARE(window.dialog.size(), QSize(1000, 950));
        QTRY_VERIFY(!window.owned);
        FileDialog().resize(900, 500); // never shown, and not remembered
        QCOMPARE(FileDialog().size(), QSize(1000, 950));
    }

    // Sized before the preview is opened, and remembered with it.
    void previewMayBeOpenFromTheBeginning()
    {
        AppSettings().setValue("FileBrowser/preview", true);
        for (const bool isNew : {true, false}) {
            FileDialog dialog;
            if (isNew)
                dialog.resize(900, 500);
            const QWidget* preview = addPreview(dialog);
            dialog.show();
            QTRY_VERIFY(preview->isVisible() && dialog.height() > 500);
            QCoreApplication::processEvents();
            if (isNew) // the next one opens with the preview as well
                continue;
            dialog.findChild<DisclosureButton*>()->click();
            QTRY_COMPARE(dialog.size(), QSize(900, 500));
        }
    }

    void worksByKeyboardAlone()
    {
        QVERIFY(SampleFiles::make(m_folder->path(), {"shots/010/", "shots/bg.1.exr", "shots/bg.2.exr",
                                                     "shots/fg.1.exr", "shots/fg.2.exr"}));
        const QString shots = path("shots");
        DialogWindow window(m_folder->path(), true);
        const auto press = [&](const char* keys) {
            QTest::keySequence(window.dialog.windowHandle(), QKeySequence(keys));
        };
        const auto focusByTab = [&](const QWidget* wanted) {
            for (int i = 0; i < 20 && QApplication::focusWidget() != wanted; ++i)
                press("Shift+Backtab");
            return QApplication::focusWidget() == wanted;
        };
        press("S, H, Tab");
        QCOMPARE(window.edit()->text(), shots + '/');
        const QStringList names{"010/", "bg.#.exr 1-2", "fg.#.exr 1-2"};
        QTRY_COMPARE(window.rows(), names);

        QVERIFY(focusByTab(window.list()));
        press("End, Home, Ctrl+Down");
        QCOMPARE(window.dialog.directory().path(), shots + "/010");
        press("Backspace");
        QTRY_COMPARE(window.rows(), names);

        press("Home");
        for (int row = 1; row <= 2; ++row) {
            press("Down");
            QVERIFY(focusByTab(window.next()));
            press("Space");
            QCOMPARE(QApplication::focusWidget(), window.list());
        }
        QVERIFY(focusByTab(window.filter()) && window.open()->isEnabled());
        press("Return, Enter");
        QVERIFY(window.dialog.isVisible() && focusByTab(window.edit()));
        press("Return");
        QCOMPARE(window.dialog.result(), int(QDialog::Accepted));
        QCOMPARE(window.dialog.selectedFiles(),
                 (QStringList{shots + "/bg.#.exr 1-2", shots + "/fg.#.exr 1-2"}));
    }

    void mayGoInItsOwnAnswer()
    {
        for (const auto& [control, key, result] : {std::tuple("openButton", Qt::Key_Space, QDialog::Accepted),
                                                   {"cancelButton", Qt::Key_Space, QDialog::Rejected},
                                                   {"filenameEdit", Qt::Key_Return, QDialog::Accepted},
                                                   {"filesList", Qt::Key_Escape, QDialog::Rejected},
                                                   {"filesList", Qt::Key_Return, QDialog::Accepted},
                                                   {"filesList", DoubleClick, QDialog::Accepted}}) {
            const DialogWindow window(m_folder->path());
            for (const char* signal : {SIGNAL(accepted()), SIGNAL(rejected()), SIGNAL(finished(int))})
                connect(&window.dialog, signal, &window.dialog, SLOT(deleteLater()));
            const QSignalSpy finished(&window.dialog, SIGNAL(finished(int)));
            window.clickRow("a");
            auto* widget = window.control<QWidget>(control);
            widget->setFocus();
            if (key == DoubleClick)
                QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, {}, window.place("a"));
            else
                QTest::keyClick(widget, key);
            QTRY_VERIFY2(!window.owned, control);
            QCOMPARE(finished, QList<QList<QVariant>>{{int(result)}});
        }
    }

private:
    static constexpr auto DoubleClick = static_cast<Qt::Key>(0);

    QString path(const QString& name) const { return m_folder->path() + '/' + name; }
    static QWidget* addPreview(FileDialog& dialog)
    {
        expectWarning("No such slot QWidget::fileSelected");
        auto* preview = new QWidget;
        preview->setMinimumHeight(400);
        dialog.setPreviewWidget(preview);
        return preview;
    }
    static bool drop(DialogWindow& window, const QList<QUrl>& urls)
    {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window.dialog, &enter);
        QDropEvent event(QPoint(5, 5), enter.dropAction(), &data, Qt::LeftButton, {});
        if (enter.isAccepted())
            QApplication::sendEvent(&window.dialog, &event);
        return enter.isAccepted() && event.isAccepted() && enter.dropAction() == Qt::CopyAction;
    }

    const QStringList m_rows{"a", "b", "sub/"};
    std::unique_ptr<SampleFolder> m_folder;
};

// The class-wide functions work before there is an application, also with the icon of a favourite.
int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    const std::string icon = folder.filePath("icon.xpm").toStdString();
    std::ofstream(icon) << "/* XPM */ static char* a[] = {\"1 1 1 1\", \"a c red\", \"a\"};";
    for (int i = 0; i < 2; ++i) {
        FileBrowser::ResetNonPersistentFavorites();
        FileBrowser::RemoveFavoriteDir("none", FaveGeo, true);
        FileBrowser::SetFavoriteExpressionEvaluator(nullptr);
        FileBrowser::SetQueuedColor(FileBrowser::GetQueuedColor());
        FileBrowser::SetDefaultPath(FileBrowser::normalizeFile(QString()));
        FileBrowser::SaveFavorites();
        FileBrowser::SetPreferencesPath(folder.filePath("favorites"), "Comp");
        FileBrowser::AddFavoriteDir("kept", "", "/", icon, "", FaveAll, true);
        FileBrowser::InitFavs();
        FileBrowser::LoadFavorites();
    }
    if (!SampleFiles::read(folder.filePath("favorites")).contains("kept"))
        return 1;
    FileBrowser::SetPreferencesPath(QString(), QString());
    const QApplication application(argc, argv);
    FileBrowser::ResetFavorites();
    FileDialogTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "FileDialogTest.moc"
