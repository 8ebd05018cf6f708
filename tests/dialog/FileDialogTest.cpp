#include "dialog/FileDialog.h"
#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "browser/ProxyModel.h"
#include "dialog/FilePathEdit.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPushButton>
#include <QWindow>

using namespace Halvern::UI;
using SelectionType = FileBrowser::SelectionType;

class FileDialogTest : public Test
{
    Q_OBJECT

private slots:
    void init();
    void buttonsFollowTheSelection_data();
    void buttonsFollowTheSelection();
    void everyConnectionResolves();
    void sizeIsRemembered();
    void previewGivesTheSizeBack();
    void takesOneDroppedFile();
    void worksByKeyboardAlone();
    void mayGoInItsOwnAnswer();

private:
    QString path(const QString& name) const { return m_folder->path() + '/' + name; }

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

// A shown dialog with the parts that tests look at.
struct Window
{
    explicit Window(const QString& folder)
    {
        dialog->setSequencesEnabled(true);
        dialog->setDirectory(QDir(folder), false, true);
        dialog->show();
        QApplication::setActiveWindow(dialog);
    }
    ~Window() { delete dialog; }

    QPushButton* open() const { return dialog->findChild<QPushButton*>(QStringLiteral("openButton")); }
    QPushButton* next() const { return dialog->findChild<QPushButton*>(QStringLiteral("nextButton")); }
    FilePathEdit* edit() const { return dialog->findChild<FilePathEdit*>(); }
    FileBrowser::FilesList* list() const { return dialog->findChild<FileBrowser::FilesList*>(); }
    FileBrowser::ProxyModel* rows() const { return dialog->findChild<FileBrowser::ProxyModel*>(); }
    QStringList names() const
    {
        QStringList texts;
        for (int row = 0; row < rows()->rowCount(); ++row)
            texts.append(rows()->index(row, 0).data().toString());
        return texts;
    }
    void select(const QStringList& texts) const
    {
        list()->clearSelection();
        for (const QString& text : texts)
            list()->selectionModel()->select(rows()->index(names().indexOf(text), 0),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }

    QPointer<FileDialog> dialog = new FileDialog(nullptr, "Import", nullptr);
};

} // namespace

void FileDialogTest::init()
{
    AppSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("sub")));
    QVERIFY(SampleFiles::make(m_folder->path(), {"a", "b"}));
}

void FileDialogTest::buttonsFollowTheSelection_data()
{
    QTest::addColumn<SelectionType>("type");
    QTest::addColumn<QStringList>("selected"); // one name with a "!" in front is typed instead
    // Two letters each for: plain, multiple, mayNotExist, both; O and N where Open and Next are enabled.
    QTest::addColumn<QString>("expected");
    const auto row = [](SelectionType type, const QStringList& selected, const char* expected) {
        QTest::addRow("%d %s", int(type), qPrintable(selected.join('+'))) << type << selected << expected;
    };
    row(SelectionType::Files, {"a"}, "O-ONO-ON");
    row(SelectionType::Files, {"!sub"}, "----O-O-");
    row(SelectionType::Files, {"a", "b"}, "--ONO-ON");
    row(SelectionType::Files, {"a", "sub/"}, "----O-O-");
    row(SelectionType::Directories, {"!sub"}, "O-ONO-ON");
    row(SelectionType::Directories, {"!none"}, "----O-O-");
    row(SelectionType::FilesAndDirectories, {"!sub"}, "O-ONO-ON");
    row(SelectionType::FilesAndDirectories, {"a", "sub/"}, "--ONO-ON");
}

void FileDialogTest::buttonsFollowTheSelection()
{
    QFETCH(SelectionType, type);
    QFETCH(QStringList, selected);
    Window window(m_folder->path());
    window.dialog->setSelectionType(type);
    window.dialog->setMultipleSelections(true);
    QTRY_COMPARE(window.names(), (QStringList{"a", "b", "sub/"}));
    if (selected.first().startsWith(QLatin1Char('!')))
        window.edit()->setText(path(selected.first().mid(1)));
    else
        window.select(selected);
    QString enabled;
    for (int i = 0; i < 4; ++i) {
        window.dialog->setMultipleSelections((i & 1) != 0);
        window.dialog->setMayNotExist((i & 2) != 0);
        QVERIFY(QMetaObject::invokeMethod(window.dialog.data(), "fileSelectionChanged"));
        enabled += window.open()->isEnabled() ? 'O' : '-';
        enabled += window.next()->isEnabled() ? 'N' : '-';
    }
    QTEST(enabled, "expected");
}

void FileDialogTest::everyConnectionResolves()
{
    Window window(m_folder->path());
    const FileBrowser* browser = window.dialog->fileBrowser();
    const auto leave = [&](const QObject* sender, const char* signal, const char* slot) {
        QVERIFY2(QObject::disconnect(sender, signal, window.dialog.data(), slot), slot);
    };
    leave(window.list()->selectionModel(), SIGNAL(selectionChanged(QItemSelection, QItemSelection)),
          SLOT(fileSelectionChanged()));
    leave(browser, SIGNAL(fileSelected(Halvern::UI::FileInfo, QDir)), SLOT(fileSelectionChanged()));
    leave(browser, SIGNAL(fileDoubleClick(Halvern::UI::FileInfo)),
          SLOT(fileDoubleClicked(Halvern::UI::FileInfo)));
    leave(browser, SIGNAL(accepted()), SLOT(accept()));
    leave(browser, SIGNAL(rejected()), SLOT(reject()));
    leave(browser, SIGNAL(previewClosed()), SLOT(onPreviewClosed()));
    leave(browser, SIGNAL(previewOpening()), SLOT(onPreviewOpening()));
}

