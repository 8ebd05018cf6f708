#include "widgets/AppSettings.h"
#include "support/Test.h"
#include "widgets/PackedColour.h"

#include <QFileInfo>

using Halvern::UI::AppSettings;
using Halvern::UI::QColorToRgb0;
using Halvern::UI::rgb0toQColor;

class AppSettingsTest : public Test
{
    Q_OBJECT

private slots:
    void keepsValuesUnderTheSetName()
    {
        std::string name = "Studio A";
        AppSettings::SetName(name);
        name.assign(name.size(), '#');
        const QString key = QStringLiteral("FileBrowser/key");
        AppSettings().setValue(key, 7);

        const AppSettings settings;
        QCOMPARE(QFileInfo(settings.fileName()).fileName(), QStringLiteral("Studio A.ini"));
        QVERIFY(QFileInfo::exists(settings.fileName()));
        QVERIFY(!settings.fallbacksEnabled());
        AppSettings::SetName("Stüdio B");
        QCOMPARE(settings.value(key).toInt(), 7);
        QVERIFY(!AppSettings().contains(key));
        QCOMPARE(AppSettings().organizationName(), QStringLiteral("Stüdio B"));

        AppSettings::SetName("");
        AppSettings().setValue(key, 8);
        QCOMPARE(QFileInfo(AppSettings().fileName()).fileName(), QStringLiteral("HvMirefoldCoreUI.ini"));
        QCOMPARE(AppSettings().value(key).toInt(), 8);
    }

    void unpacksColours()
    {
        QCOMPARE(rgb0toQColor(128), QColor(128, 128, 128));
        QCOMPARE(rgb0toQColor(255), QColor(255, 255, 255));
        QCOMPARE(rgb0toQColor(256), QColor(0, 0, 1));
        QCOMPARE(rgb0toQColor(0xff000000), QColor(255, 0, 0));
        QCOMPARE(rgb0toQColor(0x10203040), QColor(0x10, 0x20, 0x30));
    }

    void packsColours()
    {
        QCOMPARE(QColorToRgb0(QColor(255, 0, 0)), 0xff0000ffU);
        QCOMPARE(QColorToRgb0(QColor(1, 2, 3, 4)), 0x010203ffU);
        QCOMPARE(QColorToRgb0(QColor::fromHsv(120, 255, 255)), 0x00ff00ffU);
    }
};

QTEST_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
