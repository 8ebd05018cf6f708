#include "widgets/FrameSlider.h"
#include "support/Test.h"

#include <QSignalSpy>
#include <climits>
#include <memory>

namespace {

class Slider : public FrameSlider
{
public:
    explicit Slider(int width, QWidget* parent = nullptr)
        : FrameSlider(true, parent)
    {
        resize(width, 31);
        connect(this, &FrameSlider::sliderMoved, [this](int v) { log(QStringLiteral("moved %1").arg(v)); });
        connect(this, &FrameSlider::sliderRangeChanged, [this] { log(QStringLiteral("range")); });
        connect(this, &FrameSlider::sliderInOutChanged, [this] { log(QStringLiteral("inout")); });
        connect(this, &FrameSlider::sliderRangeReset, [this] { log(QStringLiteral("reset")); });
        connect(this, &FrameSlider::scrubbingChanged,
                [this](bool on) { log(on ? QStringLiteral("scrub") : QStringLiteral("free")); });
    }

    void mouse(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(type, place, place, button, button, modifiers);
        QApplication::sendEvent(this, &event);
    }
    void wheel(QPointF place, QPoint delta)
    {
        QWheelEvent event(place, place, QPoint(), delta, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(this, &event);
    }

    QString view() const { return QStringLiteral("%1 to %2").arg(viewStart()).arg(viewEnd()); }
    QString play() const { return QStringLiteral("%1 to %2").arg(inPoint()).arg(outPoint()); }
    QString events() const { return m_events.join(QStringLiteral(", ")); }
    QRegion painted;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        painted += event->region();
        FrameSlider::paintEvent(event);
    }

private:
    void log(const QString& event) { m_events.append(event); }

    QStringList m_events;
};

/// A press, a move and a release over a slider that shows 0 to 100 at two pixels per frame, or at one where
/// the head stands outside the play range of 11 to 89.
struct Drag
{
    const char* name;
    int head;
    Qt::MouseButton button;
    Qt::KeyboardModifiers modifiers;
    QPointF press;
    QPointF move;
    const char* events;
    int value;
    const char* view;
    const char* play;
};

const Drag drags[] = {
    {"scrub",
     50,
     Qt::LeftButton,
     Qt::NoModifier,
     {110, 5},
     {130, 5},
     "scrub, moved 50, moved 60, free, moved 60",
     60,
     "0 to 100",
     "10 to 100"},
    {"scrub rounds",
     50,
     Qt::LeftButton,
     Qt::ShiftModifier,
     {110.5, 5},
     {108.4, 5},
     "scrub, moved 51, moved 49, free, moved 49",
     49,
     "0 to 100",
     "10 to 100"},
    {"scrub widens the view",
     50,
     Qt::LeftButton,
     Qt::NoModifier,
     {110, 5},
     {-10.5, 5},
     "scrub, moved 50, moved -10, free, moved -10",
     -10,
     "-10 to 100",
     "10 to 100"},
    {"select",
     50,
     Qt::RightButton,
     Qt::NoModifier,
     {150, 5},
     {111.4, 5},
     "range",
     50,
     "50 to 70",
     "10 to 100"},
    {"select with the middle button",
     50,
     Qt::MiddleButton,
     Qt::ControlModifier,
     {110, 5},
     {150, 5},
     "range",
     50,
     "50 to 70",
     "10 to 100"},
    {"short of a drag",
     50,
     Qt::RightButton,
     Qt::NoModifier,
     {110, 5},
     {113, 6},
     "range, reset",
     50,
     "0 to 100",
     "10 to 100"},
    {"select nothing",
     50,
     Qt::RightButton,
     Qt::NoModifier,
     {110, 5},
     {110, 25},
     "range",
     50,
     "0 to 100",
     "10 to 100"},
    {"pan",
     50,
     Qt::LeftButton,
     Qt::AltModifier | Qt::ControlModifier,
     {110, 5},
     {131, 5},
     "range",
     50,
     "-10 to 90",
     "10 to 100"},
    {"pan by nothing",
     50,
     Qt::LeftButton,
     Qt::AltModifier,
     {110, 5},
     {111, 5},
     "range",
     50,
     "0 to 100",
     "10 to 100"},
    {"zoom out to the left",
     50,
     Qt::RightButton,
     Qt::AltModifier,
     {110, 5},
     {14, 5},
     "range",
     50,
     "-50 to 150",
     "10 to 100"},
    {"zoom out downwards",
     50,
     Qt::MiddleButton,
     Qt::AltModifier,
     {110, 5},
     {110, 101},
     "range",
     50,
     "-50 to 150",
     "10 to 100"},
    {"zoom in",
     50,
     Qt::RightButton,
     Qt::AltModifier,
     {110, 5},
     {206, 5},
     "range",
     50,
     "25 to 75",
     "10 to 100"},
    {"zoom in to one frame",
     50,
     Qt::RightButton,
     Qt::AltModifier,
     {110, 5},
     {100110, 5},
     "range",
     50,
     "50 to 51",
     "10 to 100"},
    {"zoom out to all",
     50,
     Qt::RightButton,
     Qt::AltModifier,
     {110, 5},
     {-100110, 5},
     "range",
     50,
     "-2147483648 to 2147483647",
     "10 to 100"},
    {"out point",
     50,
     Qt::LeftButton,
     Qt::ControlModifier,
     {110, 5},
     {131, 5},
     "inout, inout",
     50,
     "0 to 100",
     "10 to 60"},
    {"out point stops at the head",
     50,
     Qt::LeftButton,
     Qt::ControlModifier,
     {130, 5},
     {50, 5},
     "inout, inout",
     50,
     "0 to 100",
     "10 to 50"},
    {"in point",
     50,
     Qt::LeftButton,
     Qt::ControlModifier,
     {109, 5},
     {90, 5},
     "inout, inout",
     50,
     "0 to 100",
     "40 to 100"},
    {"in point stops at the head",
     50,
     Qt::LeftButton,
     Qt::ControlModifier,
     {90, 5},
     {150, 5},
     "inout, inout",
     50,
     "0 to 100",
     "50 to 100"},
    {"tie goes to the out point",
     5,
     Qt::LeftButton,
     Qt::ControlModifier,
     {60, 5},
     {60, 5},
     "inout, inout",
     5,
     "0 to 100",
     "11 to 50"},
    {"in point is nearer",
     5,
     Qt::LeftButton,
     Qt::ControlModifier,
     {59, 5},
     {119, 5},
     "inout, inout",
     5,
     "0 to 100",
     "89 to 89"},
    {"out point stops at the in point",
     5,
     Qt::LeftButton,
     Qt::ControlModifier,
     {61, 5},
     {0, 5},
     "inout, inout",
     5,
     "0 to 100",
     "11 to 11"},
    {"a fourth button",
     50,
     Qt::BackButton,
     Qt::NoModifier,
     {110, 5},
     {110, 5},
     "",
     50,
     "0 to 100",
     "10 to 100"},
};

} // namespace

