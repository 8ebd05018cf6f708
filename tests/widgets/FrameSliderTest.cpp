#include "widgets/FrameSlider.h"
#include "Slider.h"

#include <QAccessible>
#include <QDialog>
#include <QMenu>
#include <QPointer>
#include <climits>
#include <functional>

namespace {

using Do = std::function<void(Slider&)>;

struct Gesture
{
    const char* name;
    std::vector<Do> steps;
    const char* wanted; // head, view, play range, events
    int head = 50;      // before
};

// For a slider that shows 0 to 100 at two pixels per frame and plays 11 to 89.
std::vector<Gesture> gestures()
{
    constexpr auto left = Qt::LeftButton;
    constexpr auto right = Qt::RightButton;
    constexpr auto alt = Qt::AltModifier;
    constexpr auto ctrl = Qt::ControlModifier;
    const auto mouse = [](QEvent::Type type, QPointF at, Qt::MouseButton button,
                          Qt::KeyboardModifiers with = {}) {
        return [=](Slider& slider) { slider.mouse(type, at, button, with); };
    };
    const auto drag = [&](Qt::MouseButton button, Qt::KeyboardModifiers with, double from, QPointF to) {
        return std::vector<Do>{mouse(QEvent::MouseButtonPress, {from, 5}, button, with),
                               mouse(QEvent::MouseMove, to, button),
                               mouse(QEvent::MouseButtonRelease, to, button)};
    };
    const auto wheel = [](double x, QPoint delta) {
        return std::vector<Do>{[=](Slider& slider) { slider.wheel({x, 5}, delta); }};
    };
    const auto key = [](Qt::Key pressed, Qt::KeyboardModifiers with = {}) {
        return std::vector<Do>{[=](Slider& slider) { QTest::keyClick(&slider, pressed, with); }};
    };
    return {
        {"rounds", drag(left, Qt::ShiftModifier, 110.5, {108.4, 5}), "49 0:100 11:89 scrub 51 49 free 49"},
        {"widens", drag(left, {}, 110, {-10.5, 5}), "-10 -10:100 11:89 scrub 50 -10 free -10"},
        {"selects", drag(right, {}, 150, {111.4, 5}), "50 50:70 11:89 range"},
        {"short of a drag", drag(right, {}, 110, {113, 6}), "50 0:100 11:89 range reset"},
        {"pans", drag(left, alt | ctrl, 110, {131, 5}), "50 -10:90 11:89 range"},
        {"zooms downwards", drag(right, alt, 110, {110, 101}), "50 -50:150 11:89 range"},
        {"zooms to all", drag(right, alt, 110, {-1e5, 5}), "50 -2147483648:2147483647 11:89 range"},
        {"in to the head", drag(left, ctrl, 109, {150, 5}), "50 0:100 50:89 inout inout"},
        {"out to the head", drag(left, ctrl, 111, {50, 5}), "50 0:100 11:50 inout inout"},
        {"in is nearer", drag(left, ctrl, 110, {230, 5}), "5 0:100 89:89 inout inout", 5},
        {"out is nearer", drag(left, ctrl, 111, {0, 5}), "5 0:100 11:11 inout inout", 5},
        {"double click", {mouse(QEvent::MouseButtonDblClick, {110, 5}, left)}, "50 0:100 11:89 scrub 50"},
        {"second button",
         {mouse(QEvent::MouseButtonPress, {110, 5}, left), mouse(QEvent::MouseButtonPress, {110, 5}, right),
          mouse(QEvent::MouseButtonRelease, {110, 5}, left)},
         "50 0:100 11:89 scrub 50 free reset"},
        {"wheel", wheel(110, {0, 240}), "50 8:92 11:89 range"},
        {"wheel at the start", wheel(0, {0, 120}), "50 0:84 11:89 range"},
        {"wheel to the side", wheel(110, {120, 0}), "50 0:100 11:89 range"},
        {"wheel outside", wheel(219.5, {0, 120}), "50 0:100 11:89"},
        {"left", key(Qt::Key_Left), "49 0:100 11:89 49"},
        {"page up", key(Qt::Key_PageUp), "60 0:100 11:89 60"},
        {"home", key(Qt::Key_Home), "11 0:100 11:89 11"},
        {"end", key(Qt::Key_End), "89 0:100 11:89 89"},
        {"pans by key", key(Qt::Key_Left, alt), "50 -10:90 11:89 range"},
        {"plus", key(Qt::Key_Plus, Qt::ShiftModifier), "50 8:92 11:89 range"},
        {"minus", key(Qt::Key_Minus, Qt::KeypadModifier), "50 -9:111 11:89 range"},
        {"in", key(Qt::Key_I), "50 0:100 50:89 inout"},
        {"out", key(Qt::Key_O), "50 0:100 11:50 inout"},
        {"reset", key(Qt::Key_F), "50 0:100 11:89 reset"},
        {"no key of the slider's", key(Qt::Key_Left, ctrl), "50 0:100 11:89"}};
}

} // namespace

/// What a slider holds, how frames become pixels, and what the mouse does.
class FrameSliderTest : public Test
{
    Q_OBJECT

private slots:
    void frameRangeMovesTheRest()
    {
        Slider slider;
        QVERIFY(slider.set_frame_range(50, 10) && !slider.set_frame_range(10, 50));
        QCOMPARE(slider.state(), QString("0 10:50 10:50"));
        QVERIFY(!slider.setValue(0) && slider.setValue(150) && slider.setValue(-5));
        QCOMPARE(slider.state(), QString("-5 -5:150 10:50"));
        QVERIFY(slider.setinout(99, 0) && slider.range(10, 20));
        QVERIFY(slider.first_frame() == 10 && slider.last_frame() == 20);

        Slider keeping;
        keeping.setKeepInOut(true);
        QVERIFY(keeping.set_frame_range(1, 500));
        QCOMPARE(keeping.state(), QString("0 10:100 10:100"));
        QVERIFY(keeping.range(0, 5) && keeping.set_frame_range(1, 600));
        QCOMPARE(keeping.state(), QString("0 0:5 10:100"));
    }

