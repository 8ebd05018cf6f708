#pragma once

#include "support/Test.h"
#include "widgets/FrameSlider.h"

#include <QMouseEvent>
#include <QWheelEvent>

/// A frame slider that notes its signals and what it paints; it shows 0 to 100, by default at two pixels per
/// frame, and has dark blue text on white.
class Slider : public FrameSlider
{
public:
    static inline const QColor Ink{0, 0, 100};
    static inline const QColor Cached{0, 150, 0};

    explicit Slider(int width = 220, int first = 0, int last = 100)
        : FrameSlider(true, nullptr)
    {
        SetCacheframeColour(0x00960000);
        QPalette colours(Qt::white, Qt::white);
        colours.setColor(QPalette::Text, Ink);
        setPalette(colours);
        setFont(QFont(QStringLiteral("DejaVu Sans")));
        resize(width, 31);
        range(first, last);
        const auto log = [this](const QString& event) {
            events += ' ' + event;
            onSignal();
        };
        connect(this, &FrameSlider::sliderMoved, [log](int value) { log(QString::number(value)); });
        connect(this, &FrameSlider::sliderRangeChanged, [log] { log("range"); });
        connect(this, &FrameSlider::sliderInOutChanged, [log] { log("inout"); });
        connect(this, &FrameSlider::sliderRangeReset, [log] { log("reset"); });
        connect(this, &FrameSlider::scrubbingChanged, [log](bool on) { log(on ? "scrub" : "free"); });
    }

    void paintEvent(QPaintEvent* event) override
    {
        FrameSlider::paintEvent(event);
        painted |= event->rect();
    }
    void mouse(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent event(type, place, place, button, button, modifiers);
        QApplication::sendEvent(this, &event);
    }
    void hover(int x) { mouse(QEvent::MouseMove, QPointF(x, 5), Qt::NoButton); }
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

    QString events;
    std::function<void()> onSignal = [] {}; // may delete the slider
    QRect painted;                          // since it was last emptied
};
