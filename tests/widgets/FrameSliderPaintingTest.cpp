#include "support/Test.h"
#include "widgets/FrameSlider.h"
#include "widgets/TickSpacing.h"

#include <QPaintEvent>
#include <climits>

namespace {

const QColor Ink(0, 0, 100);
const QColor Cached(0, 150, 0);

class Slider : public FrameSlider
{
public:
    explicit Slider(int width, int first = 0, int last = 100)
        : FrameSlider(true, nullptr)
    {
        SetCacheframeColour(0x00960000);
        QPalette colours(Qt::white, Qt::white);
        colours.setColor(QPalette::Text, Ink);
        setPalette(colours);
        setFont(QFont(QStringLiteral("DejaVu Sans")));
        resize(width, 31);
        range(first, last);
        setHideInOut(true);
    }

    void paintEvent(QPaintEvent* event) override
    {
        FrameSlider::paintEvent(event);
        painted |= event->rect();
    }

    QRect painted; // since it was last emptied

    void hover(int x)
    {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, 5), Qt::NoButton, {}, {});
        QApplication::sendEvent(this, &move);
    }

    /// The columns from the first to the last with the colour of the head, in front of white, in the numbers.
    QRect headNumber()
    {
        const QImage image = grab().toImage();
        QRect found;
        for (int x = 0; x < width(); ++x) {
            for (int y = 0; y < 8; ++y) {
                const QColor colour = image.pixelColor(x, y);
                if (colour.red() < 230 && colour.red() == colour.blue())
                    found |= QRect(x, 0, 1, 8);
            }
        }
        return found;
    }

    /// "10-14 30-31": where a row has the colour.
    QString runs(int row, const QColor& colour)
    {
        const QImage image = grab().toImage();
        QString found;
        for (int x = 0, start = 0; x < width(); start = ++x) {
            while (x < width() && image.pixelColor(x, row) == colour)
                ++x;
            if (x > start)
                found += QStringLiteral(" %1-%2").arg(start).arg(x - 1);
        }
        return found.mid(1);
    }
};

} // namespace

/// Where the parts of a slider stand, read from a rendered image, and its numbers from a recording device.
class FrameSliderPaintingTest : public Test
{
    Q_OBJECT

private slots:
    void ticksFollowTheZoom()
    {
        const auto top = [](int width, int first, int last, int frame) {
            Slider slider(width, first, last);
            const QImage image = slider.grab().toImage();
            int row = 16; // below the ticks
            while (row > 0 && image.pixelColor(slider.valueToMouse(frame), row - 1) == Ink)
                --row;
            return row;
        };
        QCOMPARE(top(1030, 0, 100, 10), 10);
        QCOMPARE(top(1000, -200, -1, -65), 13);
        QCOMPARE(top(1000, 0, 199, 67), 12);
        QCOMPARE(top(1000, 0, 499, 117), 16);
        QCOMPARE(top(1000, 1, 10000000, 5100000), 14);
    }

    void numbersNeverTouch()
    {
        const auto widthOf = [](qint64 frame) { return 6 * QString::number(frame).size(); };
        for (const int width : {60, 130, 400, 1000, 2000}) {
            for (const int start : {-10000000, -77, 1, 1001, 9999990}) {
                for (int frames = 1; frames <= 10000000; frames += frames / 3 + 1) {
                    const Slider slider(width, start, start + frames - 1);
                    const auto pixelOf = [&](qint64 frame) { return slider.valueToMouse(double(frame)); };
                    const auto numbers =
                        scaleNumbers(TickSpacing(width, start, slider.viewEnd()), width, start,
                                     slider.viewEnd(), width - EndMargin, pixelOf, widthOf);
                    QVERIFY(width < 130 || numbers.size() >= (width < 400 ? 1 : 2));
                    int end = -1; // both ends are inside the slider
                    for (const ScaleNumber& number : numbers) {
                        QVERIFY(number.left > end && number.right - number.left == widthOf(number.frame));
                        end = number.right;
                    }
                    QVERIFY(end <= width);
                    // No tick of an end strikes a number through that the margin cannot hold.
                    for (const ScaleNumber& number : numbers)
                        QVERIFY(widthOf(number.frame) <= 20 ||
                                (number.left > EndMargin && number.right < width - EndMargin));
                }
            }
        }
    }

    void rowsAndEnds()
    {
        Slider slider(220, 3, 17);
        for (const int row : {16, 19, 22})
            QCOMPARE(slider.runs(row, Ink), QStringLiteral("0-219"));
        for (const int row : {17, 20})
            QCOMPARE(slider.runs(row, Qt::white), QStringLiteral("0-9 11-209 211-219"));
        for (const int row : {0, 9, 18, 21, 23})
            QCOMPARE(slider.runs(row, Ink), QStringLiteral("10-10 210-210"));
    }

