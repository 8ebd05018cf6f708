#include "widgets/DisclosureButton.h"
#include "support/Test.h"
#include "widgets/DisclosableWidget.h"
#include "widgets/VisibilitySetter.h"

#include <QLabel>
#include <memory>

namespace {

class Button : public Halvern::UI::DisclosureButton
{
public:
    explicit Button(QWidget* parent, bool initiallyOpen = true)
        : DisclosureButton(parent, initiallyOpen)
    {
        QObject::connect(this, SIGNAL(toggled(bool)), this, SLOT(showOrHideWidgets()));
    }
};

class Panel : public QWidget, public Halvern::UI::DisclosableWidget
{
public:
    using QWidget::QWidget;
};

/// Its QWidget is destroyed before its mix-in is.
class MixinFirstPanel : public Halvern::UI::DisclosableWidget, public QWidget
{
public:
    explicit MixinFirstPanel(QWidget* parent)
        : QWidget(parent)
    {
    }
};

/// An inner button with a group; the members' addresses rise in the order in which they stand.
struct Nest
{
    explicit Nest(QWidget* parent)
        : below(parent)
        , inner(parent)
        , above(parent)
    {
        inner.addWidget(&below);
        inner.addWidget(&above);
    }

    QLabel below;
    Button inner;
    QLabel above;
};

} // namespace

class DisclosureButtonTest : public Test
{
    Q_OBJECT

private slots:
    void addedWidgetFollowsTheButton()
    {
        for (const bool initiallyOpen : {true, false}) {
            for (const bool checked : {true, false}) {
                QWidget window;
                Button button(&window, initiallyOpen);
                QVERIFY(!button.isChecked());
                button.setChecked(checked);
                QLabel plain(&window);
                Panel panel(&window);
                window.show();
                button.addWidget(&plain);
                button.addWidget(&panel);
                QCOMPARE(plain.isVisible(), initiallyOpen && checked);
                QCOMPARE(panel.isVisible(), initiallyOpen && checked);
                button.click();
                QCOMPARE(plain.isVisible(), !checked);
                QCOMPARE(panel.isVisible(), !checked);
            }
        }
    }

    void removedWidgetIsLeftAlone()
    {
        QWidget window;
        Button button(&window);
        Panel twice(&window);
        button.addWidget(&twice);
        button.addWidget(&twice);
        window.show();
        button.removeWidget(&twice);
        button.removeWidget(&twice);
        QVERIFY(twice.isDisclosed());
        button.setChecked(true);
        QVERIFY(twice.isHidden());
    }

    void sharedWidgetNeedsAllButtons()
    {
        QWidget window;
        Button first(&window);
        Button second(&window);
        auto third = std::make_unique<Button>(&window);
        Panel panel(&window);
        window.show();
        first.setChecked(true);
        first.addWidget(&panel);
        QVERIFY(panel.isVisible());
        second.addWidget(&panel);
        QVERIFY(panel.isHidden());
        first.click();
        first.click();
        QVERIFY(panel.isHidden());
        third->setChecked(true);
        third->addWidget(&panel);
        QVERIFY(panel.isHidden());
        second.setChecked(true);
        QVERIFY(panel.isVisible());

        // A button that is gone has no say any more, and takes the panels that are its children along.
        third->addWidget(new Panel(third.get()));
        third->setChecked(false);
        third.reset();
        QVERIFY(panel.isHidden());
        first.showOrHideWidgets();
        QVERIFY(panel.isVisible());
    }

    void nestedGroupFollowsBothButtons()
    {
        QWidget window;
        Button outer(&window);
        Button middle(&window);
        Nest nest(&window);
        middle.addWidget(&nest.inner);
        outer.addWidget(&middle);
        window.show();
        middle.setChecked(true);
        nest.inner.setChecked(true);
        QVERIFY(nest.inner.isHidden() && nest.below.isHidden() && nest.above.isHidden());
        outer.click();
        QVERIFY(nest.inner.isVisible() && nest.below.isVisible() && nest.above.isVisible());
        nest.inner.click();
        outer.click();
        outer.click();
        QVERIFY(nest.inner.isVisible() && nest.below.isHidden() && nest.above.isHidden());
        nest.inner.click();

        outer.hide();
        QVERIFY(nest.inner.isHidden() && nest.below.isHidden() && nest.above.isHidden());
        nest.inner.showOrHideWidgets();
        QVERIFY(nest.below.isHidden());
        outer.show();
        QVERIFY(nest.inner.isVisible() && nest.below.isVisible() && nest.above.isVisible());
    }