Q_DECLARE_METATYPE(Drag)

/// What a slider holds, how frames become pixels, and what the mouse does.
class FrameSliderTest : public Test
{
    Q_OBJECT

private slots:
    void setsSay();
    void frameRangeMovesTheRest();
    void playsInsideTheView();
    void mapsFramesToPixels_data();
    void mapsFramesToPixels();
    void drags_data();
    void drags();
    void scrubbingEndsWithItsButton();
    void wheels_data();
    void wheels();
    void staysInsideTheNumbers();
    void hoverRepaintsItsBand();
    void lostReleaseEndsTheDrag();
    void signaturesStand();
};

void FrameSliderTest::setsSay()
{
    Slider slider(220);
    QCOMPARE(slider.view() + slider.play(), QStringLiteral("0 to 10010 to 100"));
    QVERIFY(slider.minimumHeight() == 31 && slider.maximumHeight() == 31 && slider.hasMouseTracking());
    QVERIFY(!slider.setValue(0) && slider.setValue(150) && slider.setValue(-5));
    QCOMPARE(slider.view(), QStringLiteral("-5 to 150"));
    QVERIFY(!slider.range(-5, 150) && slider.range(30, 20) && !slider.zoomToRange());
    QVERIFY(!slider.setinout(10, 100) && slider.setinout(9, 8));
    QCOMPARE(slider.view() + slider.play(), QStringLiteral("30 to 209 to 8"));
    QVERIFY(!slider.isLocked());
    QVERIFY(slider.events().isEmpty());
    slider.setScrubbing(true);
    slider.setScrubbing(true);
    QCOMPARE(slider.events(), QStringLiteral("scrub"));
}