    void keyRowsMergeRuns()
    {
        Slider slider(1020); // ten pixels for a frame
        slider.setCacheFrames({INT_MIN, -3, 0, 10, 11, 12, 50, 100, 101, INT_MAX});
        QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-14 105-134 505-514 1005-1009"));
        QCOMPARE(slider.runs(21, Cached), slider.runs(20, Cached));
        slider.range(0, 1000);
        QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-10 19-22 59-60 109-111"));
        slider.range(10, 10);
        QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-10"));
        slider.range(INT_MIN, INT_MAX);
        QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-10 508-510 1009-1009"));

        struct Filling : Slider
        {
            using Slider::Slider;
            void prepareKeys() override { cacheFrames = {7}; }
        } filling(1020);
        filling.setCacheFrames({50});
        QCOMPARE(filling.runs(20, Cached), QStringLiteral("75-84"));

        std::set<int> crowd; // more frames than pixels, with gaps of all lengths
        for (int i = 0, frame = INT_MAX - 10000; frame <= INT_MAX - 100; ++i, frame += i % 50 ? 1 : i % 97)
            crowd.insert(frame);
        for (int i = 0; i < 100; ++i)
            crowd.insert(INT_MAX - i);
        slider.setCacheFrames(crowd);
        for (const int length : {2000, 10000, INT_MAX}) {
            slider.range(INT_MAX - length, INT_MAX);
            std::set<int> covered;
            for (const int frame : crowd)
                covered.merge(std::set{slider.valueToMouse(frame) - 1, slider.valueToMouse(frame)});
            const QImage image = slider.grab().toImage();
            for (int x = 10; x < 1010; ++x)
                QCOMPARE(image.pixelColor(x, 20) == Cached, covered.count(x) > 0);
        }
    }

    void leavesNoHoverMarkBehind()
    {
        Slider slider(1020);
        slider.show();
        QVERIFY(QTest::qWaitForWindowExposed(&slider));
        for (const QEvent::Type end : {QEvent::Leave, QEvent::MouseMove}) {
            slider.range(0, 100);
            slider.hover(300);
            slider.range(25, 33); // the pixel 300 is a third of the way from frame 27 to 28
            slider.repaint();
            slider.painted = {};
            QMouseEvent away(end, {900, 5}, Qt::NoButton, {}, {});
            QApplication::sendEvent(&slider, &away);
            QTRY_VERIFY(slider.painted.contains({slider.valueToMouse(27) - 6, 0, 13, 31}));
        }
    }

    void showsTheHoveredNumberWhole()
    {
        Slider other(600, 0, 100);
        other.setValue(50);
        const QImage alone = other.grab().toImage();
        for (const int width : {300, 900}) {
            Slider slider(width, 89001, 89772);
            slider.show();
            QVERIFY(QTest::qWaitForWindowExposed(&slider));
            slider.hover(width / 2);
            const int whole = slider.headNumber().width();
            QVERIFY(whole > 20);
            for (const int x : {0, 10, width / 3, width - 10, width - 1}) {
                slider.repaint();
                slider.painted = {};
                slider.hover(x);
                QTRY_VERIFY(!slider.painted.isNull());
                const QRect number = slider.headNumber();
                QVERIFY(number.width() >= whole - 2 && slider.painted.contains(number));
            }
            slider.setValue(-1000000000);
            slider.range(1, 1000 * width); // from a number of one digit to one of six
            slider.hover(10);
            slider.repaint();
            slider.hover(width / 2);
            slider.painted = {};
            QTRY_VERIFY(!slider.painted.isNull());
            QVERIFY(slider.painted.contains(slider.headNumber()));
            QCOMPARE(other.grab().toImage(), alone);
        }
    }

    void keepsInsideItsMargins()
    {
        Slider slider(220, 3, 17);
        slider.setMargin(-5);
        QCOMPARE(slider.valueToMouse(3), 10);
        slider.setMargin(INT_MAX);
        slider.grab();
        for (const int width : {20, 60}) {
            slider.resize(width, 31);
            slider.setMargin(width / 2 - 10);
            for (const int row : {0, 9, 15, 18, 23})
                QCOMPARE(slider.runs(row, Qt::white), QStringLiteral("0-%1").arg(width - 1));
            QCOMPARE(slider.runs(19, Ink), QStringLiteral("0-%1").arg(width - 1));
        }
    }

    void followsThePalette()
    {
        Slider slider(220);
        slider.setHideInOut(false);
        slider.setCacheFrames({40, 41, 42});
        slider.setValue(50);
        const auto head = [&] { return slider.grab().toImage().pixelColor(slider.valueToMouse(50) + 2, 10); };
        QCOMPARE(head(), QColor(Qt::black));
        QPalette dark(QColor(53, 53, 53), QColor(53, 53, 53));
        dark.setColor(QPalette::Text, Qt::yellow);
        slider.setPalette(dark);
        QCOMPARE(head(), QColor(Qt::yellow));
        FrameSlider::SetHeadColour(0x00ff0000);
        QCOMPARE(head(), QColor(Qt::green));
        slider.setEnabled(false);
        QVERIFY(head().red() < 200); // faint, of a palette that has yellow for disabled text too
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(90, 90, 90));
        slider.setPalette(dark);
        const QImage image = slider.grab().toImage();
        FrameSlider::SetHeadColour(0);
        QCOMPARE(head(), QColor(90, 90, 90));
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y)
                QCOMPARE(image.pixelColor(x, y).saturation(), 0);
    }

    // Without the numbers: clipped letters differ a little from whole ones.
    void partialPaintEqualsTheWhole()
    {
        for (const int last : {20, 99, 1500, 10000000}) {
            Slider slider(600, 0, last);
            slider.setHideInOut(false);
            slider.setinout(last / 3, last - last / 4);
            slider.setValue(last / 2);
            slider.setCacheFrames({0, 1, 2, last / 5, last / 4, last / 4 + 1, last});
            const QImage whole = slider.grab({0, 9, 600, 13}).toImage();
            for (int x = 0; x < 590; x += 9)
                QCOMPARE(slider.grab({x, 9, 10, 13}).toImage(), whole.copy(x, 0, 10, 13));
        }
    }
};

QTEST_MAIN(FrameSliderPaintingTest)
#include "FrameSliderPaintingTest.moc"
