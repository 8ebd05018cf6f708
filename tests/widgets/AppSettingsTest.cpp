#include "widgets/AppSettings.h"
#include "support/Test.h"
#include "widgets/PackedColour.h"

using namespace Halvern::UI;

class AppSettingsTest : public Test
{
    Q_OBJECT

private slots:
    void keepsValuesUnderTheSetName()
    {
        AppSettings::SetName("Studio A");
        AppSettings().setValue("key", 7);
        const AppSettings settings;
        AppSettings::SetName("");
        AppSettings().setValue("key", 8);
        QCOMPARE(AppSettings().value("key"), QVariant(8));
        QCOMPARE(settings.value("key"), QVariant(7));
    }

    void takesSmallColoursForGrey()
    {
        QVERIFY(rgb0toQColor(255) == QColor(Qt::white) && rgb0toQColor(256) == QColor(0, 0, 1));
        QCOMPARE(QColorToRgb0(QColor(1, 2, 3, 4)), 0x010203ffU);
    }
};

QTEST_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
