#include "dialog/FilePreview.h"
#include "browser/BrowserWindow.h"
#include "catalogue/FileInfo.h"
#include "dialog/FCPreviewInfo.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/DisclosureButton.h"
#include "widgets/FrameSlider.h"

#include <QLabel>

using namespace Halvern::UI;

/// Which file stands for a selection, and what the pane does with it by itself and in a browser.
class FilePreviewTest : public Test
{
    Q_OBJECT

private slots:
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
            {"1-5", 3, "1-5, 3 of 2147483647 to 2147483647"},
        };
        for (const auto& [selected, frame, wanted] : rows) {
            const FCPreviewInfo info(QString::fromLatin1(selected), frame);
            const auto range =
                QStringLiteral(", %1 of %2 to %3").arg(info.frame).arg(info.first).arg(info.last);
            QCOMPARE(info.path + range, QString(wanted));
        }
        QVERIFY(FCPreviewInfo(QStringLiteral("%2147483647d"), 1).path.size() < 10000);
    }

    void showsWhatCanBeShown()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"FONT.TTF", "notes.TXT", "txt"}));
        FilePreview pane(nullptr, 3);
        const auto show = [&](const char* name) {
            pane.findChild<FrameSlider*>()->setValue(50);
            pane.fileSelected(FileInfo(name, false), QDir(folder.path()));
            return state(pane);
        };
        pane.show();
        QCOMPARE(show("txt"), QStringLiteral("txt  50"));
        QCOMPARE(show("notes.TXT"), QStringLiteral(" No preview available. 0"));
        QCOMPARE(show("FONT.TTF"), QStringLiteral("FONT.TTF  50"));
        pane.previewFile(nullptr);
        QCOMPARE(state(pane), QStringLiteral("  50"));
    }

    void showsTheRangeOfEachNewSequence()
    {
        FilePreview pane(nullptr, 3);
        pane.show();
        auto& slider = *pane.findChild<FrameSlider*>();
        slider.setValue(7);
        const auto view = [&](const char* name) {
            pane.fileSelected(FileInfo(name, false), QDir(QStringLiteral("/gone")));
            return QStringLiteral("%1-%2 %3")
                .arg(slider.viewStart())
                .arg(slider.viewEnd())
                .arg(slider.value());
        };
        QCOMPARE(view("a.#.exr 1-20"), QStringLiteral("1-20 7"));
        slider.range(3, 9); // zoomed
        QCOMPARE(view("a.#.exr 1-20"), QStringLiteral("3-9 7"));
        QCOMPARE(view("a.#.exr 1-20 ( 1-5 9-20 )"), QStringLiteral("3-9 7"));
        QCOMPARE(view("a.#.exr 1-30"), QStringLiteral("1-30 7"));
        slider.range(3, 9);
        QCOMPARE(view("b.#.exr 1-30"), QStringLiteral("1-30 7"));
        QCOMPARE(view("still.exr"), QStringLiteral("1-30 7"));
        pane.hide();
        pane.previewFile("/gone/c.%04d.exr 5-6");
        QCOMPARE(view("c.exr"), QStringLiteral("5-6 7"));
    }

    void followsSliderAndBrowser()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::makeFrames(folder.path(), "shot.%04d.exr", 1, 100));
        BrowserWindow window(folder.path());
        auto* pane = new FilePreview(nullptr, 3);
        auto& slider = *pane->findChild<FrameSlider*>();
        window.browser.setPreviewWidget(pane);
        QTRY_COMPARE(window.rows().size(), 1);
        window.clickRow(window.rows().first());
        QCOMPARE(state(*pane), QStringLiteral("  0"));
        window.control<DisclosureButton>("previewButton")->click();
        QCOMPARE(state(*pane), QStringLiteral("shot.0001.exr  0"));
        QTest::mouseClick(&slider, Qt::LeftButton, {}, QPoint(slider.valueToMouse(24) + 1, 5));
        QCOMPARE(state(*pane), QStringLiteral("shot.0024.exr  24"));
        QVERIFY(QFile::remove(pane->file()));
        pane->gotoFrame(7);
        QCOMPARE(state(*pane), QStringLiteral(" No preview available. 24"));
    }

private:
    /// "name label head" of a pane.
    static QString state(const FilePreview& pane)
    {
        const QString name = pane.file().section(QLatin1Char('/'), -1);
        const QString text = pane.findChild<QLabel*>(QStringLiteral("label"))->text();
        return QStringLiteral("%1 %2 %3").arg(name, text).arg(pane.findChild<FrameSlider*>()->value());
    }
};

QTEST_MAIN(FilePreviewTest)
#include "FilePreviewTest.moc"
