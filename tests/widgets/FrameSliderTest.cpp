#include "widgets/FrameSlider.h"
#include "support/Test.h"

#include <QAccessible>
#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <climits>
#include <functional>

namespace {

class Slider : public FrameSlider
{
public:
    explicit Slider(int width = 220)
        : FrameSlider(true, nullptr)
    {
        resize(width, 31);
        const auto log = [this](const QString& event) { events += ' ' + event; };
        connect(this, &FrameSlider::sliderMoved, [log](int value) { log(QString::number(value)); });
        connect(this, &FrameSlider::sliderRangeChanged, [log] { log("range"); });
        connect(this, &FrameSlider::sliderInOutChanged, [log] { log("inout"); });
        connect(this, &FrameSlider::sliderRangeReset, [log] { log("reset"); });
        connect(this, &FrameSlider::scrubbingChanged, [log](bool on) { log(on ? "scrub" : "free"); });
    }

    void mouse(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(type, place, place, button, button, modifiers);
        QApplication::sendEvent(this, &event);
    }
    void wheel(QPointF place, QPoint delta)
    {
        QWheelEvent event(place, place, {}, delta, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(this, &event);
    }
    /// "head start:end in:out", of the view and the play range, and the signals so far.
    QString state() const
    {
        const QString ranges = QStringLiteral("%1 %2:%3 %4:%5").arg(value()).arg(viewStart()).arg(viewEnd());
        return ranges.arg(inPoint()).arg(outPoint()) + events;
    }

    QString events;
};

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
        QCOMPARE(slider.state(), QStringLiteral("0 10:50 10:50"));
        QVERIFY(!slider.setValue(0) && slider.setValue(150) && slider.setValue(-5));
        QCOMPARE(slider.state(), QStringLiteral("-5 -5:150 10:50"));
        QVERIFY(slider.setinout(99, 0) && slider.range(10, 20));
        QVERIFY(slider.first_frame() == 10 && slider.last_frame() == 20);

        Slider keeping;
        keeping.setKeepInOut(true);
        QVERIFY(keeping.set_frame_range(1, 500));
        QCOMPARE(keeping.state(), QStringLiteral("0 10:100 10:100"));
        keeping.range(0, 5);
        QVERIFY(keeping.set_frame_range(1, 600));
        QCOMPARE(keeping.state(), QStringLiteral("0 0:5 10:100"));
    }

    void takesTheWidthThatThereIs()
    {
        QWidget window;
        QHBoxLayout layout(&window);
        Slider slider;
        QLabel label(QString(200, QLatin1Char('m')));
        layout.addWidget(&label);
        layout.addWidget(&slider);
        window.show();
        window.resize(window.minimumSizeHint());
        QVERIFY(slider.width() > 0 && slider.height() == 31);
        const int least = slider.width();
        window.resize(window.width() + 500, 100);
        QTRY_COMPARE(slider.width(), least + 500);
        for (const char* word : {"Ctrl", "Alt", "ight"})
            QVERIFY(slider.toolTip().contains(QLatin1String(word)));
    }

