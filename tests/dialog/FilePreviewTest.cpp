#include "dialog/FilePreview.h"
#include "browser/BrowserWindow.h"
#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "dialog/Preview.h"
#include "dialog/PreviewText.h"
#include "dialog/StatusLine.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FrameSlider.h"

#include <QLabel>

using namespace Halvern::UI;

namespace {

struct Pane : FilePreview
{
    using FilePreview::FilePreview;
    void select(const char* name, const QString& folder) { fileSelected(FileInfo(name, false), {folder}); }
    /// "name label head"
    QString state() const
    {
        return QString("%1 %2 %3").arg(file().section('/', -1), label.text()).arg(slider.value());
    }

    FrameSlider& slider = *findChild<FrameSlider*>();
    const QLabel& label = *findChild<QLabel*>("label");
};

} // namespace

/// Which file stands for a selection, and what the pane does with it by itself and in a browser.
class FilePreviewTest : public Test
{
    Q_OBJECT

private slots:
    void init() { qputenv("COREUI_PICTURES", FAKE_PICTURES); }

    void namesTheFile()
    {
        const std::tuple<const char*, int, const char*> rows[] = {
            {"shot.####.exr 1-100", 150, "shot.0100.exr, 100 of 1 to 100"},
            {"shot.%04d.exr 1-100 ( 1-50 60-100 )", 7, "shot.0007.exr, 7 of 1 to 100"},
            {"a.####.exr -20--5", -30, "a.00-20.exr, -20 of -20 to -5"},
            {"a.%1d.%04d.exr 8-12", 9, "a.9.%04d.exr, 9 of 8 to 12"},
            {"a.#.exr 1-99999999999", 3, "a.3.exr, 3 of 1 to 2147483647"},
            {"/a (x) 7-9/take#3/b.#.exr 1-5", 3, "/a (x) 7-9/take#3/b.3.exr, 3 of 1 to 5"},
            {"/a#/%d/b c ( 1-5", 3, "/a#/%d/b c ( 1-5, 3 of 2147483647 to 2147483647"},
            {"1-5", 3, "1-5, 3 of 2147483647 to 2147483647"}};
        for (const auto& [selected, frame, wanted] : rows) {
            const FCPreviewInfo info(QString::fromLatin1(selected), frame);
            const auto range = QString(", %1 of %2 to %3").arg(info.frame).arg(info.first).arg(info.last);
            QCOMPARE(info.path + range, QString(wanted));
        }
        QVERIFY(FCPreviewInfo(QString("%2147483647d"), 1).path.size() < 10000);
    }

    void showsWhatCanBeShown()
    {
        const SampleFolder folder{"FONT.TTF", "notes.TXT", "txt"};
        Pane pane(nullptr, 3);
        const auto show = [&](const char* name) {
            pane.slider.setValue(50);
            pane.select(name, folder.path());
            return pane.state();
        };
        pane.show();
        QCOMPARE(show("txt"), QString("txt  50"));
        QCOMPARE(show("notes.TXT"), QString(" No preview available. 0"));
        QCOMPARE(show(folder.path().toUtf8().constData()), QString("  50")); // it is entered
        QCOMPARE(show("FONT.TTF"), QString("FONT.TTF  50"));
        pane.previewFile(nullptr);
        QCOMPARE(pane.state(), QString("  50"));
    }

