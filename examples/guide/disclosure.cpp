#include <QApplication>
#include <QSpinBox>
#include <QVBoxLayout>
#include <iostream>
#include <widgets/DisclosableWidget.h>
#include <widgets/DisclosureButton.h>

using namespace Halvern::UI;

// Shown only if all buttons that it was added to are open.
class BothBox : public QSpinBox, public DisclosableWidget
{
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* colour = new DisclosureButton(&window, true);
    auto* depth = new DisclosureButton(&window, true);
    auto* both = new BothBox;
    for (DisclosureButton* button : {colour, depth}) {
        QObject::connect(button, SIGNAL(toggled(bool)), button, SLOT(showOrHideWidgets()));
        layout->addWidget(button);
        button->addWidget(both);
    }
    layout->addWidget(both);
    window.show();
    colour->setChecked(true);
    std::cout << "one open: " << both->isVisible() << std::endl;
    depth->setChecked(true);
    std::cout << "both open: " << both->isVisible() << std::endl;
    return application.exec();
}
