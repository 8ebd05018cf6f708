#include "support/Test.h"
#include "widgets/FrameSlider.h"

#include <QMouseEvent>
#include <QPaintEngine>
#include <climits>
#include <random>

namespace {

const QColor Paper(Qt::white);
const QColor Ink(0, 0, 100);
const QColor Groove(200, 255, 200);
const QColor Head(255, 0, 255);
const QColor InOut(255, 100, 0);
const QColor Key(0, 100, 255);
const QColor Cached(0, 150, 0);

/// A text as it was drawn: the pixels from left to right carry it.
struct Text
{
    QString text;
    int left;
    int right;
    int baseline;
};

/// A paint device that notes texts and draws nothing.
class TextRecorder : public QPaintDevice, private QPaintEngine
{
public:
    explicit TextRecorder(QWidget& widget)
        : QPaintEngine(AllFeatures)
        , m_size(widget.size())
    {
        widget.render(this);
    }

    QVector<Text> texts;
    QStringList at(int baseline) const
    {
        QStringList found;
        for (const Text& text : texts) {
            if (text.baseline == baseline)
                found.append(text.text);
        }
        return found;
    }

private:
    QPaintEngine* paintEngine() const override
    {
        return const_cast<QPaintEngine*>(static_cast<const QPaintEngine*>(this));
    }
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return metric == PdmDpiX || metric == PdmDpiY || metric == PdmPhysicalDpiX ||
                           metric == PdmPhysicalDpiY
                       ? 96
                       : 1;
        }
    }
    bool begin(QPaintDevice* /*device*/) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& /*state*/) override {}
    void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/, const QRectF& /*from*/) override {}
    void drawPath(const QPainterPath& /*path*/) override {}
    void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
    void drawTextItem(const QPointF& place, const QTextItem& item) override
    {
        const int left = qRound(place.x());
        const int wide = QFontMetrics(item.font()).horizontalAdvance(item.text());
        texts.append({item.text(), left, left + wide - 1, qRound(place.y())});
    }
    Type type() const override { return User; }

    QSize m_size;
};

class Slider : public FrameSlider
{
public:
    explicit Slider(int width, int first = 0, int last = 100)
        : FrameSlider(true, nullptr)
    {
        QPalette colours;
        colours.setColor(QPalette::Window, Paper);
        colours.setColor(QPalette::Text, Ink);
        colours.setColor(QPalette::Base, Groove);
        setPalette(colours);
        setFont(QFont(QStringLiteral("DejaVu Sans")));
        resize(width, 31);
        range(first, last);
    }

    using FrameSlider::settingsOwner;

    void mouse(QEvent::Type type, int x, Qt::MouseButton button)
    {
        QMouseEvent event(type, QPointF(x, 5), button, button, Qt::NoModifier);
        QApplication::sendEvent(this, &event);
    }
    QImage picture(QRect part = {})
    {
        part = part.isNull() ? rect() : part;
        QImage image(part.size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        render(&image, QPoint(), QRegion(part));
        return image;
    }
    /// "10-14 30-31": where a row has the colour.
    QString runs(int row, const QColor& colour)
    {
        const QImage image = picture();
        QStringList found;
        for (int x = 0, start = -1; x <= image.width(); ++x) {
            const bool has = x < image.width() && image.pixelColor(x, row) == colour;
            if (has && start < 0)
                start = x;
            if (!has && start >= 0)
                found.append(QStringLiteral("%1-%2").arg(start).arg(x - 1));
            start = has ? start : -1;
        }
        return found.join(QLatin1Char(' '));
    }
};

/// The largest distance of a channel; clipped letters differ a little from whole ones.
int difference(const QImage& one, const QImage& other)
{
    int most = one.size() == other.size() ? 0 : 255;
    for (int i = 0; i < one.sizeInBytes() && most < 255; ++i)
        most = std::max(most, std::abs(one.constBits()[i] - other.constBits()[i]));
    return most;
}

std::set<int> randomFrames(int first, int last, int count, double repeat)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> any(first, last);
    std::bernoulli_distribution next(repeat);
    std::set<int> frames;
    for (int i = 0, frame = any(random); i < count; ++i) {
        frames.insert(frame);
        frame = next(random) ? std::min(frame + 1, last) : any(random);
    }
    return frames;
}

} // namespace