    void showsTheRangeOfEachNewSequence()
    {
        Pane pane(nullptr, 3);
        pane.show();
        FrameSlider& slider = pane.slider;
        slider.setValue(7);
        const auto view = [&](const char* name) {
            pane.select(name, "/gone");
            return QString("%1-%2 %3").arg(slider.viewStart()).arg(slider.viewEnd()).arg(slider.value());
        };
        QCOMPARE(view("a.#.exr 1-20"), QString("1-20 7"));
        slider.range(3, 9); // zoomed
        // The same, with a gap, and after it has grown.
        for (const char* name : {"a.#.exr 1-20", "a.#.exr 1-20 ( 1-5 9-20 )", "a.#.exr 1-30"})
            QCOMPARE(view(name), QString("3-9 7"));
        slider.range(1, 30);
        QCOMPARE(view("a.#.exr 1-40"), QString("1-40 7"));
        QCOMPARE(view("a.#.exr 50-60"), QString("50-60 7")); // another run
        slider.range(3, 9);
        QCOMPARE(view("b.#.exr 1-30"), QString("1-30 7"));
        QCOMPARE(view("still.exr"), QString("1-30 7"));
        pane.hide();
        pane.previewFile("/gone/c.%04d.exr 5-6");
        QCOMPARE(view("c.exr"), QString("5-6 7"));
    }

    void followsSliderAndBrowser()
    {
        const SampleFolder folder("shot.%04d.exr", 1, 100);
        BrowserWindow window(folder.path());
        auto* pane = new Pane(nullptr, 3);
        window.browser.setPreviewWidget(pane);
        window.clickRow(window.rows().first());
        QCOMPARE(pane->state(), QString("  0"));
        window.control<DisclosureButton>("previewButton")->click();
        QCOMPARE(pane->state(), QString("shot.0001.exr  0"));
        QTest::mouseClick(&pane->slider, Qt::LeftButton, {}, {pane->slider.valueToMouse(24) + 1, 5});
        QCOMPARE(pane->state(), QString("shot.0024.exr  24"));
        QVERIFY(QFile::remove(pane->file()));
        pane->gotoFrame(7);
        QCOMPARE(pane->state(), QString(" No preview available. 24"));
    }

    void saysWhatIsShown()
    {
        Picture picture;
        picture.fullSize = QSize(1920, 1080);
        picture.depth = QString("half");
        picture.path = QString("/a/shot1.0042.exr");
        const std::tuple<const char*, double, QString, const char*> rows[] = {
            {"R G B A", 1, "####.exr 1-99 ( 1-50 53-99 )", ", half RGBA, frame 42 of 1-99, 2 frames missing"},
            {"R G x.R x.G", 1, "%04d.exr 42-43", ", half RG and 2 more channels, frame 42 of 42-43"},
            {"z.Z", 2, "0042.exr", ", pixel aspect 2, half z.Z"}};
        for (const auto& [channels, aspect, name, wanted] : rows) {
            picture.channels = QString(channels).split(' ');
            picture.pixelAspect = aspect;
            const QString selected = "/a/shot1." + name;
            QCOMPARE(PreviewText::describe(picture, selected, PreviewText::runsOf(selected)),
                     QString("1920 x 1080") + wanted);
        }
        StatusLine line;
        line.say(QString("float <img src='/a.png'>")); // a channel, and no picture
        QVERIFY(line.toolTip().contains(QLatin1String("&lt;img")));
        picture.font = QString("DejaVu Sans Book");
        QCOMPARE(PreviewText::describe(picture, QString("/a/a.ttf"), {}), picture.font);
        const QStringList paths{"/a1/f2.07.x", "/a1/f2.0-3.x", "/a1/f2.123.x", "/a1/f2.7.x", "",
                                "/a1/f2..x",   "/a1/f3.07.x"};
        QCOMPARE(PreviewText::framesAmong(paths, "/a1/f2.##.x"), (std::set<int>{-3, 7, 123}));
    }

