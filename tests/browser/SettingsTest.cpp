#include "browser/BrowserWindow.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/AppSettings.h"
#include "widgets/DisclosureButton.h"

#include <QHeaderView>
#include <QProcess>
#include <cstdio>
#include <cstring>

using namespace Halvern::UI;

/// What a browser remembers.
class SettingsTest : public Test
{
    Q_OBJECT

private slots:
    void init() { AppSettings().clear(); }
    void writesWhatTheUserChanges();
    void disabledSequencesAreNotWritten();
    void anotherProcessRemembers();
    void nonsenseGivesDefaults();
    void unwritableSettingsDoNoHarm();
    void startDirectory();
    void namespacesSeparate();
};

namespace {

QVariant stored(const char* key)
{
    return AppSettings().value(QLatin1String("FileBrowser/") + QLatin1String(key));
}

// What a new browser shows of its settings.
QString describe(const FileBrowser& browser)
{
    const auto checked = [&](const char* name) {
        return browser.findChild<QAbstractButton*>(QLatin1String(name))->isChecked() ? 1 : 0;
    };
    const QHeaderView* header = browser.findChild<FileBrowser::FilesList*>()->header();
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(browser.directory().absolutePath())
        .arg(header->sortIndicatorSection())
        .arg(int(header->sortIndicatorOrder()))
        .arg(checked("sequencesCheck"))
        .arg(checked("splitCheck"));
}

} // namespace

void SettingsTest::writesWhatTheUserChanges()
{
    const QTemporaryDir folder;
    {
        BrowserWindow window(folder.path());
        QVERIFY(!stored("sortorder").isValid());
        window.list()->sortByColumn(1, Qt::DescendingOrder);
        QCOMPARE(stored("orderlogicalindex").toInt(), 1);
        QCOMPARE(stored("sortorder").toInt(), 1);
        window.control<QCheckBox>("splitCheck")->click();
        QCOMPARE(stored("splitsequences").toBool(), true);
        window.control<QCheckBox>("sequencesCheck")->click();
        QCOMPARE(stored("sequences").toInt(), 1);
        window.browser.setPreviewWidget(nullptr);
        window.control<DisclosureButton>("previewButton")->setChecked(true);
    }
    QCOMPARE(stored("directory").toString(), folder.path());
    QCOMPARE(stored("preview").toBool(), true);
}

void SettingsTest::disabledSequencesAreNotWritten()
{
    BrowserWindow window(QDir::tempPath());
    window.browser.setSequencesEnabled(false);
    window.control<QCheckBox>("sequencesCheck")->click();
    window.control<QCheckBox>("splitCheck")->click();
    QVERIFY(!stored("sequences").isValid() && !stored("splitsequences").isValid());
    window.browser.updateFromPreferences();
    QCOMPARE(window.control<QCheckBox>("sequencesCheck")->isChecked(), false);
}

void SettingsTest::anotherProcessRemembers()
{
    const QTemporaryDir folder;
    {
        BrowserWindow window(folder.path());
        window.browser.buildSettingsNamespace(QStringLiteral("render"));
        window.browser.setDirectory(QDir(folder.path()), false, true);
        window.list()->sortByColumn(2, Qt::DescendingOrder);
        window.control<QCheckBox>("splitCheck")->click();
        window.control<QCheckBox>("sequencesCheck")->click();
    }
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("--describe"), QFileInfo(AppSettings().fileName()).path()});
    QVERIFY(process.waitForFinished());
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), folder.path() + " 2 1 0 1");
}

void SettingsTest::nonsenseGivesDefaults()
{
    const QString file = AppSettings().fileName();
    {
        QFile settings(file);
        QVERIFY(settings.open(QIODevice::WriteOnly));
        settings.write(
            "[FileBrowser]\norderlogicalindex=abc\nsortorder=99\nsequences=maybe\nsplitsequences=\n"
            "directory=@Invalid()\npreview=@ByteArray(\nsize=wide\nnoise\n\xff\xfe=\n"
            "[FileBrowser/odd]\norderlogicalindex=-7\ndirectory=/nowhere/at/all\n");
    }
    const QString defaults = QStringLiteral("%1 0 0 1 0").arg(QDir::currentPath());
    FileBrowser browser;
    QCOMPARE(describe(browser), defaults);
    browser.updateFromPreferences();
    QCOMPARE(describe(browser), defaults);
    browser.buildSettingsNamespace(QStringLiteral("odd"));
    QCOMPARE(describe(browser), QStringLiteral("%1 0 0 1 0").arg(QFileInfo(QDir::currentPath()).path()));
}

void SettingsTest::unwritableSettingsDoNoHarm()
{
    const QString path = QFileInfo(AppSettings().fileName()).path();
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("/proc/no/such/folder"));
    {
        BrowserWindow window(QDir::tempPath());
        window.list()->sortByColumn(1, Qt::DescendingOrder);
        QCOMPARE(window.browser.directory().path(), QDir::tempPath());
    }
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, path);
}

void SettingsTest::startDirectory()
{
    const QTemporaryDir folder;
    AppSettings().setValue(QStringLiteral("FileBrowser/odd/directory"), folder.path());
    QCOMPARE(FileBrowser().directory().path(), folder.path());
    FileBrowser::SetUseLastSavedDir(false);
    QCOMPARE(FileBrowser().directory().path(), QDir::currentPath());
    FileBrowser::SetUseLastSavedDir(true);
}

void SettingsTest::namespacesSeparate()
{
    const QTemporaryDir folder;
    FileBrowser first;
    first.buildSettingsNamespace(QString());
    QVERIFY(!stored("a/sortorder").isValid());
    first.buildSettingsNamespace(QStringLiteral("a"));
    first.findChild<FileBrowser::FilesList*>()->sortByColumn(1, Qt::DescendingOrder);
    QCOMPARE(stored("a/orderlogicalindex").toInt(), 1);
    QCOMPARE(stored("a/sortorder").toInt(), 1);
    QVERIFY(!stored("sortorder").isValid());
    FileBrowser second;
    QCOMPARE(second.findChild<FileBrowser::FilesList*>()->header()->sortIndicatorSection(), 1);
    second.buildSettingsNamespace(QStringLiteral("b"));
    QCOMPARE(second.findChild<FileBrowser::FilesList*>()->header()->sortIndicatorSection(), 0);
    first.setDirectory(QDir(folder.path()), false, false);
    first.findChild<FileBrowser::FilesList*>()->sortByColumn(2, Qt::AscendingOrder);
    QCOMPARE(stored("b/orderlogicalindex").toInt(), 2);
    QCOMPARE(stored("a/orderlogicalindex").toInt(), 1);
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--describe") == 0) {
        // The second process of a test: shows what the settings in the folder say.
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromLocal8Bit(argv[2]));
        FileBrowser browser;
        browser.buildSettingsNamespace(QStringLiteral("render"));
        std::fputs(qPrintable(describe(browser)), stdout);
        return 0;
    }
    SettingsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "SettingsTest.moc"