/// Where the parts of a slider stand, read from a rendered image, and its numbers from a recording device.
class FrameSliderPaintingTest : public Test
{
    Q_OBJECT

private slots:
    void init()
    {
        FrameSlider::SetHeadColour(0xff00ff00);
        FrameSlider::SetInOutColour(0xff640000);
        FrameSlider::SetKeyframeColour(0x0064ff00);
        FrameSlider::SetCacheframeColour(0x00960000);
        FrameSlider::SetKeys({});
    }
    void ticksFollowTheZoom_data();
    void ticksFollowTheZoom();
    void numbersStandAtLabelSteps();
    void numbersNeverOverlap();
    void rowsAndEnds();
    void keyRows();
    void keysMatchAPlainLoop();
    void headAndMarks();
    void selectionAndHover();
    void outsideIsBlackForAnOwner();
    void partialPaintEqualsTheWhole();
};

void FrameSliderPaintingTest::ticksFollowTheZoom_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("top"); // 16: no tick
    const auto row = [](const char* name, int width, int first, int last,
                        std::initializer_list<std::pair<int, int>> ticks) {
        for (const auto& [frame, top] : ticks)
            QTest::addRow("%s: %d", name, frame) << width << first << last << frame << top;
    };
    row("steps of one", 1030, 0, 100, {{10, 10}, {5, 14}, {99, 14}, {90, 10}});
    row("wide steps of one", 1030, 1, 40, {{5, 10}, {10, 10}, {11, 14}});
    row("narrow, a hundred frames", 130, 1, 100, {{10, 10}, {11, 14}});
    row("wide steps of ten", 1000, 0, 199, {{50, 10}, {60, 14}, {65, 13}, {67, 12}});
    row("negative", 1000, -200, -1, {{-50, 10}, {-60, 14}, {-65, 13}, {-67, 12}});
    row("steps of ten", 1000, 0, 499, {{100, 10}, {110, 14}, {115, 13}, {117, 16}});
    row("steps of a hundred", 500, 0, 9999, {{1000, 10}, {1200, 14}, {1250, 16}});
    row("ten million", 1000, 1, 10000000, {{5000000, 10}, {5100000, 14}, {5150000, 16}});
}

void FrameSliderPaintingTest::ticksFollowTheZoom()
{
    QFETCH(int, width);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, frame);
    Slider slider(width, first, last);
    slider.setHideInOut(true);
    const QImage image = slider.picture();
    int top = 16; // the row below the ticks
    while (top > 0 && image.pixelColor(slider.valueToMouse(frame), top - 1) == Ink)
        --top;
    QTEST(top, "top");
}

void FrameSliderPaintingTest::numbersStandAtLabelSteps()
{
    const auto numbers = [](int width, int first, int last, int baseline) {
        Slider slider(width, first, last);
        return TextRecorder(slider).at(baseline).join(QLatin1Char(' '));
    };
    QCOMPARE(numbers(1030, 0, 100, 30), QStringLiteral("10 20 30 40 50 60 70 80 90"));
    QCOMPARE(numbers(1030, 0, 100, 31), QStringLiteral("0 100"));
    QCOMPARE(numbers(1030, -12, 8, 30), QStringLiteral("-10 -5 0 5"));
    QCOMPARE(numbers(500, 0, 9999, 30), QStringLiteral("1000 2000 3000 4000 5000 6000 7000 8000 9000"));
    QCOMPARE(numbers(600, 98, 197, 30), QStringLiteral("110 120 130 140 150 160 170 180 190"));
    QCOMPARE(numbers(600, 7, 7, 31), QStringLiteral("7 7"));
}

void FrameSliderPaintingTest::numbersNeverOverlap()
{
    for (const int width : {60, 130, 400, 1000, 2000}) {
        for (const int start : {-10000000, -77, 1, 1001, 9999990}) {
            for (double frames = 1; frames <= 1e7; frames = frames * 1.3 + 1) {
                Slider slider(width, start, start + static_cast<int>(frames) - 1);
                int end = INT_MIN;
                TextRecorder recorder(slider);
                std::sort(recorder.texts.begin(), recorder.texts.end(),
                          [](const Text& a, const Text& b) { return a.left < b.left; });
                for (const Text& text : qAsConst(recorder.texts)) {
                    if (text.baseline < 20)
                        continue;
                    QVERIFY2(text.left > end, qPrintable(QStringLiteral("%1 of %2 frames from %3, width %4")
                                                             .arg(text.text)
                                                             .arg(frames)
                                                             .arg(start)
                                                             .arg(width)));
                    end = text.right;
                }
                QVERIFY(end > INT_MIN);
                if (width >= 400)
                    QCOMPARE(recorder.at(31).size(), 2);
            }
        }
    }
}