    void showsPictures()
    {
        const SampleFolder folder{"good", "clear", "hang", "broken"};
        Pane pane(nullptr, 3);
        auto& surface = *pane.findChild<FilePreview::Preview*>();
        const auto painted = [&] { return surface.grab().toImage(); };
        const auto centre = [&] { return qRed(painted().pixel(painted().rect().center())); };
        const auto show = [&](const char* name) {
            pane.select(name, folder.path());
            QCOMPARE(pane.label.text(), QString());
        };
        show("good"); // while hidden
        pane.show();
        QTRY_VERIFY(pane.label.text().startsWith("1920 x 1080, half float RGBA, ACEScg"));
        if (!surface.isValid())
            QSKIP("no OpenGL");
        QCOMPARE(centre(), 200);
        QCOMPARE(qRed(painted().pixel(1, 1)), surface.width() * 9 > surface.height() * 16 ? 0 : 200);

        const QImage before = painted();
        show("hang");
        QCOMPARE(centre(), 200); // of the one before
        QTRY_VERIFY(painted() != before);

        show("clear");
        QTRY_VERIFY(!pane.label.text().isEmpty());
        QVERIFY(centre() == 40 || centre() == 56);
        pane.resize(pane.size() * 1.3);
        show("broken");
        QTRY_COMPARE(pane.label.text(), QString("The file is broken."));
        QCOMPARE(pane.label.toolTip(), pane.label.text());
        QCOMPARE(centre(), 0);
        show("good");
        QTRY_COMPARE(centre(), 200);
        // From the cache, when it is there in that size.
        QTRY_VERIFY((pane.select("good", folder.path()), !pane.label.text().isEmpty()));
        pane.previewFile(nullptr);
        QCOMPARE(pane.label.text(), QString());
        QCOMPARE(centre(), 0);
    }

    void scrubsAndPlays()
    {
        const SampleFolder folder("shot.%04d.exr", 1, 20);
        QVERIFY(QFile::remove(folder.filePath(QString("shot.0009.exr"))));
        FrameSlider::SetCacheframeColour(0x123456ff);
        Pane pane(nullptr, 3);
        const auto cached = [&](int frame) {
            const QPoint place(pane.slider.valueToMouse(frame) + 1, 20);
            return pane.slider.grab().toImage().pixelColor(place) == QColor(0x12, 0x34, 0x56);
        };
        const auto preview = [&](const char* range) {
            pane.previewFile(folder.filePath(QString("shot.####.exr ") + range).toUtf8().constData());
        };
        pane.show();
        preview("1-20 ( 1-8 10-20 )");
        QTRY_VERIFY(pane.label.text().endsWith("frame 1 of 1-20, 1 frame missing"));
        pane.slider.setFocus();
        for (int frame = 2; frame <= 3; ++frame) {
            QTest::keyClick(&pane.slider, Qt::Key_Right);
            QTRY_VERIFY(pane.label.text().contains(QString("frame %1 of").arg(pane.slider.value())));
        }
        QTRY_VERIFY(cached(6)); // read ahead
        QVERIFY(cached(1) && !cached(7));
        pane.slider.setValue(9);
        pane.gotoFrame(9);
        QCOMPARE(pane.label.text(), QString("No preview available."));

        QTest::keyClick(&pane.slider, Qt::Key_Space);
        QTRY_VERIFY(pane.slider.value() > 12);
        preview("1-21");
        QVERIFY(cached(6) && pane.slider.value() > 12);
        QTRY_VERIFY(pane.slider.value() < 8); // again from the first on
        QTest::keyClick(&pane.slider, Qt::Key_Space);
        const int stopped = pane.slider.value();
        QTRY_VERIFY(pane.label.text().contains(QString("frame %1 of").arg(stopped)));
        QTest::qWait(100);
        QCOMPARE(pane.slider.value(), stopped);
        // A frame arrives that was missing.
        pane.slider.setValue(9);
        pane.gotoFrame(9);
        QVERIFY(SampleFiles::make(folder.path(), "shot.0009.exr"));
        preview("1-22");
        QTRY_VERIFY(pane.label.text().endsWith("frame 9 of 1-22"));
        preview("1-23");
        QVERIFY(!pane.label.text().isEmpty());
        QTRY_VERIFY(pane.label.text().endsWith("frame 9 of 1-23"));
        pane.hide();
        QVERIFY(!cached(1));
    }
};

QTEST_MAIN(FilePreviewTest)
#include "FilePreviewTest.moc"
