#include "widgets/DisclosureButton.h"
#include "support/Test.h"
#include "widgets/DisclosableWidget.h"

#include <QLabel>
#include <memory>

using namespace Halvern::UI;

namespace {

struct Button : DisclosureButton
{
    explicit Button(QWidget* parent, bool initiallyOpen = true)
        : DisclosureButton(parent, initiallyOpen)
    {
        QObject::connect(this, SIGNAL(toggled(bool)), this, SLOT(showOrHideWidgets()));
        show();
    }
};

/// Its QWidget is destroyed before its mix-in is.
struct Panel : DisclosableWidget, QWidget
{
    using QWidget::QWidget;
};

} // namespace

class DisclosureButtonTest : public Test
{
    Q_OBJECT

private slots:
    void groupFollowsItsButtons()
    {
        QWidget window;
        Button outer(&window);
        Button inner(&window);
        QLabel label(&window);
        inner.addWidget(&label);
        outer.addWidget(&inner);
        inner.addWidget(&outer); // ignored: they would show and hide each other for ever
        for (int open = 0; open < 4; ++open) {
            inner.setChecked(open % 2 != 0);
            outer.setChecked(open / 2 != 0);
            QCOMPARE(inner.isHidden(), !outer.isChecked());
            QCOMPARE(label.isHidden(), !outer.isChecked() || !inner.isChecked());
        }
        Button initiallyClosed(&window, false);
        initiallyClosed.setChecked(true);
        initiallyClosed.addWidget(&label);
        QVERIFY(label.isHidden());
    }

    void buttonsAndWidgetsMayGo()
    {
        QWidget window;
        Button first(&window);
        auto second = std::make_unique<Button>(&window);
        auto panel = std::make_unique<Panel>(&window);
        first.addWidget(panel.get());
        second->addWidget(panel.get());
        first.click();
        second->addWidget(new Panel(second.get())); // destroyed by the button's base class
        QVERIFY(panel->isHidden());
        second.reset();
        first.showOrHideWidgets();
        QVERIFY(!panel->isHidden());
        for (Button* button : {new Button(panel.get()), &first})
            button->addWidget(panel.get());
        panel.reset();
        QLabel kept(&window);
        first.addWidget(&kept);
        first.setChecked(false);
        QVERIFY(kept.isHidden());
    }
};

QTEST_MAIN(DisclosureButtonTest)
#include "DisclosureButtonTest.moc"
