// The painting of a frame slider. Positions are pixels of the widget; rows are counted from its top.

#include "widgets/FrameSlider.h"
#include "widgets/PackedColour.h"
#include "widgets/Rounding.h"
#include "widgets/TickSpacing.h"

#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <algorithm>

using Halvern::UI::rgb0toQColor;

namespace {

constexpr int FontSize = 9;
constexpr int MidGrey = 128;
constexpr int TickBottom = 16;
constexpr int NumberRow = 7;  // the baseline of the numbers above the head and the marks
constexpr int BandReach = 16; // a mark this far outside the repainted band may reach into it

// Whether a mark at a pixel shows in a slider of that width.
bool reaches(int x, int width)
{
    return x >= -BandReach && x < width + BandReach;
}

} // namespace

/// One paint of one slider, limited to a band of it.
class FrameSlider::Painting
{
public:
    Painting(FrameSlider& owner, const QRect& painted)
        : m_slider(owner)
        , m_palette(owner.palette())
        , m_painter(&owner)
        , m_width(owner.width())
        , m_bandLeft(painted.left() - BandReach)
        , m_bandRight(painted.right() + BandReach)
    {
        m_painter.setFont(owner.numberFont());
        m_painter.setClipRect(painted);
        // In many hosts' palettes disabled text has the same colour as other text.
        const QColor& faint = m_palette.color(QPalette::Disabled, QPalette::Text);
        if (!owner.isEnabled() && faint == m_palette.color(QPalette::Active, QPalette::Text))
            m_painter.setOpacity(0.5);
    }

    void drawRows()
    {
        const auto draw = [this](QPalette::ColorRole role, std::initializer_list<int> rows) {
            m_painter.setPen(m_palette.color(role));
            for (const int y : rows)
                m_painter.drawLine(0, y, m_width - 1, y);
        };
        draw(QPalette::Text, {16, 19, 22});
        draw(QPalette::Base, {17, 20});
    }

    void drawScale()
    {
        const int start = m_slider.m_viewStart;
        const int end = m_slider.m_viewEnd;
        const int height = m_slider.height();
        const TickSpacing spacing(m_width, start, end);
        QVector<QLine> ticks;
        const auto addTick = [&](int x, int top, int bottom) {
            if (inBand(x))
                ticks.append(QLine(x, top, x, bottom));
        };
        // Only the ticks in the band, because the view may be long.
        const qint64 first = std::max(start, m_slider.frameUnderMouse(m_bandLeft));
        const qint64 last = std::min(end, m_slider.frameUnderMouse(m_bandRight));
        for (qint64 f = floorToMultiple(first, spacing.minorStep); f <= last; f += spacing.minorStep) {
            const int top = f <= start ? TickBottom : spacing.tickTop(f);
            if (top < TickBottom)
                addTick(pixelOf(f), top, TickBottom);
        }
        if (start <= end)
            addTick(pixelOf(start), 0, height - 1);
        addTick(m_slider.valuePlusOneToMouse(end), 0, height - 1);
        m_painter.setPen(m_palette.color(QPalette::Text));
        m_painter.drawLines(ticks);
        // All numbers of the view are placed, so that a repainted band shows the same numbers as before.
        const QFontMetrics metrics = m_painter.fontMetrics();
        const auto numbers = scaleNumbers(
            spacing, m_width, start, end, m_slider.valuePlusOneToMouse(end),
            [this](qint64 frame) { return pixelOf(frame); },
            [&](qint64 frame) { return metrics.horizontalAdvance(QString::number(frame)); });
        for (const ScaleNumber& number : numbers)
            drawNumber(number, number.frame == start || number.frame == end ? height : height - 1);
    }

    void drawKeys() { m_slider.drawKeys(m_painter, colourOf(s_cacheColour), colourOf(s_keyColour)); }

    void drawHead(FrameNumber frame, float opacity = 1)
    {
        QColor colour = colourOf(s_headColour);
        const bool dark = qGray(m_palette.color(m_slider.backgroundRole()).rgb()) < MidGrey;
        if (_keys.count(frame) > 0)
            colour = colourOf(s_keyColour);
        else if (s_headColour == 0 && dark)
            colour = m_palette.color(QPalette::Text);
        colour.setAlphaF(opacity);
        const int x = pixelOf(frame);
        drawTriangle(x, {QPointF(x - 6, 8), QPointF(x + 7, 8), QPointF(x + 0.5, 15)}, colour);
        drawNumber(m_slider.numberAbove(frame, x + 1), NumberRow);
    }