void FrameSliderPaintingTest::rowsAndEnds()
{
    Slider slider(220, 3, 17);
    slider.setHideInOut(true);
    for (const int row : {16, 19, 22})
        QCOMPARE(slider.runs(row, Ink), QStringLiteral("0-219"));
    for (const int row : {17, 20})
        QCOMPARE(slider.runs(row, Groove), QStringLiteral("0-9 11-209 211-219"));
    for (const int row : {0, 9, 18, 21, 23})
        QCOMPARE(slider.runs(row, Ink), QStringLiteral("10-10 210-210"));
}

void FrameSliderPaintingTest::keyRows()
{
    Slider slider(1020); // ten pixels for a frame
    slider.setCacheFrames({-3, 0, 10, 11, 12, 50, 100, 101});
    FrameSlider::SetKeys({20});
    QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-14 105-134 505-514 1005-1009"));
    QCOMPARE(slider.runs(21, Cached), slider.runs(20, Cached));
    QCOMPARE(slider.runs(17, Key), QStringLiteral("205-214"));
    slider.range(0, 1000);
    QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-10 19-22 59-60 109-111"));
    slider.range(10, 10);
    QCOMPARE(slider.runs(20, Cached), QStringLiteral("10-10"));
    slider.setMargin(4);
    slider.range(0, 100);
    QCOMPARE(slider.runs(20, Cached), QStringLiteral("14-18 109-138 509-518"));
}

// The rectangles of the rule, one for each run of frames.
void FrameSliderPaintingTest::keysMatchAPlainLoop()
{
    struct Case
    {
        int first;
        int last;
        std::set<int> frames;
    };
    const Case cases[] = {
        {0, 300, randomFrames(-100, 400, 150, 0.5)},
        {0, 979, randomFrames(0, 979, 400, 0.7)},
        {0, 980, randomFrames(0, 980, 400, 0.7)},
        {0, 1500, randomFrames(0, 1500, 500, 0.6)},
        {-20000, 20000, randomFrames(-30000, 30000, 700, 0.9)},
        {0, 100000, randomFrames(0, 100000, 90000, 0.99)},
        {INT_MIN, INT_MAX, {INT_MIN, 0, 1, INT_MAX}},
        {INT_MAX - 2000, INT_MAX, {INT_MAX - 3, INT_MAX - 1, INT_MAX}},
    };
    for (const Case& one : cases) {
        Slider slider(1000, one.first, one.last);
        slider.setCacheFrames(one.frames);
        QVector<bool> wanted(1000);
        for (auto frame = one.frames.lower_bound(one.first); frame != one.frames.upper_bound(one.last);) {
            const double start = *frame;
            double end = start;
            for (++frame; frame != one.frames.upper_bound(one.last) && *frame == end + 1; ++frame)
                ++end;
            const int x = slider.valueToMouse(start);
            const int half = std::max((slider.valueToMouse(start + 1) - x) / 2, 1);
            const int right = std::min(990, slider.valueToMouse(end) + half);
            for (int column = std::max(10, x - half); column < right; ++column)
                wanted[column] = true;
        }
        const QImage image = slider.picture();
        for (int x = 0; x < 1000; ++x)
            QVERIFY2((image.pixelColor(x, 20) == Cached) == wanted.at(x),
                     qPrintable(QStringLiteral("%1, view from %2").arg(x).arg(one.first)));
    }
}