    void mapsFramesToPixels()
    {
        for (const auto& [first, last] : {std::pair(-1, 0), {1001, 1200}, {INT_MIN, INT_MAX}}) {
            for (const int width : {60, 61, 4000}) {
                Slider slider(width, first, last);
                QVERIFY(slider.valueToMouse(first) == 10 && slider.valueToMouse(last) == width - 10);
                QCOMPARE(slider.valuePlusOneToMouse(first - 5.0), slider.valuePlusOneToMouse(first));
                for (int x = 10; x <= width - 10; x += 7)
                    QCOMPARE(slider.valueToMouse(slider.mouseToValue(x) + 1e-9 * (double(last) - first)), x);
                slider.setMargin(3);
                QVERIFY(slider.mouseToValue(13) == first && slider.valuePlusOneToMouse(last) == width - 13);
                slider.range(7, 7);
                QVERIFY(slider.valueToMouse(7) == 10 && slider.valuePlusOneToMouse(7) == width - 13);
            }
        }
    }

    void doesWhatTheHandAsks()
    {
        for (const Gesture& gesture : gestures()) {
            Slider slider;
            slider.setValue(gesture.head);
            slider.setinout(11, 89);
            for (const Do& step : gesture.steps)
                step(slider);
            slider.hover(50);
            QVERIFY2(slider.state() == gesture.wanted, qPrintable(gesture.name + (": " + slider.state())));
        }
        Slider end; // of the numbers, without marks
        end.setHideInOut(true);
        end.setValue(INT_MAX);
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_I, Qt::Key_Home, Qt::Key_O, Qt::Key_End})
            QTest::keyClick(&end, key);
        QAccessible::queryAccessibleInterface(&end)->valueInterface()->setCurrentValue(7);
        QCOMPARE(end.events, QString(" 0 2147483647 7"));
        QContextMenuEvent menu(QContextMenuEvent::Mouse, {5, 5}, {5, 5});
        QApplication::sendEvent(&end, &menu);
        QVERIFY2(menu.isAccepted(), "a parent's menu would open");
    }

    void staysInsideTheNumbers()
    {
        for (const int width : {60, 20, 3}) {
            Slider slider(width, INT_MIN, INT_MAX - 10);
            slider.setinout(INT_MIN, INT_MAX);
            for (const auto modifiers : {Qt::NoModifier, Qt::AltModifier, Qt::ControlModifier}) {
                for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
                    slider.mouse(QEvent::MouseButtonPress, {1, 1}, button, modifiers);
                    for (const double x : {-1e9, 1e9})
                        slider.mouse(QEvent::MouseMove, {x, 1}, button);
                    slider.mouse(QEvent::MouseButtonRelease, {1, 1}, button);
                    QVERIFY(slider.viewStart() <= slider.viewEnd());
                }
            }
            slider.wheel({1, 1}, {0, -120});
            slider.grab();
        }
    }

    // A popup gets the release of the button that was pressed on the slider; others get none at all.
    void scrubbingEndsWhenItMust()
    {
        QMenu menu;
        menu.addAction(QString("one"));
        Slider other;
        const std::function<void(Slider&)> losses[] = {
            [](Slider& slider) { slider.hide(); },           [](Slider& slider) { slider.setEnabled(false); },
            [](Slider& slider) { QDialog(&slider).open(); }, [&menu](Slider&) { menu.popup({300, 300}); },
            [](Slider& slider) { slider.hover(150); },       [&other](Slider&) { other.hover(150); }};
        for (const auto& lose : losses) {
            Slider slider;
            slider.show();
            slider.mouse(QEvent::MouseButtonPress, {150, 5}, Qt::LeftButton);
            lose(slider);
            QCoreApplication::processEvents();
            menu.close();
            for (Slider* hovered : {&other, &slider})
                hovered->hover(150);
            QCOMPARE(slider.events + other.events, QString(" scrub 70 free"));
        }
    }

    // Every gesture is done until its first, its second, … signal has deleted the slider.
    void maySafelyBeDeletedByAnySignal()
    {
        Slider other;
        for (const Gesture& gesture : gestures()) {
            int fatal = 1;
            for (bool deleted = true; deleted; ++fatal) {
                QWidget parent;
                const QPointer<Slider> slider = new Slider;
                slider->setParent(&parent);
                slider->setValue(gesture.head);
                slider->setinout(11, 89);
                parent.show();
                int emitted = 0;
                slider->onSignal = [&] { ++emitted == fatal ? delete slider.data() : void(); };
                for (const Do& step : gesture.steps) {
                    if (slider)
                        step(*slider);
                    QCoreApplication::processEvents();
                }
                deleted = !slider;
                other.mouse(QEvent::MouseMove, {150, 5}, Qt::LeftButton);
                QCOMPARE(other.events, QString());
            }
            QCOMPARE(fatal > 2, QByteArray(gesture.wanted).count(' ') > 2); // it has signals
        }
    }
};

QTEST_MAIN(FrameSliderTest)
#include "FrameSliderTest.moc"
