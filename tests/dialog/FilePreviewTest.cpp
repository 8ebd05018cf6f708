#include "dialog/FilePreview.h"
#include "browser/BrowserWindow.h"
#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FrameSlider.h"

#include <QGLWidget>
#include <QLabel>
#include <climits>

using namespace Halvern::UI;

namespace {

const QString NoPreview = QStringLiteral("No preview available.");

struct Pane : FilePreview
{
    explicit Pane(QWidget* parent = nullptr)
        : FilePreview(parent, 3)
        , slider(*findChild<FrameSlider*>(QStringLiteral("slider")))
    {
    }

    QString text() const { return findChild<QLabel*>(QStringLiteral("label"))->text(); }
    QString name() const { return file().section(QLatin1Char('/'), -1); }

    FrameSlider& slider;
};

} // namespace

/// Which file stands for a selection, and what the pane does with it by itself and in a browser.
class FilePreviewTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }
    void namesTheFile_data();
    void namesTheFile();
    void isBuiltHidden();
    void showsWhatCanBeShown();
    void followsItsSlider();
    void followsTheBrowser();
};

void FilePreviewTest::namesTheFile_data()
{
    QTest::addColumn<int>("frame");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("range"); // frame of first to last
    const auto row = [](const char* selected, int frame, const char* path, const char* range) {
        QTest::addRow("%s", selected) << frame << QString::fromLatin1(path) << QString::fromLatin1(range);
    };
    row("shot.####.exr 1-100", 150, "shot.0100.exr", "100 of 1 to 100");
    row("shot.####.exr 001-100", 0, "shot.0001.exr", "1 of 1 to 100");
    row("shot.%04d.exr 1-100 ( 1-50 60-100 )", 7, "shot.0007.exr", "7 of 1 to 100");
    row("a.#.b.##.exr 1-9", 5, "a.000005.exr", "5 of 1 to 9");
    row("a.##.exr 1-2000", 1234, "a.1234.exr", "1234 of 1 to 2000");
    row("a.####.exr -20--5", -30, "a.00-20.exr", "-20 of -20 to -5");
    row("a.####.exr -5-5", 0, "a.0000.exr", "0 of -5 to 5");
    row("a.%d.exr 8-12", 9, "a.9.exr", "9 of 8 to 12");
    row("a.%1d.%04d.exr 8-12", 9, "a.9.%04d.exr", "9 of 8 to 12");
    row("a.#.exr 1-99999999999", 3, "a.3.exr", "3 of 1 to 2147483647");
    row("a.#.exr 9-3", 5, "a.9.exr", "9 of 9 to 3");
    row("/a (x)/b.#.exr 1-5", 3, "/a (x)/b.3.exr 1-5", "3");
    row("/my (x)/b 1-5", 3, "/my (x)/b 1-5", "3");
    row(" (1-5)", 3, " (1-5)", "3");
    row("plain 1-", 3, "plain 1-", "3");
    row("1-100", 3, "1-100", "3");
    row("50%x.exr", 3, "50%x.exr", "3");
    row("", 3, "", "3");
}

void FilePreviewTest::namesTheFile()
{
    QFETCH(int, frame);
    const FCPreviewInfo info(QString::fromLatin1(QTest::currentDataTag()), frame);
    QTEST(info.path, "path");
    const QString range = QStringLiteral("%1 of %2 to %3").arg(info.frame).arg(info.first).arg(info.last);
    QTEST(info.isSequence ? range : QString::number(info.frame), "range");
    if (!info.isSequence)
        QVERIFY(info.first == INT_MAX && info.last == INT_MAX);
    QVERIFY(FCPreviewInfo(QStringLiteral("%2147483647d"), 1).path.size() < 10000);
}

