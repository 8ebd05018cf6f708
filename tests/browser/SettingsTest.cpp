#include "browser/BrowserWindow.h"
#include "dialog/FileDialog.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QHeaderView>
#include <QScreen>

using namespace Halvern::UI;

namespace {

// What a new browser shows of its settings.
QString describe(const FileBrowser& browser)
{
    const auto checked = [&](const char* name) {
        return browser.findChild<QAbstractButton*>(QLatin1String(name))->isChecked() ? 1 : 0;
    };
    const QHeaderView* header = browser.findChild<FileBrowser::FilesList*>()->header();
    return QString::asprintf("%s %d %d %d %d", qPrintable(browser.directory().absolutePath()),
                             header->sortIndicatorSection(), header->sortIndicatorOrder(),
                             checked("sequencesCheck"), checked("splitCheck"));
}

} // namespace

/// What a browser remembers.
class SettingsTest : public Test
{
    Q_OBJECT

private slots:
    // Before the others, which leave a namespace to all browsers.
    void nonsenseGivesDefaults()
    {
        // Lists in lists, a list of 2^31 elements, and no value.
        const QByteArray nested = QByteArray("\\0\\0\\0\\t\\0\\0\\0\\0\\x1").repeated(200000);
        for (const QByteArray& value :
             {"@Variant(" + nested + ')', QByteArray("@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)"),
              QByteArray("@Invalid()")}) {
            const QByteArray settings(
                "[FileBrowser]\norderlogicalindex=" + value + "\ndirectory=" + value + "\npreview=" + value +
                "\nsortorder=99\nsequences=maybe\nsplitsequences=\nsize=@Size(30000 30000)\n"
                "noise\n\xff\xfe=\nodd\\orderlogicalindex=-7\nodd\\directory=/nowhere/at/all\n");
            QVERIFY(SampleFiles::write(AppSettings::FilePath(), settings));
            FileDialog dialog;
            dialog.show();
            QVERIFY(QTest::qWaitForWindowExposed(&dialog));
            QCOMPARE(describe(*dialog.fileBrowser()), QDir::currentPath() + " 0 0 1 0");
            const QSize screen = QGuiApplication::primaryScreen()->availableVirtualSize();
            QVERIFY(dialog.size().boundedTo(screen) == dialog.size());
        }
        FileBrowser browser;
        browser.buildSettingsNamespace("odd");
        QCOMPARE(describe(browser), QFileInfo(QDir::currentPath()).path() + " 0 0 1 0");
    }

    void previewMayGoAtAnyTime()
    {
        BrowserWindow window(path());
        QString events;
        connect(&window.browser, &FileBrowser::previewOpening, this, [&] { events += 'o'; });
        connect(&window.browser, &FileBrowser::previewClosed, this, [&] { events += 'c'; });
        expectWarning("No such slot QWidget::fileSelected");
        auto* preview = new QWidget;
        window.browser.setPreviewWidget(preview);
        auto* button = window.control<DisclosureButton>("previewButton");
        button->click();
        button->click();
        connect(&window.browser, &FileBrowser::previewOpening, preview, [&] { delete preview; });
        button->click();
        button->click();
        QCOMPARE(events, QString("oco"));
    }

    void remembers()
    {
        {
            BrowserWindow window(path());
            window.browser.buildSettingsNamespace(QString("render"));
            window.browser.setDirectory(QDir(path()), false, true);
            window.list()->sortByColumn(2, Qt::DescendingOrder);
            window.control<QCheckBox>("splitCheck")->click();
            window.control<QCheckBox>("sequencesCheck")->click();
        }
        QCOMPARE(describe(FileBrowser()), path() + " 2 1 1 0");
        FileBrowser browser;
        browser.updateFromPreferences();
        QCOMPARE(describe(browser), path() + " 2 1 0 1");
    }

    void namespacesSeparate()
    {
        FileBrowser first;
        first.buildSettingsNamespace(QString("a"));
        first.findChild<FileBrowser::FilesList*>()->sortByColumn(1, Qt::DescendingOrder);
        FileBrowser second;
        const QHeaderView* header = second.findChild<FileBrowser::FilesList*>()->header();
        QCOMPARE(header->sortIndicatorSection(), 1);
        second.buildSettingsNamespace(QString("b"));
        QCOMPARE(header->sortIndicatorSection(), 0);
        // One that was listed before it was shown is listed anew.
        const SampleFolder folder{"here"};
        AppSettings().setValue(QString("FileBrowser/b/directory"), folder.path());
        QVERIFY(QMetaObject::invokeMethod(&second, "refresh"));
        second.buildSettingsNamespace(QString("b"));
        second.show();
        QTRY_COMPARE(second.findChild<FileBrowser::ProxyModel*>()->index(0, 0).data().toString(),
                     QString("here"));
        // The last namespace is that of all browsers.
        first.findChild<FileBrowser::FilesList*>()->sortByColumn(2, Qt::AscendingOrder);
        QCOMPARE(AppSettings().value(QString("FileBrowser/b/orderlogicalindex")).toInt(), 2);
    }
};

QTEST_MAIN(SettingsTest)
#include "SettingsTest.moc"