void FrameSliderPaintingTest::headAndMarks()
{
    Slider slider(1020);
    slider.setinout(20, 80);
    slider.setValue(50);
    QImage image = slider.picture();
    for (const auto& [x, y, colour] :
         {std::tuple(510, 9, Head), std::tuple(506, 9, Head), std::tuple(514, 9, Head),
          std::tuple(510, 13, Head), std::tuple(500, 9, Paper), std::tuple(520, 9, Paper),
          std::tuple(212, 14, InOut), std::tuple(216, 15, InOut), std::tuple(207, 13, Paper),
          std::tuple(807, 14, InOut), std::tuple(804, 15, InOut), std::tuple(812, 13, Paper)})
        QVERIFY2(image.pixelColor(x, y) == colour, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));

    const TextRecorder recorder(slider);
    QCOMPARE(recorder.at(7), QStringList({QStringLiteral("50"), QStringLiteral("20"), QStringLiteral("80")}));
    for (const Text& text : recorder.texts) {
        const int middle = text.left + (text.right - text.left + 1) / 2;
        if (text.baseline == 7)
            QCOMPARE(middle, slider.valueToMouse(text.text.toInt()) + (text.text == QLatin1String("50")));
    }
    slider.setValue(20);
    QCOMPARE(TextRecorder(slider).at(7), QStringList({QStringLiteral("20"), QStringLiteral("80")}));
    FrameSlider::SetKeys({20});
    QCOMPARE(slider.picture().pixelColor(208, 9), Key);
    slider.setHideInOut(true);
    QCOMPARE(TextRecorder(slider).at(7), QStringList(QStringLiteral("20")));
    QCOMPARE(slider.picture().pixelColor(807, 14), Paper);
    slider.setHideInOut(false);
    slider.setKeepInOut(true);
    slider.range(40, 60);
    QCOMPARE(TextRecorder(slider).at(7), QStringList());
}

void FrameSliderPaintingTest::selectionAndHover()
{
    Slider slider(1020);
    slider.setHideInOut(true);
    slider.mouse(QEvent::MouseMove, 512, Qt::NoButton);
    QCOMPARE(TextRecorder(slider).at(7), QStringList({QStringLiteral("0"), QStringLiteral("50")}));
    QCOMPARE(slider.picture().pixelColor(510, 9).green(), 127);
    slider.setValue(50);
    QCOMPARE(TextRecorder(slider).at(7), QStringList(QStringLiteral("50")));

    QPalette dark = slider.palette();
    dark.setColor(QPalette::Window, Qt::darkBlue);
    slider.setPalette(dark);
    slider.mouse(QEvent::MouseButtonPress, 410, Qt::RightButton);
    slider.mouse(QEvent::MouseMove, 310, Qt::RightButton);
    const QImage image = slider.picture();
    for (const QPoint& corner : {QPoint(310, 1), QPoint(420, 1), QPoint(333, 0), QPoint(313, 15)})
        QCOMPARE(image.pixelColor(corner), QColor(Qt::white));
    QCOMPARE(image.pixelColor(315, 5), QColor(25, 25, 128 + 12));
    QCOMPARE(image.pixelColor(308, 5), QColor(Qt::darkBlue));
    QCOMPARE(image.pixelColor(421, 18), QColor(Qt::darkBlue));
    slider.mouse(QEvent::MouseButtonRelease, 310, Qt::RightButton);
    QCOMPARE(slider.picture().pixelColor(300, 0), QColor(Qt::darkBlue));
}

void FrameSliderPaintingTest::outsideIsBlackForAnOwner()
{
    Slider slider(1020);
    slider.set_frame_range(20, 80);
    slider.range(0, 100);
    slider.setHideInOut(true);
    QCOMPARE(slider.picture().pixelColor(100, 5), Paper);
    slider.settingsOwner = this;
    for (const int row : {0, 15})
        QCOMPARE(slider.runs(row, Qt::black), QStringLiteral("10-209 820-1009"));
    QVERIFY(slider.picture().pixelColor(100, 18) != QColor(Qt::black));
}

void FrameSliderPaintingTest::partialPaintEqualsTheWhole()
{
    for (const int last : {20, 99, 1500, 10000000}) {
        Slider slider(600, 0, last);
        slider.setinout(last / 3, last - last / 4);
        slider.setValue(last / 2);
        slider.setCacheFrames(randomFrames(0, last, 300, 0.6));
        const QImage whole = slider.picture();
        for (int x = 0; x < 590; x += 9) {
            const QRect band(x, 0, 10, 31);
            QVERIFY2(difference(slider.picture(band), whole.copy(band)) < 8,
                     qPrintable(QStringLiteral("from %1, view to %2").arg(x).arg(last)));
        }
    }
}

QTEST_MAIN(FrameSliderPaintingTest)
#include "FrameSliderPaintingTest.moc"