    void laterRecordReplacesEarlier()
    {
        QWidget window;
        Button outer(&window);
        Nest nest(&window);
        outer.addWidget(&nest.below);
        outer.addWidget(&nest.inner);
        outer.addWidget(&nest.above);
        window.show();
        outer.setChecked(true);
        QVERIFY(nest.inner.isVisible() && nest.below.isHidden() && nest.above.isHidden());

        Halvern::UI::VisibilitySetter setter;
        auto gone = std::make_unique<QLabel>(&window);
        setter.record(gone.get(), true);
        setter.record(&nest.inner, true);
        setter.record(&nest.below, true);
        setter.record(&nest.inner, false);
        gone.reset();
        setter.apply();
        QVERIFY(nest.inner.isHidden() && nest.below.isVisible());
    }

    void togglesInAHiddenWindow()
    {
        QWidget window;
        Button opened(&window);
        Button closed(&window);
        QLabel shown(&window);
        QLabel hidden(&window);
        opened.addWidget(&shown);
        closed.setChecked(true);
        closed.addWidget(&hidden);
        for (const bool swapped : {false, true}) {
            opened.setChecked(!swapped);
            closed.setChecked(swapped);
            window.show();
            QCOMPARE(shown.isVisible(), !swapped);
            QCOMPARE(hidden.isVisible(), swapped);
            window.hide();
        }
    }

    void ignoresNullAndCycles()
    {
        QWidget window;
        Button outer(&window);
        Button inner(&window);
        window.show();
        outer.addWidget(nullptr);
        outer.removeWidget(nullptr);
        outer.addWidget(&outer);
        outer.addWidget(&inner);
        inner.addWidget(&outer);
        inner.setChecked(true);
        outer.setChecked(true);
        inner.setChecked(false);
        QVERIFY(outer.isVisible() && inner.isVisible());
    }

    void destroyedWidgetLeavesButtons()
    {
        QWidget window;
        Button first(&window);
        Button second(&window);
        QLabel kept(&window);
        window.show();
        const auto addAndDestroy = [&](std::unique_ptr<QWidget> widget) {
            auto* owned = new Button(widget.get());
            for (Button* button : {&first, owned, &second, owned}) {
                button->addWidget(widget.get());
                button->addWidget(&kept);
            }
            widget->blockSignals(true);
            widget.reset();
            first.setChecked(true);
            QVERIFY(kept.isVisible());
            second.click();
            first.setChecked(false);
            QVERIFY(kept.isHidden());
        };
        addAndDestroy(std::make_unique<Panel>(&window));
        addAndDestroy(std::make_unique<MixinFirstPanel>(&window));
        addAndDestroy(std::make_unique<QLabel>(&window));
        addAndDestroy(std::make_unique<Button>(&window));
    }

    void paintsTriangle()
    {
        for (const bool enabled : {true, false}) {
            const QColor colour(enabled ? Qt::black : Qt::magenta);
            Button button(nullptr);
            QPalette palette;
            palette.setColor(QPalette::Window, Qt::white);
            palette.setColor(QPalette::Disabled, QPalette::Light, Qt::magenta);
            button.setPalette(palette);
            button.setEnabled(enabled);
            button.resize(120, 20);
            // Of the two places each lies in one of the two triangles only.
            const QPoint upper(10, 4);
            const QPoint left(4, 9);
            QImage image = button.grab().toImage();
            QCOMPARE(image.pixelColor(upper), QColor(Qt::white));
            QCOMPARE(image.pixelColor(left), colour);
            button.setChecked(true);
            image = button.grab().toImage();
            QCOMPARE(image.pixelColor(upper), colour);
            QCOMPARE(image.pixelColor(left), QColor(Qt::white));

            button.setText(QStringLiteral("Details"));
            const QImage labelled = button.grab().toImage();
            const QRect triangle(0, 0, 14, 20);
            QCOMPARE(labelled.copy(triangle), image.copy(triangle));
            QVERIFY(labelled != image);
        }
    }
};

QTEST_MAIN(DisclosureButtonTest)
#include "DisclosureButtonTest.moc"