void FrameSliderTest::frameRangeMovesTheRest()
{
    Slider slider(220);
    QVERIFY(!slider.set_frame_range(0, 0));
    QVERIFY(slider.set_frame_range(50, 10) && !slider.set_frame_range(10, 50));
    QCOMPARE(slider.frameFirst(), 10);
    QCOMPARE(slider.frameLast(), 50);
    QCOMPARE(slider.view() + slider.play(), QStringLiteral("10 to 5010 to 50"));
    slider.range(20, 30);
    slider.zoomToSubrange();
    QCOMPARE(slider.view(), QStringLiteral("10 to 50"));

    Slider keeping(220);
    keeping.setKeepInOut(true);
    keeping.set_frame_range(0, 0);
    QVERIFY(keeping.set_frame_range(1, 500));
    QCOMPARE(keeping.view() + keeping.play(), QStringLiteral("10 to 10010 to 100"));
    keeping.range(0, 5);
    QVERIFY(keeping.set_frame_range(1, 600));
    QCOMPARE(keeping.view(), QStringLiteral("0 to 5"));
    QVERIFY(keeping.first_frame() == 10 && keeping.last_frame() == 100);
}

void FrameSliderTest::playsInsideTheView()
{
    Slider slider(220);
    slider.setinout(0, 99);
    QVERIFY(slider.first_frame() == 0 && slider.last_frame() == 99);
    slider.setinout(99, 0);
    QVERIFY(slider.first_frame() == 99 && slider.last_frame() == 100);
    slider.range(10, 20);
    QVERIFY(slider.first_frame() == 10 && slider.last_frame() == 20);
}

void FrameSliderTest::mapsFramesToPixels_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::newRow("one frame") << 7 << 7;
    QTest::newRow("two frames") << -1 << 0;
    QTest::newRow("a shot") << 1001 << 1200;
    QTest::newRow("negative") << -500 << -20;
    QTest::newRow("ten million") << 1 << 10000000;
    QTest::newRow("all") << INT_MIN << INT_MAX;
}

void FrameSliderTest::mapsFramesToPixels()
{
    QFETCH(int, first);
    QFETCH(int, last);
    const double length = static_cast<double>(last) - first;
    for (const int width : {60, 61, 900, 4000}) {
        Slider slider(width);
        slider.range(first, last);
        QCOMPARE(slider.valueToMouse(first), 10);
        QCOMPARE(slider.valueToMouse(last), first == last ? 10 : width - 10);
        QCOMPARE(slider.valuePlusOneToMouse(last), width - 10);
        QCOMPARE(slider.valuePlusOneToMouse(first - 5.0), slider.valuePlusOneToMouse(first));
        if (first == last)
            continue;
        QCOMPARE(slider.mouseToValue(10), double(first));
        QCOMPARE(slider.mouseToValue(width - 10), double(last));
        for (int x = 10; x <= width - 10; x += 7)
            QCOMPARE(slider.valueToMouse(slider.mouseToValue(x) + 1e-9 * length), x);
        slider.setMargin(3);
        QCOMPARE(slider.valueToMouse(first), 13);
        QCOMPARE(slider.mouseToValue(13), double(first));
        QCOMPARE(slider.valuePlusOneToMouse(last), width - 13);
    }
}

void FrameSliderTest::drags_data()
{
    QTest::addColumn<Drag>("drag");
    for (const Drag& drag : ::drags)
        QTest::newRow(drag.name) << drag;
}

void FrameSliderTest::drags()
{
    QFETCH(Drag, drag);
    Slider slider(drag.head == 50 ? 220 : 120);
    slider.setValue(drag.head);
    if (drag.head != 50)
        slider.setinout(11, 89);
    slider.mouse(QEvent::MouseButtonPress, drag.press, drag.button, drag.modifiers);
    if (drag.button != Qt::BackButton)
        slider.mouse(QEvent::MouseMove, drag.move, drag.button);
    slider.mouse(QEvent::MouseButtonRelease, drag.move, drag.button);
    QCOMPARE(slider.events(), QLatin1String(drag.events));
    QCOMPARE(slider.value(), drag.value);
    QCOMPARE(slider.view(), QLatin1String(drag.view));
    QCOMPARE(slider.play(), QLatin1String(drag.play));
    slider.mouse(QEvent::MouseMove, drag.press, Qt::NoButton);
    QCOMPARE(slider.events(), QLatin1String(drag.events));
}

void FrameSliderTest::scrubbingEndsWithItsButton()
{
    Slider slider(220);
    slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
    slider.mouse(QEvent::MouseButtonPress, {110, 5}, Qt::RightButton);
    slider.mouse(QEvent::MouseButtonRelease, {110, 5}, Qt::RightButton);
    QCOMPARE(slider.events(), QStringLiteral("scrub, moved 50, reset"));
    slider.mouse(QEvent::MouseButtonRelease, {110, 5}, Qt::LeftButton);
    QCOMPARE(slider.events(), QStringLiteral("scrub, moved 50, reset, free"));
}

