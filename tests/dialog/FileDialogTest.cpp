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
#include <QTimer>
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
    void forwardsItsConfiguration();
    void openAndCancelEndIt();
    void doubleClickOpens();
    void filterIsReset();
    void sizeIsRemembered();
    void previewGivesTheSizeBack();
    void takesOneDroppedFile();
    void shownFieldKeepsItsSelection();
    void worksByKeyboardAlone();

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
        dialog.setSequencesEnabled(true);
        dialog.setDirectory(QDir(folder), false, true);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
    }

    QPushButton* open() const { return dialog.findChild<QPushButton*>(QStringLiteral("openButton")); }
    QPushButton* next() const { return dialog.findChild<QPushButton*>(QStringLiteral("nextButton")); }
    FilePathEdit* edit() const { return dialog.findChild<FilePathEdit*>(); }
    FileBrowser::FilesList* list() const { return dialog.findChild<FileBrowser::FilesList*>(); }
    FileBrowser::ProxyModel* rows() const { return dialog.findChild<FileBrowser::ProxyModel*>(); }
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

    FileDialog dialog{nullptr, "Import", nullptr};
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
    QTest::addColumn<bool>("multiple");
    QTest::addColumn<bool>("mayNotExist");
    QTest::addColumn<bool>("open");
    QTest::addColumn<bool>("next");

    const auto files = SelectionType::Files;
    const auto folders = SelectionType::Directories;
    const auto both = SelectionType::FilesAndDirectories;
    const auto row = [](SelectionType type, const QStringList& selected, const char* expected) {
        // Two letters each for: plain, multiple, mayNotExist, both; O and N where Open and Next are enabled.
        for (int i = 0; i < 4; ++i) {
            const QString tag = QStringLiteral("%1 %2 %3").arg(int(type)).arg(selected.join('+')).arg(i);
            QTest::newRow(qPrintable(tag)) << type << selected << ((i & 1) != 0) << ((i & 2) != 0)
                                           << (expected[2 * i] == 'O') << (expected[2 * i + 1] == 'N');
        }
    };
    row(files, {"a"}, "O-ONO-ON");
    row(files, {"sub/"}, "----O-O-");
    row(files, {}, "----O-O-");
    row(files, {"!sub"}, "----O-O-");
    row(files, {"a", "b"}, "--ONO-ON");
    row(files, {"a", "sub/"}, "----O-O-");
    row(folders, {"a"}, "----O-O-");
    row(folders, {"sub/"}, "O-ONO-ON");
    row(folders, {"!sub"}, "O-ONO-ON");
    row(folders, {"!none"}, "----O-O-");
    row(folders, {"!a"}, "----O-O-");
    row(folders, {"a", "sub/"}, "----O-O-");
    row(both, {"a"}, "O-ONO-ON");
    row(both, {"sub/"}, "O-ONO-ON");
    row(both, {"!sub"}, "O-ONO-ON");
    row(both, {"!none"}, "----O-O-");
    row(both, {"a", "sub/"}, "--ONO-ON");
}

void FileDialogTest::buttonsFollowTheSelection()
{
    QFETCH(SelectionType, type);
    QFETCH(QStringList, selected);
    QFETCH(bool, multiple);
    QFETCH(bool, mayNotExist);
    Window window(m_folder->path());
    window.dialog.setSelectionType(type);
    window.dialog.setMultipleSelections(true);
    window.dialog.setMayNotExist(mayNotExist);
    QTRY_COMPARE(window.names(), (QStringList{"a", "b", "sub/"}));
    if (!selected.isEmpty() && selected.first().startsWith(QLatin1Char('!'))) {
        window.edit()->setText(path(selected.first().mid(1)));
    } else {
        window.select(selected);
        if (selected.isEmpty())
            window.edit()->clear();
    }
    window.dialog.setMultipleSelections(multiple);
    QVERIFY(QMetaObject::invokeMethod(&window.dialog, "fileSelectionChanged"));
    QTEST(window.open()->isEnabled(), "open");
    QTEST(window.next()->isEnabled(), "next");
    if (!multiple)
        return;
    // With something queued Open stays possible whatever is selected.
    window.dialog.setSelectionType(SelectionType::FilesAndDirectories);
    window.next()->setEnabled(true);
    window.next()->click();
    window.list()->clearSelection();
    window.dialog.setSelectionType(type);
    window.edit()->setText(path(QStringLiteral("none")));
    QVERIFY(QMetaObject::invokeMethod(&window.dialog, "fileSelectionChanged"));
    QVERIFY(window.open()->isEnabled() && !window.next()->isEnabled());
}