void FileDialogTest::sizeIsRemembered()
{
    {
        FileDialog dialog;
        dialog.resize(1011, 633);
    }
    QCOMPARE(FileDialog().size(), QSize(1011, 633));
    AppSettings().setValue(QStringLiteral("FileBrowser/size"), QStringLiteral("wide"));
    QVERIFY(!FileDialog().size().isEmpty());
}

void FileDialogTest::previewGivesTheSizeBack()
{
    expectWarning(QStringLiteral("No such slot QWidget::fileSelected"));
    Window window(m_folder->path());
    window.dialog->resize(900, 500);
    auto* preview = new QWidget;
    preview->setMinimumHeight(400);
    preview->hide();
    window.dialog->setPreviewWidget(preview);
    auto* button = window.dialog->findChild<DisclosureButton*>();
    button->click();
    QTRY_VERIFY(window.dialog->height() > 500);
    button->click();
    QTRY_COMPARE(window.dialog->size(), QSize(900, 500));
}

void FileDialogTest::takesOneDroppedFile()
{
    Window window(m_folder->path());
    const auto drop = [&](const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        const QPoint place(5, 5);
        const Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter(place, possible, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.dialog.data(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(place, enter.dropAction(), &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.dialog.data(), &event);
        return event.isAccepted() && enter.dropAction() == Qt::CopyAction;
    };
    const QUrl file = QUrl::fromLocalFile(path(QStringLiteral("sub/dropped")));
    QVERIFY(!drop({file, file}));
    QVERIFY(!drop({QUrl(QStringLiteral("https://example.org/a.exr"))}));
    QVERIFY(!window.edit()->acceptDrops());
    QVERIFY(drop({file}));
    QCOMPARE(window.edit()->text(), path(QStringLiteral("sub/dropped")));
}

// Type part of a path, complete it, move through the list, enter a directory, go up, queue two
// sequences and open.
void FileDialogTest::worksByKeyboardAlone()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("shots/010")));
    const QString shots = path(QStringLiteral("shots"));
    QVERIFY(SampleFiles::makeFrames(shots, "bg.%02d.exr", 1, 9));
    QVERIFY(SampleFiles::makeFrames(shots, "fg.%02d.exr", 1, 9));

    Window window(m_folder->path());
    window.dialog->setMultipleSelections(true);
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.dialog->windowHandle(), key, modifiers);
    };
    const auto focusByTab = [&](const QWidget* wanted) {
        for (int i = 0; i < 20 && QApplication::focusWidget() != wanted; ++i)
            press(Qt::Key_Backtab, Qt::ShiftModifier);
        return QApplication::focusWidget() == wanted;
    };
    QTRY_COMPARE(window.names().size(), 4);
    for (const Qt::Key key : {Qt::Key_S, Qt::Key_H, Qt::Key_Tab})
        press(key);
    QCOMPARE(window.edit()->text(), shots + '/');
    const QStringList names{"010/", "bg.##.exr 1-9", "fg.##.exr 1-9"};
    QTRY_COMPARE(window.names(), names);

    QVERIFY(focusByTab(window.list()));
    press(Qt::Key_End);
    press(Qt::Key_Home);
    press(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(window.dialog->directory().path(), shots + "/010");
    press(Qt::Key_Backspace);
    QTRY_COMPARE(window.names(), names);

    for (int row = 1; row <= 2; ++row) {
        press(Qt::Key_Home);
        for (int i = 0; i < row; ++i)
            press(Qt::Key_Down);
        QVERIFY(focusByTab(window.next()));
        press(Qt::Key_Space);
        QCOMPARE(QApplication::focusWidget(), window.list());
    }
    QVERIFY(focusByTab(window.edit()));
    press(Qt::Key_Return);
    QCOMPARE(window.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(window.dialog->selectedFiles(),
             (QStringList{shots + "/fg.##.exr 1-9", shots + "/bg.##.exr 1-9"}));
}

void FileDialogTest::mayGoInItsOwnAnswer()
{
    const auto doubleClick = static_cast<Qt::Key>(0);
    for (const auto& [control, key] : {std::pair("openButton", Qt::Key_Space),
                                       {"cancelButton", Qt::Key_Space},
                                       {"filenameEdit", Qt::Key_Return},
                                       {"filesList", Qt::Key_Escape},
                                       {"filesList", doubleClick}}) {
        Window window(m_folder->path());
        QTRY_COMPARE(window.names().size(), 3);
        window.open()->setEnabled(true);
        connect(window.dialog, &QDialog::finished, this, [&] { delete window.dialog; });
        const QPoint place = window.list()->visualRect(window.rows()->index(0, 0)).center();
        if (key == doubleClick)
            QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
        else
            QTest::keyClick(window.dialog->findChild<QWidget*>(control), key);
        QVERIFY2(!window.dialog, control);
    }
}

int main(int argc, char** argv)
{
    // Before there is an application or a browser, none of these has anything to work on.
    FileBrowser::SaveFavorites();
    FileBrowser::LoadFavorites();
    FileBrowser::AddFavorite(Favorite(true, true));
    FileBrowser::RemoveFavoriteDir("none", FaveGeo, true);
    FileBrowser::SetFavoriteExpressionEvaluator(nullptr);
    FileBrowser::ResetNonPersistentFavorites();
    FileBrowser::ResetFavorites();
    const QApplication application(argc, argv);
    FileDialogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "FileDialogTest.moc"
