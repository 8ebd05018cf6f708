#include "Slider.h"
#include "widgets/TickSpacing.h"

#include <QPaintEvent>
#include <climits>

/// Where the parts of a slider stand, read from a rendered image.
class FrameSliderPaintingTest : public Test
{
    Q_OBJECT

    // The columns with the colour of a black head on white, in the row of numbers.
    static QRect headNumber(Slider& slider)
    {
        const QImage image = slider.grab().toImage();
        QRect found;
        for (int i = 0; i < image.width() * 8; ++i) {
            const QColor colour = image.pixelColor(i / 8, i % 8);
            if (colour.red() < 230 && colour.red() == colour.blue())
                found |= QRect(i / 8, 0, 1, 8);
        }
        return found;
    }

private slots:
    void ticksFollowTheZoom()
    {
        for (const auto& [width, first, last, frame, top] : {std::tuple(1030, 0, 100, 10, 10),
                                                             {1000, -200, -1, -65, 13},
                                                             {1000, 0, 199, 67, 12},
                                                             {1000, 0, 499, 117, 16},
                                                             {1000, 1, 10000000, 5100000, 14}}) {
            Slider slider(width, first, last);
            slider.setHideInOut(true);
            const QImage image = slider.grab().toImage();
            int row = 16; // below the ticks
            while (row > 0 && image.pixelColor(slider.valueToMouse(frame), row - 1) == Slider::Ink)
                --row;
            QCOMPARE(row, top);
        }
    }

    void numbersNeverTouch()
    {
        const auto widthOf = [](qint64 frame) { return 6 * QString::number(frame).size(); };
        for (const int width : {60, 130, 400, 2000}) {
            for (const int start : {-10000000, 1, 9999990}) {
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
                        // No tick of an end strikes a number through that the margin cannot hold.
                        QVERIFY(widthOf(number.frame) <= 20 ||
                                (number.left > EndMargin && number.right < width - EndMargin));
                    }
                    QVERIFY(end <= width);
                }
            }
        }
    }

    void rowsAndEnds()
    {
        Slider slider(220, 3, 17);
        slider.setHideInOut(true);
        for (const int row : {16, 19, 22})
            QCOMPARE(slider.runs(row, Slider::Ink), QStringLiteral("0-219"));
        for (const int row : {17, 20})
            QCOMPARE(slider.runs(row, Qt::white), QStringLiteral("0-9 11-209 211-219"));
        for (const int row : {0, 9, 18, 21, 23})
            QCOMPARE(slider.runs(row, Slider::Ink), QStringLiteral("10-10 210-210"));
        slider.setMargin(-5);
        QCOMPARE(slider.valueToMouse(3), 10);
        slider.setMargin(INT_MAX);
        slider.grab();
        for (const int width : {20, 60}) {
            slider.resize(width, 31);
            slider.setMargin(width / 2 - 10);
            for (const int row : {0, 9, 15, 18, 23})
                QCOMPARE(slider.runs(row, Qt::white), QStringLiteral("0-%1").arg(width - 1));
            QCOMPARE(slider.runs(19, Slider::Ink), QStringLiteral("0-%1").arg(width - 1));
        }
    }

    void keyRowsMergeRuns()
    {
        struct Filling : Slider
        {
            using Slider::Slider;
            void prepareKeys() override { cacheFrames = filling; }
            std::set<int> filling{INT_MIN, -3, 0, 10, 11, 12, 50, 100, 101, INT_MAX};
        } slider(1020); // ten pixels for a frame
        slider.setCacheFrames({70});
        for (const auto& [first, last, wanted] : {std::tuple(0, 100, "10-14 105-134 505-514 1005-1009"),
                                                  {0, 1000, "10-10 19-22 59-60 109-111"},
                                                  {10, 10, "10-10"},
                                                  {INT_MIN, INT_MAX, "10-10 508-510 1009-1009"}}) {
            slider.range(first, last);
            QCOMPARE(slider.runs(20, Slider::Cached), QLatin1String(wanted));
            QCOMPARE(slider.runs(21, Slider::Cached), QLatin1String(wanted));
        }
        // More frames than pixels, with gaps of all lengths.
        for (int i = 0, frame = INT_MAX - 10000; frame <= INT_MAX - 100; ++i, frame += i % 50 ? 1 : i % 97)
            slider.filling.insert(frame);
        Slider crowded(1020);
        crowded.setCacheFrames(slider.filling);
        for (Slider* one : {&crowded, static_cast<Slider*>(&slider)}) {
            for (const int length : {2000, 10000, INT_MAX}) {
                one->range(INT_MAX - length, INT_MAX);
                std::set<int> covered;
                for (const int frame : slider.filling)
                    covered.merge(std::set{one->valueToMouse(frame) - 1, one->valueToMouse(frame)});
                const QImage image = one->grab().toImage();
                for (int x = 10; x < 1010; ++x)
                    QCOMPARE(image.pixelColor(x, 20) == Slider::Cached, covered.count(x) > 0);
            }
        }
    }

    void hoverMarkIsWholeAndLeavesNothing()
    {
        Slider other(600);
        other.setValue(50);
        const QImage alone = other.grab().toImage();
        for (const int width : {300, 900}) {
            Slider slider(width, 89001, 89772);
            slider.setHideInOut(true);
            slider.show();
            QVERIFY(QTest::qWaitForWindowExposed(&slider));
            slider.hover(width / 2);
            const int whole = headNumber(slider).width();
            QVERIFY(whole > 20);
            for (const int x : {0, width / 3, width - 1}) {
                slider.repaint();
                slider.painted = {};
                slider.hover(x);
                QTRY_VERIFY(!slider.painted.isNull());
                const QRect number = headNumber(slider);
                QVERIFY(number.width() >= whole - 2 && slider.painted.contains(number));
            }
            slider.setValue(-1000000000);
            for (const QEvent::Type leaving : {QEvent::MouseMove, QEvent::Leave}) {
                slider.hover(width / 2);
                slider.range(1, 1000 * width - leaving); // the mark moves with its frame
                slider.repaint();
                const QRect number = headNumber(slider);
                slider.painted = {};
                slider.mouse(leaving, QPointF(10, 5), Qt::NoButton);
                QTRY_VERIFY(slider.painted.contains(number));
            }
            QCOMPARE(other.grab().toImage(), alone);
        }
    }

    void followsThePalette()
    {
        Slider slider;
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
        FrameSlider::SetHeadColour(0);
        dark.setColor(QPalette::Disabled, QPalette::Text, QColor(90, 90, 90));
        slider.setPalette(dark);
        QCOMPARE(head(), QColor(90, 90, 90));
    }
};

QTEST_MAIN(FrameSliderPaintingTest)
#include "FrameSliderPaintingTest.moc"