void FileDialogTest::everyConnectionResolves()
{
    Window window(m_folder->path());
    FileBrowser* browser = window.dialog.fileBrowser();
    const struct
    {
        const QObject* sender;
        const char* signal;
        const char* slot;
    } connections[] = {
        {window.list()->selectionModel(), SIGNAL(selectionChanged(QItemSelection, QItemSelection)),
         SLOT(fileSelectionChanged())},
        {browser, SIGNAL(fileSelected(const Halvern::UI::FileInfo&, QDir)), SLOT(fileSelectionChanged())},
        {browser, SIGNAL(fileDoubleClick(const Halvern::UI::FileInfo&)),
         SLOT(fileDoubleClicked(const Halvern::UI::FileInfo&))},
        {browser, SIGNAL(accepted()), SLOT(accept())},
        {browser, SIGNAL(rejected()), SLOT(reject())},
        {browser, SIGNAL(previewClosed()), SLOT(onPreviewClosed())},
        {browser, SIGNAL(previewOpening()), SLOT(onPreviewOpening())},
    };
    for (const auto& connection : connections)
        QVERIFY2(QObject::disconnect(connection.sender, connection.signal, &window.dialog, connection.slot),
                 connection.slot);
}

void FileDialogTest::forwardsItsConfiguration()
{
    Window window(m_folder->path());
    QCOMPARE(window.open()->text(), QStringLiteral("Import"));
    QCOMPARE(window.open()->toolTip(), QStringLiteral("Choose the selected item and close."));
    QStringList filters{QStringLiteral("b*")};
    window.dialog.setFilters(filters, true);
    QTRY_COMPARE(window.names(), (QStringList{"b", "sub/"}));
    window.dialog.setFilename(path(QStringLiteral("sub/new")));
    QCOMPARE(window.dialog.directory().path(), path(QStringLiteral("sub")));
    QCOMPARE(window.dialog.selectedFiles(), QStringList(path("sub/new")));
    window.dialog.setFilterBlock(false);
    window.edit()->setText(path(QStringLiteral("sub/")));
    window.dialog.setSelectionType(SelectionType::Directories);
    window.dialog.refreshWidget();
    QVERIFY(window.open()->isEnabled());
    window.dialog.buildSettingsNamespace(QStringLiteral("dialog"));
    window.list()->sortByColumn(2, Qt::AscendingOrder);
    QCOMPARE(AppSettings().value(QStringLiteral("FileBrowser/dialog/orderlogicalindex")).toInt(), 2);
}

void FileDialogTest::openAndCancelEndIt()
{
    Window window(m_folder->path());
    QTRY_COMPARE(window.names().size(), 3);
    window.select({"a"});
    QTest::mouseClick(window.open(), Qt::LeftButton);
    QCOMPARE(window.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!window.dialog.isVisible());
    window.dialog.show();
    QTest::mouseClick(window.dialog.findChild<QPushButton*>(QStringLiteral("cancelButton")), Qt::LeftButton);
    QCOMPARE(window.dialog.result(), int(QDialog::Rejected));
    window.dialog.show();
    QTest::keyClick(&window.dialog, Qt::Key_Escape);
    QVERIFY(!window.dialog.isVisible());
}