    void drawInOut()
    {
        const int in = pixelOf(m_slider.first_frame());
        drawTriangle(in, {QPointF(in, 16), QPointF(std::max(in, 0) + 9, 16), QPointF(in, 8)},
                     colourOf(s_inOutColour));
        const int out = pixelOf(m_slider.last_frame());
        drawTriangle(out, {QPointF(out, 16), QPointF(out - 8, 16), QPointF(out, 8)}, colourOf(s_inOutColour));
        for (const int frame : {m_slider.first_frame(), m_slider.last_frame()}) {
            if (reaches(pixelOf(frame), m_width) && frame != m_slider.m_value)
                drawNumber(m_slider.numberAbove(frame, pixelOf(frame)), NumberRow);
        }
    }

    void drawSelection()
    {
        const auto [from, to] = std::minmax(s_pressedFrame, s_selectEnd);
        const int left = std::max(pixelOf(from), -BandReach);
        const int right = std::min(m_slider.valuePlusOneToMouse(to), m_width + BandReach);
        m_painter.setPen(Qt::white);
        m_painter.setBrush(QColor(255, 255, 255, 25));
        m_painter.drawRect(left, 0, right - left, TickBottom - 1);
    }

    void drawHover()
    {
        const FrameNumber frame = m_slider.nearestFrame(s_hoverX);
        if (inBand(s_hoverX) && frame != m_slider.m_value)
            drawHead(frame, 0.5F);
    }

    void shadeOutside()
    {
        const int start = EndMargin + m_slider.m_margin;
        const int end = m_width - start;
        const int first = std::clamp(pixelOf(m_slider.m_frameFirst), start, end);
        const int last = std::clamp(m_slider.valuePlusOneToMouse(m_slider.m_frameLast), start, end);
        m_painter.fillRect(start, 0, first - start, TickBottom, Qt::black);
        m_painter.fillRect(last, 0, end - last, TickBottom, Qt::black);
    }

    void drawFocus()
    {
        QStyleOptionFocusRect option;
        option.initFrom(&m_slider);
        m_painter.setBrush(Qt::NoBrush);
        m_slider.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &m_painter, &m_slider);
    }

private:
    bool inBand(int x) const { return x >= m_bandLeft && x <= m_bandRight; }
    int pixelOf(qint64 frame) const { return m_slider.valueToMouse(static_cast<double>(frame)); }

    QColor colourOf(quint32 packed) const
    {
        return m_slider.isEnabled() ? rgb0toQColor(packed) : m_palette.color(QPalette::Text);
    }

    void drawNumber(const ScaleNumber& number, int baseline)
    {
        // A wide number may reach farther into the band than a mark.
        if (number.right > m_bandLeft && number.left <= m_bandRight)
            m_painter.drawText(number.left, baseline, QString::number(number.frame));
    }

    // Draws the mark at a pixel, and sets the pen for its number.
    void drawTriangle(int x, std::initializer_list<QPointF> corners, const QColor& colour)
    {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(colour);
        m_painter.setRenderHint(QPainter::Antialiasing, true);
        if (inBand(x))
            m_painter.drawConvexPolygon(corners.begin(), static_cast<int>(corners.size()));
        m_painter.setRenderHint(QPainter::Antialiasing, false);
        m_painter.setPen(colour);
    }

    FrameSlider& m_slider;
    const QPalette& m_palette;
    QPainter m_painter;
    int m_width;
    int m_bandLeft;
    int m_bandRight;
};

QFont FrameSlider::numberFont() const
{
    QFont numbers = font();
    numbers.setPixelSize(FontSize);
    numbers.setStyleStrategy(QFont::PreferDefault);
    return numbers;
}

// The number above the scale, centred on a pixel, but inside the slider.
ScaleNumber FrameSlider::numberAbove(FrameNumber frame, int x) const
{
    const int wide = QFontMetrics(numberFont(), this).horizontalAdvance(QString::number(frame));
    int left = x - wide / 2;
    if (reaches(x, width()))
        left = std::clamp(left, 0, std::max(width() - wide, 0));
    return {frame, left, left + wide};
}

// The band of the mark under the mouse and its number.
QRect FrameSlider::hoverBand() const
{
    constexpr int MarkReach = 9;
    const FrameNumber frame = nearestFrame(s_hoverX);
    const int x = valueToMouse(frame);
    const ScaleNumber number = numberAbove(frame, x + 1);
    const int left = std::min(number.left - 1, x - MarkReach);
    return {left, 0, std::max(number.right + 1, x + MarkReach) - left, height()};
}

void FrameSlider::paintEvent(QPaintEvent* event)
{
    Painting painting(*this, event->rect());
    painting.drawRows();
    if (width() <= 2 * (EndMargin + m_margin))
        return;
    painting.drawScale();
    painting.drawKeys();
    painting.drawHead(m_value);
    if (!m_hideInOut)
        painting.drawInOut();
    if (s_dragged == this && s_dragMode == DragMode::Selecting)
        painting.drawSelection();
    if (s_dragged == this && s_dragMode == DragMode::Hovering)
        painting.drawHover();
    if (settingsOwner)
        painting.shadeOutside();
    if (hasFocus())
        painting.drawFocus();
}
