#include <QDebug>
#include <widgets/AppSettings.h>
#include <widgets/PackedColour.h>

using namespace Halvern::UI;

int main()
{
    AppSettings::SetName("Comp"); // ~/.config/Comp.ini
    AppSettings().setValue("Viewer/background", QColorToRgb0(QColor(255, 128, 0)));
    const unsigned packed = AppSettings().value("Viewer/background").toUInt();
    qDebug() << QString::number(packed, 16) << rgb0toQColor(packed).name();
}
