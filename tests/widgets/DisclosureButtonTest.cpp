#include "widgets/DisclosureButton.h"
#include "support/Test.h"
#include "widgets/DisclosableWidget.h"

#include <QLabel>
#include <memory>

using namespace Halvern::UI;

namespace {

class Button : public DisclosureButton
{
public:
    explicit Button(QWidget* parent, bool initiallyOpen = true)
        : DisclosureButton(parent, initiallyOpen)
    {
        QObject::connect(this, SIGNAL(toggled(bool)), this, SLOT(showOrHideWidgets()));
        show();
    }
};

/// Its QWidget is destroyed before its mix-in is.
class Panel : public DisclosableWidget, public QWidget
{
public:
    using QWidget::QWidget;
};

} // namespace

class DisclosureButtonTest : public Test
{
    Q_OBJECT

private slots:
    void widgetOfAnInitiallyClosedButtonStaysHidden()
    {
        Button button(&window, false);
        QLabel label(&window);
        button.setChecked(true);
        button.addWidget(&label);
        QVERIFY(label.isHidden());
    }

    void sharedWidgetNeedsAllLivingButtons()
    {
        Button first(&window);
        auto second = std::make_unique<Button>(&window);
        Panel panel(&window);
        first.addWidget(&panel);
        second->addWidget(&panel);
        first.click();
        // A panel that is a child of the button dies in its base class.
        second->addWidget(new Panel(second.get()));
        QVERIFY(panel.isHidden());
        second.reset();
        first.showOrHideWidgets();
        QVERIFY(!panel.isHidden());
    }

    void nestedGroupFollowsBothButtons()
    {
        Button outer(&window);
        Button inner(&window);
        QLabel label(&window);
        inner.addWidget(&label);
        outer.addWidget(&inner);
        // Buttons that contain each other would never end.
        inner.addWidget(&outer);
        for (int open = 0; open < 4; ++open) {
            inner.setChecked(open % 2 != 0);
            outer.setChecked(open / 2 != 0);
            QCOMPARE(inner.isHidden(), !outer.isChecked());
            QCOMPARE(label.isHidden(), !outer.isChecked() || !inner.isChecked());
        }
    }

    void destroyedWidgetLeavesItsButtons()
    {
        Button outside(&window);
        auto panel = std::make_unique<Panel>(&window);
        for (Button* button : {new Button(panel.get()), &outside, &outside})
            button->addWidget(panel.get());
        panel.reset();
        QLabel kept(&window);
        outside.addWidget(&kept);
        outside.click();
        QVERIFY(!kept.isHidden());
    }

private:
    QWidget window;
};

QTEST_MAIN(DisclosureButtonTest)
#include "DisclosureButtonTest.moc"
