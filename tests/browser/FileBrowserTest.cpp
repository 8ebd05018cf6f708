#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

using namespace Halvern::UI;

namespace {

class Preview : public QWidget
{
    Q_OBJECT

public:
    QString selected;

public slots:
    void fileSelected(const Halvern::UI::FileInfo& info, QDir) { selected = info.displayName(); }
};

} // namespace

/// How the parts of a browser work together.
class FileBrowserTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }

    void filtersAndReadsAgain()
    {
        const SampleFolder folder{"a.txt", "b.exr"};
        BrowserWindow window(folder.path());
        auto* filter = window.control<QComboBox>("filterCombo");
        QStringList filters{QString("*.txt"), QString("*.exr *.dpx")};
        window.browser.setFilters(filters, true);
        QTRY_COMPARE(window.rows(), QStringList("a.txt"));
        filter->setCurrentIndex(1);
        QCOMPARE(window.rows(), QStringList("b.exr"));
        QTest::keyClicks(filter, QString(" *"));
        QCOMPARE(window.rows(), (QStringList{"a.txt", "b.exr"}));
        QVERIFY(QFile::remove(folder.filePath("a.txt")));
        window.focusList();
        QTest::keyClick(window.list(), Qt::Key_F5);
        QTRY_COMPARE(window.rows(), QStringList("b.exr"));
    }

    void showsThePreview()
    {
        const SampleFolder folder{"a"};
        AppSettings().setValue(QString("FileBrowser/preview"), true);
        BrowserWindow window(folder.path());
        QStringList events;
        connect(&window.browser, &FileBrowser::previewOpening, this, [&] { events.append("opening"); });
        connect(&window.browser, &FileBrowser::previewClosed, this, [&] { events.append("closed"); });
        auto* button = window.control<DisclosureButton>("previewButton");
        auto* preview = new Preview;
        window.browser.setPreviewWidget(preview);
        QVERIFY(preview->isVisible());
        button->click();
        QVERIFY(!preview->isVisible());
        button->click();
        QCOMPARE(events, (QStringList{"opening", "closed", "opening"}));

        QTRY_COMPARE(window.rows(), QStringList("a"));
        window.clickRow("a");
        QCOMPARE(preview->selected, QString("a"));
        delete preview;
        button->click();

        preview = new Preview;
        window.browser.setPreviewWidget(preview);
        preview->hide();
        connect(&window.browser, &FileBrowser::previewOpening, preview, [&] { delete preview; });
        window.control<DisclosureButton>("previewButton")->click();
        window.control<DisclosureButton>("previewButton")->click();
        QCOMPARE(events.last(), QString("opening"));
    }
};

QTEST_MAIN(FileBrowserTest)
#include "FileBrowserTest.moc"