    void mapsFramesToPixels()
    {
        for (const auto& [first, last] :
             {std::pair(-1, 0), {1001, 1200}, {1, 10000000}, {INT_MIN, INT_MAX}}) {
            for (const int width : {60, 61, 900, 4000}) {
                Slider slider(width);
                slider.range(first, last);
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

    // The slider shows 0 to 100 at two pixels per frame and plays 11 to 89.
    void drags()
    {
        const auto left = Qt::LeftButton;
        const auto right = Qt::RightButton;
        const auto alt = Qt::AltModifier;
        const auto ctrl = Qt::ControlModifier;
        const auto shift = Qt::ShiftModifier;
        const struct
        {
            const char* name;
            int head;
            Qt::MouseButton button;
            Qt::KeyboardModifiers modifiers;
            QPointF press;
            QPointF move;
            const char* wanted; // head, view, play range, events
        } rows[] = {
            {"rounds", 50, left, shift, {110.5, 5}, {108.4, 5}, "49 0:100 11:89 scrub 51 49 free 49"},
            {"widens", 50, left, {}, {110, 5}, {-10.5, 5}, "-10 -10:100 11:89 scrub 50 -10 free -10"},
            {"select", 50, right, {}, {150, 5}, {111.4, 5}, "50 50:70 11:89 range"},
            {"short of a drag", 50, right, {}, {110, 5}, {113, 6}, "50 0:100 11:89 range reset"},
            {"pan", 50, left, alt | ctrl, {110, 5}, {131, 5}, "50 -10:90 11:89 range"},
            {"zoom out downwards", 50, right, alt, {110, 5}, {110, 101}, "50 -50:150 11:89 range"},
            {"zoom to all", 50, right, alt, {110, 5}, {-1e5, 5}, "50 -2147483648:2147483647 11:89 range"},
            {"in stops at the head", 50, left, ctrl, {109, 5}, {150, 5}, "50 0:100 50:89 inout inout"},
            {"in is nearer", 5, left, ctrl, {110, 5}, {230, 5}, "5 0:100 89:89 inout inout"},
            {"out is nearer", 5, left, ctrl, {111, 5}, {0, 5}, "5 0:100 11:11 inout inout"},
        };
        for (const auto& row : rows) {
            Slider slider;
            slider.setValue(row.head);
            slider.setinout(11, 89);
            slider.mouse(QEvent::MouseButtonPress, row.press, row.button, row.modifiers);
            QContextMenuEvent menu(QContextMenuEvent::Mouse, row.press.toPoint());
            QApplication::sendEvent(&slider, &menu);
            QVERIFY2(menu.isAccepted(), "a parent's menu would open");
            slider.mouse(QEvent::MouseMove, row.move, row.button);
            slider.mouse(QEvent::MouseButtonRelease, row.move, row.button);
            slider.mouse(QEvent::MouseMove, {50, 5}, Qt::NoButton);
            QVERIFY2(slider.state() == row.wanted, qPrintable(row.name + (": " + slider.state())));
        }
    }

    void wheelZoomsAtTheMouse()
    {
        const auto turn = [](double x, QPoint delta) {
            Slider slider;
            slider.wheel({x, 5}, delta);
            return slider.state();
        };
        QCOMPARE(turn(110, {0, 240}), QStringLiteral("0 8:92 10:100 range"));
        QCOMPARE(turn(110, {0, -15}), QStringLiteral("0 -9:111 10:100 range"));
        QCOMPARE(turn(0, {0, 120}), QStringLiteral("0 0:84 10:100 range"));
        QCOMPARE(turn(110, {120, 0}), QStringLiteral("0 0:100 10:100 range"));
        QCOMPARE(turn(219.5, {0, 120}), QStringLiteral("0 0:100 10:100"));
    }

    void keysDoWhatTheMouseDoes()
    {
        const std::tuple<Qt::Key, Qt::KeyboardModifiers, const char*> keys[] = {
            {Qt::Key_Left, Qt::NoModifier, "49 0:100 10:90 49"},
            {Qt::Key_PageUp, Qt::NoModifier, "60 0:100 10:90 60"},
            {Qt::Key_Home, Qt::NoModifier, "10 0:100 10:90 10"},
            {Qt::Key_End, Qt::NoModifier, "90 0:100 10:90 90"},
            {Qt::Key_Left, Qt::AltModifier, "50 -10:90 10:90 range"},
            {Qt::Key_Plus, Qt::ShiftModifier, "50 8:92 10:90 range"},
            {Qt::Key_Minus, Qt::NoModifier, "50 -9:111 10:90 range"},
            {Qt::Key_I, Qt::NoModifier, "50 0:100 50:90 inout"},
            {Qt::Key_O, Qt::NoModifier, "50 0:100 10:50 inout"},
            {Qt::Key_F, Qt::NoModifier, "50 0:100 10:90 reset"},
            {Qt::Key_Left, Qt::ControlModifier, "50 0:100 10:90"},
        };
        for (const auto& [key, modifiers, expected] : keys) {
            Slider slider;
            slider.setinout(10, 90);
            slider.setValue(50);
            QTest::keyClick(&slider, key, modifiers);
            QCOMPARE(slider.state(), QLatin1String(expected));
        }
        Slider end; // of the numbers, without marks
        end.setHideInOut(true);
        end.setValue(INT_MAX);
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_I, Qt::Key_Home, Qt::Key_O, Qt::Key_End})
            QTest::keyClick(&end, key);
        QAccessible::queryAccessibleInterface(&end)->valueInterface()->setCurrentValue(7);
        QCOMPARE(end.events, QStringLiteral(" 0 2147483647 7"));
    }

    void staysInsideTheNumbers()
    {
        for (const int width : {60, 20, 3}) {
            Slider slider(width);
            slider.range(INT_MIN, INT_MAX - 10);
            slider.setinout(INT_MIN, INT_MAX);
            for (const Qt::KeyboardModifiers modifiers :
                 {Qt::NoModifier, Qt::AltModifier, Qt::ControlModifier}) {
                for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
                    slider.mouse(QEvent::MouseButtonPress, {1, 1}, button, modifiers);
                    for (const double x : {-1e9, 0.0, 1e9})
                        slider.mouse(QEvent::MouseMove, {x, 1}, button);
                    slider.mouse(QEvent::MouseButtonRelease, {1, 1}, button);
                    QVERIFY(slider.viewStart() <= slider.viewEnd());
                }
            }
            slider.wheel({1, 1}, {0, -120});
            slider.grab();
        }
    }