void FileDialogTest::doubleClickOpens()
{
    Window window(m_folder->path());
    QTRY_COMPARE(window.names().size(), 3);
    const QPoint place = window.list()->visualRect(window.rows()->index(1, 0)).center();
    QTest::mouseClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(window.list()->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QCOMPARE(window.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(window.dialog.selectedFiles(), QStringList(path("b")));
}

void FileDialogTest::filterIsReset()
{
    Window window(m_folder->path());
    QStringList filters{QStringLiteral("b*")};
    window.dialog.setFilters(filters, true);
    QTRY_COMPARE(window.names(), (QStringList{"b", "sub/"}));
    QVERIFY(QMetaObject::invokeMethod(&window.dialog, "resetFileFilter"));
    QCOMPARE(window.names().size(), 3);
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
    class Preview : public QWidget
    {
    public:
        QSize sizeHint() const override { return {512, 400}; }
    };
    expectWarning(QStringLiteral("No such slot QWidget::fileSelected"));
    Window window(m_folder->path());
    window.dialog.resize(900, 500);
    QVERIFY(QMetaObject::invokeMethod(&window.dialog, "onPreviewClosed"));
    QCOMPARE(window.dialog.size(), QSize(900, 500));
    auto* preview = new Preview;
    preview->setMinimumHeight(400);
    preview->hide();
    window.dialog.setPreviewWidget(preview);
    auto* button = window.dialog.findChild<DisclosureButton*>();
    button->click();
    QTRY_VERIFY(window.dialog.height() > 500);
    button->click();
    QTRY_COMPARE(window.dialog.size(), QSize(900, 500));
}

void FileDialogTest::takesOneDroppedFile()
{
    Window window(m_folder->path());
    const QString before = window.edit()->text();
    const auto drop = [&](QWidget* target, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent event(QPoint(5, 5), enter.dropAction(), &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
        return event.isAccepted() && enter.dropAction() == Qt::CopyAction;
    };
    const QUrl file = QUrl::fromLocalFile(path(QStringLiteral("sub/dropped")));
    const QUrl folder = QUrl::fromLocalFile(path(QStringLiteral("sub/")));
    QVERIFY(!drop(&window.dialog, {file, folder}));
    QVERIFY(!drop(&window.dialog, {QUrl(QStringLiteral("https://example.org/a.exr"))}));
    QVERIFY(!drop(&window.dialog, {}));
    QVERIFY(!window.edit()->acceptDrops());
    QCOMPARE(window.edit()->text(), before);
    QVERIFY(drop(&window.dialog, {file}));
    QCOMPARE(window.edit()->text(), path(QStringLiteral("sub/dropped")));
    QVERIFY(drop(&window.dialog, {folder}));
    QCOMPARE(window.dialog.directory().path(), path(QStringLiteral("sub")));
}

void FileDialogTest::shownFieldKeepsItsSelection()
{
    FileDialog dialog;
    dialog.setFilename(path(QStringLiteral("a")));
    dialog.show();
    QCOMPARE(dialog.findChild<FilePathEdit*>()->selectedText(), QStringLiteral("a"));
    Window fresh(m_folder->path());
    QVERIFY(!fresh.edit()->hasSelectedText());
    QCOMPARE(fresh.edit()->cursorPosition(), fresh.edit()->text().length());
}

// Type part of a path, complete it, move through the list, enter a directory, go back and up, queue two
// sequences and open.
void FileDialogTest::worksByKeyboardAlone()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("shots/010")));
    const QString shots = path(QStringLiteral("shots"));
    QVERIFY(SampleFiles::makeFrames(shots, "bg.%02d.exr", 1, 9));
    QVERIFY(SampleFiles::makeFrames(shots, "fg.%02d.exr", 1, 9));
    QVERIFY(SampleFiles::make(shots + "/010", {"note"}));

    Window window(m_folder->path());
    window.dialog.setMultipleSelections(true);
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.dialog.windowHandle(), key, modifiers);
    };
    const auto focusByTab = [&](const QWidget* wanted) {
        for (int i = 0; i < 20 && QApplication::focusWidget() != wanted; ++i)
            press(Qt::Key_Backtab, Qt::ShiftModifier);
        return QApplication::focusWidget() == wanted;
    };
    QTRY_COMPARE(QApplication::focusWidget(), window.edit());
    QTRY_COMPARE(window.names().size(), 4);
    press(Qt::Key_S);
    press(Qt::Key_H);
    press(Qt::Key_Tab);
    QCOMPARE(window.edit()->text(), shots + '/');
    const QStringList names{"010/", "bg.##.exr 1-9", "fg.##.exr 1-9"};
    QTRY_COMPARE(window.names(), names);

    QVERIFY(focusByTab(window.list()));
    press(Qt::Key_End);
    press(Qt::Key_Home);
    press(Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(window.dialog.directory().path(), shots + "/010");
    QTRY_COMPARE(window.names(), QStringList("note"));
    press(Qt::Key_Backspace);
    QCOMPARE(window.dialog.directory().path(), shots);
    press(Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(window.dialog.directory().path(), m_folder->path());
    press(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(window.dialog.directory().path(), shots);
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
    QCOMPARE(window.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(window.dialog.selectedFiles(),
             (QStringList{shots + "/fg.##.exr 1-9", shots + "/bg.##.exr 1-9"}));
}

QTEST_MAIN(FileDialogTest)
#include "FileDialogTest.moc"