void FilePreviewTest::isBuiltHidden()
{
    QWidget window;
    const Pane pane(&window);
    window.show();
    QVERIFY(pane.isHidden() && pane.text().isEmpty());
    const auto* preview = qobject_cast<QGLWidget*>(pane.findChild<QObject*>(QStringLiteral("preview")));
    QVERIFY(preview);
    QCOMPARE(preview->minimumSize(), QSize(512, 256));
    QCOMPARE(preview->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
    QVERIFY(QObject::disconnect(&pane.slider, SIGNAL(sliderMoved(int)), &pane, SLOT(gotoFrame(int))));
    QCOMPARE(pane.hostValue(), 3);
}

void FilePreviewTest::showsWhatCanBeShown()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::make(folder.path(), {"FONT.TTF", "notes.TXT", "a.exr", "txt", "x.zip"}));
    Pane pane;
    const auto show = [&](const char* name) {
        pane.updateRange(0, 60);
        pane.slider.setValue(50);
        pane.fileSelected(FileInfo(name, false), QDir(folder.path()));
        return QStringLiteral("%1 %2 %3").arg(pane.name(), pane.text()).arg(pane.slider.value());
    };
    QCOMPARE(show("a.exr"), QStringLiteral("  50"));
    pane.show();
    QCOMPARE(pane.name(), QStringLiteral("a.exr"));
    QCOMPARE(show("notes.TXT"), QStringLiteral(" No preview available. 0"));
    QCOMPARE(pane.slider.viewEnd(), 0);
    QCOMPARE(show("FONT.TTF"), QStringLiteral("FONT.TTF  50"));
    QCOMPARE(show("missing.exr"), QStringLiteral(" No preview available. 50"));
    QCOMPARE(show("txt"), QStringLiteral("txt  50"));
    QCOMPARE(show("x.zip"), QStringLiteral(" No preview available. 0"));
    pane.fileSelected(FileInfo(QFileInfo(folder.path())), QDir(folder.path()));
    QVERIFY(pane.text().isEmpty() && pane.path().isEmpty() && pane.file().isEmpty());
    pane.previewFile(QFile::encodeName(folder.filePath(QStringLiteral("a.exr"))).constData());
    QCOMPARE(pane.name(), QStringLiteral("a.exr"));
    pane.previewFile(nullptr);
    QVERIFY(pane.file().isEmpty());
}

void FilePreviewTest::followsItsSlider()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "shot.%04d.exr", 1, 100));
    Pane pane;
    pane.slider.setValue(150);
    pane.previewFile((folder.path() + QStringLiteral("/shot.####.exr 1-100")).toUtf8().constData());
    pane.gotoFrame(33);
    QVERIFY(pane.file().isEmpty() && pane.frame() == 33);
    pane.show();
    QCOMPARE(pane.name(), QStringLiteral("shot.0100.exr"));
    QVERIFY(pane.frame() == 100 && pane.slider.value() == 150);
    pane.slider.setValue(7);
    pane.gotoFrame(0);
    QCOMPARE(pane.name(), QStringLiteral("shot.0007.exr"));
    QVERIFY(QFile::remove(pane.file()));
    pane.gotoFrame(7);
    QVERIFY(pane.text() == NoPreview && pane.slider.value() == 7);
}

void FilePreviewTest::followsTheBrowser()
{
    const QTemporaryDir folder;
    QVERIFY(SampleFiles::makeFrames(folder.path(), "shot.%04d.exr", 1, 49));
    QVERIFY(SampleFiles::makeFrames(folder.path(), "shot.%04d.exr", 61, 100));
    QVERIFY(SampleFiles::make(folder.path(), {"notes.txt"}) && QDir(folder.path()).mkdir("sub"));
    BrowserWindow window(folder.path());
    auto* pane = new Pane;
    window.browser.setPreviewWidget(pane);
    auto* button = window.control<DisclosureButton>("previewButton");
    QTRY_COMPARE(window.rows().size(), 3);
    window.clickRow(window.rows().filter(QStringLiteral("shot")).value(0));
    QVERIFY(pane->isHidden() && pane->file().isEmpty() && !pane->path().isEmpty());
    button->click();
    QVERIFY(pane->isVisible());
    QCOMPARE(pane->name(), QStringLiteral("shot.0001.exr"));

    const QPoint frame24(pane->slider.valueToMouse(24) + 1, 5);
    QTest::mousePress(&pane->slider, Qt::LeftButton, {}, frame24);
    QTest::mouseRelease(&pane->slider, Qt::LeftButton, {}, frame24);
    QCOMPARE(pane->name(), QStringLiteral("shot.0024.exr"));
    pane->slider.setValue(55);
    pane->gotoFrame(55);
    QCOMPARE(pane->text(), NoPreview);
    window.clickRow(QStringLiteral("notes.txt"));
    QVERIFY(pane->text() == NoPreview && pane->slider.value() == 0);
    QTest::keyClick(window.list(), Qt::Key_End); // the folder
    QVERIFY(pane->path().isEmpty() && pane->text().isEmpty());
    button->click();
    window.clickRow(QStringLiteral("notes.txt"));
    QVERIFY(pane->isHidden() && pane->text().isEmpty());
}

QTEST_MAIN(FilePreviewTest)
#include "FilePreviewTest.moc"