void FrameSliderTest::wheels_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QPoint>("delta");
    QTest::addColumn<QString>("view");
    QTest::newRow("up") << QPointF(110, 5) << QPoint(0, 120) << "8 to 92";
    QTest::newRow("two steps at once") << QPointF(110, 5) << QPoint(0, 240) << "8 to 92";
    QTest::newRow("down") << QPointF(110, 5) << QPoint(0, -15) << "-9 to 111";
    QTest::newRow("before the scale") << QPointF(0, 5) << QPoint(0, 120) << "0 to 84";
    QTest::newRow("behind the scale") << QPointF(219.4, 5) << QPoint(0, 120) << "16 to 100";
    QTest::newRow("sideways") << QPointF(110, 5) << QPoint(120, 0) << "0 to 100";
    QTest::newRow("outside") << QPointF(219.5, 5) << QPoint(0, 120) << "";
}

void FrameSliderTest::wheels()
{
    QFETCH(QPointF, place);
    QFETCH(QPoint, delta);
    QFETCH(QString, view);
    Slider slider(220);
    slider.wheel(place, delta);
    QCOMPARE(slider.view(), view.isEmpty() ? QStringLiteral("0 to 100") : view);
    QCOMPARE(slider.events(), view.isEmpty() ? QString() : QStringLiteral("range"));
}

void FrameSliderTest::staysInsideTheNumbers()
{
    for (const int width : {60, 20, 3}) {
        Slider slider(width);
        slider.range(INT_MIN, INT_MAX - 10);
        slider.setinout(INT_MIN, INT_MAX);
        for (const Qt::KeyboardModifiers modifiers : {Qt::NoModifier, Qt::AltModifier, Qt::ControlModifier}) {
            for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
                slider.mouse(QEvent::MouseButtonPress, {1, 1}, button, modifiers);
                for (const double x : {-1e9, 0.0, 1e9})
                    slider.mouse(QEvent::MouseMove, {x, 1}, button);
                slider.grab();
                slider.mouse(QEvent::MouseButtonRelease, {1, 1}, button);
            }
        }
        slider.wheel({1, 1}, {0, -120});
        slider.grab();
    }
    Slider slider(220);
    slider.range(INT_MAX - 100, INT_MAX);
    slider.mouse(QEvent::MouseButtonPress, {200, 1}, Qt::LeftButton, Qt::AltModifier);
    slider.mouse(QEvent::MouseMove, {100, 1}, Qt::LeftButton);
    QCOMPARE(slider.view(), QStringLiteral("2147483547 to 2147483647"));
    slider.mouse(QEvent::MouseButtonRelease, {100, 1}, Qt::LeftButton);
}

void FrameSliderTest::hoverRepaintsItsBand()
{
    Slider slider(800);
    slider.range(0, 78);
    slider.show();
    QVERIFY(QTest::qWaitForWindowExposed(&slider));
    const auto paintedAfter = [&slider](int x) {
        slider.painted = {};
        QTest::mouseMove(slider.windowHandle(), QPoint(x, 20));
        QCoreApplication::processEvents();
        return slider.painted.boundingRect();
    };
    paintedAfter(232);
    QCOMPARE(paintedAfter(212), QRect(210 - 9, 0, 20 + 18, 31));
    QCOMPARE(paintedAfter(213), QRect());
    slider.painted = {};
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&slider, &leave);
    QCoreApplication::processEvents();
    QCOMPARE(slider.painted.boundingRect(), QRect(210 - 9, 0, 18, 31));
}

void FrameSliderTest::lostReleaseEndsTheDrag()
{
    auto dragged = std::make_unique<Slider>(220);
    dragged->show();
    dragged->mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
    dragged->hide();
    QCOMPARE(dragged->events(), QStringLiteral("scrub, moved 50, free"));
    dragged->mouse(QEvent::MouseButtonPress, {110, 5}, Qt::LeftButton);
    dragged.reset();
    Slider other(220);
    other.mouse(QEvent::MouseMove, {150, 5}, Qt::NoButton);
    QCOMPARE(other.events(), QString());
}

void FrameSliderTest::signaturesStand()
{
    const FrameSlider slider(false, nullptr);
    for (const char* signal :
         {SIGNAL(sliderMoved(int)), SIGNAL(sliderRangeChanged()), SIGNAL(sliderInOutChanged()),
          SIGNAL(sliderRangeReset()), SIGNAL(scrubbingChanged(bool))})
        QVERIFY(QSignalSpy(&slider, signal).isValid());
}

QTEST_MAIN(FrameSliderTest)
#include "FrameSliderTest.moc"
