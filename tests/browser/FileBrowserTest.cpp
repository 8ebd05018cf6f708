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

/// How the parts of a browser work together, and that it survives being thrown away.
class FileBrowserTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }

    void filtersAndReadsAgain()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a.txt", "b.exr"}));
        BrowserWindow window(folder.path());
        auto* filter = window.control<QComboBox>("filterCombo");
        QStringList filters{QStringLiteral("*.txt"), QStringLiteral("*.exr *.dpx")};
        window.browser.setFilters(filters, true);
        QTRY_COMPARE(window.rows(), QStringList("a.txt"));
        filter->setCurrentIndex(1);
        QCOMPARE(window.rows(), QStringList("b.exr"));
        QTest::keyClicks(filter, QStringLiteral(" *"));
        QCOMPARE(window.rows(), (QStringList{"a.txt", "b.exr"}));
        QVERIFY(QFile::remove(folder.filePath("a.txt")));
        window.focusList();
        QTest::keyClick(window.list(), Qt::Key_F5);
        QTRY_COMPARE(window.rows(), QStringList("b.exr"));
    }

    void showsThePreview()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a"}));
        AppSettings().setValue(QStringLiteral("FileBrowser/preview"), true);
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
        QCOMPARE(preview->selected, QStringLiteral("a"));
        delete preview;
        button->click();

        preview = new Preview;
        window.browser.setPreviewWidget(preview);
        preview->hide();
        connect(&window.browser, &FileBrowser::previewOpening, preview, [&] { delete preview; });
        window.control<DisclosureButton>("previewButton")->click();
        window.control<DisclosureButton>("previewButton")->click();
        QCOMPARE(events.last(), QStringLiteral("opening"));
    }

    void boxesKeepWhatIsStillThere()
    {
        const QTemporaryDir folder;
        QVERIFY(SampleFiles::make(folder.path(), {"a", "b", "s.1.exr", "s.2.exr"}));
        BrowserWindow window(folder.path());
        window.browser.setMultipleSelections(true);
        QTRY_COMPARE(window.rows(), (QStringList{"a", "b", "s.#.exr 1-2"}));
        window.clickRow("s.#.exr 1-2");
        window.clickRow("b", Qt::ControlModifier);
        window.control<QCheckBox>("sequencesCheck")->click();
        QCOMPARE(window.browser.selectedFiles().first(), folder.filePath("b"));
        QCOMPARE(window.list()->currentIndex(), window.row("b"));
        QCOMPARE(window.list()->selectionModel()->selectedRows().size(), 1);
    }

    // Switched and destroyed at another moment of the read each time.
    void switchingAndDestructionInMidReadAreClean()
    {
        const QTemporaryDir first;
        const QTemporaryDir second;
        QVERIFY(SampleFiles::makeFrames(first.path(), "first.%04d.txt", 1, 3000));
        QVERIFY(SampleFiles::makeFrames(second.path(), "second%d.txt", 1, 10));
        for (int round = 0; round < 20; ++round) {
            BrowserWindow window(second.path());
            const auto readTheFirst = [&] {
                window.browser.setDirectory(QDir(first.path()), false, true);
                for (int turn = 0; turn < round; ++turn)
                    QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            };
            readTheFirst();
            window.browser.setDirectory(QDir(second.path()), false, true);
            while (!window.model()->isListReady()) {
                for (const QString& name : window.rows())
                    QVERIFY2(name.isEmpty(), qPrintable(name));
                QCoreApplication::processEvents();
            }
            QCOMPARE(window.rows().filter(QStringLiteral("second")).size(), 10);
            QCOMPARE(window.rows().size(), 10);
            window.menu()->popup(QPoint(10, 10));
            readTheFirst();
        }
        QCoreApplication::processEvents();
    }
};

QTEST_MAIN(FileBrowserTest)
#include "FileBrowserTest.moc"