    void scrubbingEndsWhenItMust()
    {
        const std::pair<const char*, std::function<void(Slider&)>> losses[] = {
            {"hidden", [](Slider& slider) { slider.hide(); }},
            {"disabled", [](Slider& slider) { slider.setEnabled(false); }},
            {"behind a modal box", [](Slider& slider) { QDialog(&slider).open(); }},
        };
        Slider other;
        for (const auto& [name, lose] : losses) {
            Slider slider;
            slider.show();
            slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
            slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::RightButton);
            slider.mouse(QEvent::MouseButtonRelease, {110, 5}, Qt::RightButton);
            slider.mouse(QEvent::MouseButtonRelease, {110, 5}, Qt::LeftButton);
            slider.mouse(QEvent::MouseButtonPress, {150, 5}, Qt::LeftButton);
            lose(slider);
            other.mouse(QEvent::MouseMove, {150, 5}, Qt::NoButton);
            QCoreApplication::processEvents();
            QVERIFY2(slider.events + other.events == " scrub 50 reset free scrub 70 free", name);
        }
    }

    // A popup gets the release of the button that was pressed on the slider.
    void popupEndsTheDrag()
    {
        Slider slider;
        slider.show();
        slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
        QMenu menu;
        menu.addAction(QStringLiteral("one"));
        menu.popup({300, 300});
        QTRY_COMPARE(slider.events, QStringLiteral(" scrub 50 free"));
        menu.close();
        slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
        Slider other; // the release was lost without a popup
        for (Slider* one : {&other, &slider})
            one->mouse(QEvent::MouseMove, {150, 5}, Qt::NoButton);
        QTRY_COMPARE(slider.events, QStringLiteral(" scrub 50 free scrub 50 free"));
        QCOMPARE(other.events, QString());
    }

    // Every gesture is done until its first, its second, … signal has deleted the slider.
    void maySafelyBeDeletedByAnySignal()
    {
        using Do = std::function<void(Slider&)>;
        const auto mouse = [](QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers keys = {}) {
            return [=](Slider& slider) { slider.mouse(type, {130, 5}, button, keys); };
        };
        const auto press = QEvent::MouseButtonPress;
        const auto release = QEvent::MouseButtonRelease;
        const auto left = Qt::LeftButton;
        const auto right = Qt::RightButton;
        const Do move = mouse(QEvent::MouseMove, left);
        const Do lost = mouse(QEvent::MouseMove, Qt::NoButton);
        const Do scrub = mouse(press, left);
        std::vector<std::vector<Do>> gestures = {
            {scrub, move, mouse(release, left), mouse(QEvent::MouseButtonDblClick, left)},
            {mouse(press, left, Qt::ControlModifier), move, mouse(release, left)},
            {mouse(press, left, Qt::AltModifier), move, mouse(release, left)},
            {mouse(press, right, Qt::AltModifier), move, mouse(release, right)},
            {mouse(press, right), move, mouse(release, right)},
            {scrub, mouse(press, right), mouse(release, left)},
            {scrub, lost,
             [](Slider& slider) {
                 slider.wheel({110, 5}, {0, 120});
             }},
            {scrub, [](Slider& slider) { slider.hide(); }},
            {scrub, [](Slider& slider) { slider.setEnabled(false); }},
            {scrub, [](Slider& slider) { slider.parentWidget()->hide(); }},
        };
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_I, Qt::Key_O, Qt::Key_Plus, Qt::Key_F})
            gestures.push_back({[key](Slider& slider) { QTest::keyClick(&slider, key); }});
        Slider other;
        for (const std::vector<Do>& gesture : gestures) {
            int fatal = 1;
            for (bool deleted = true; deleted; ++fatal) {
                QWidget parent;
                const QPointer<Slider> slider = new Slider;
                slider->setParent(&parent);
                slider->setValue(30);
                parent.show();
                int emitted = 0;
                const auto count = [&] { ++emitted == fatal ? delete slider.data() : void(); };
                connect(slider, &FrameSlider::sliderMoved, count);
                connect(slider, &FrameSlider::sliderRangeChanged, count);
                connect(slider, &FrameSlider::sliderInOutChanged, count);
                connect(slider, &FrameSlider::sliderRangeReset, count);
                connect(slider, &FrameSlider::scrubbingChanged, count);
                for (const Do& step : gesture) {
                    if (slider)
                        step(*slider);
                    QCoreApplication::processEvents();
                }
                deleted = !slider;
                other.mouse(QEvent::MouseMove, {150, 5}, left);
                QCOMPARE(other.events, QString());
            }
            QVERIFY(fatal > 2);
        }
    }
};

QTEST_MAIN(FrameSliderTest)
#include "FrameSliderTest.moc"
