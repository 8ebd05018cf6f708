// How a frame slider looks. All geometry is in pixels of the widget, rows counted from its top.

#include "widgets/FrameSlider.h"
#include "widgets/PackedColour.h"
#include "widgets/Rounding.h"
#include "widgets/TickSpacing.h"

#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <cmath>

using Halvern::UI::rgb0toQColor;

namespace {

constexpr int FontSize = 9;
constexpr int MidGrey = 128;
constexpr int TickBottom = 16;
constexpr int NumberRow = 7; // the baseline of the numbers above the head and the marks
constexpr int KeyRow = 17;
constexpr int CacheRow = 20;
constexpr int BandReach = 16; // how far a mark can stand outside what is repainted and still show in it
constexpr qint64 WideHalfStep = 11;
constexpr qint64 WideMinorStep = 31;

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
    Painting(FrameSlider& owner, const QRect& painted);

    void drawRows();
    void drawScale();
    void drawKeys();
    void drawHead();
    void drawInOut();
    void drawSelection();
    void drawHover();
    void shadeOutside();
    void drawFocus();

private:
    bool inBand(int x) const { return x >= m_bandLeft && x <= m_bandRight; }
    QColor colourOf(quint32 packed) const;
    QColor headColour(FrameNumber frame) const;
    int widthOf(qint64 frame) const { return m_metrics.horizontalAdvance(QString::number(frame)); }
    void drawNumber(const ScaleNumber& number, int baseline);
    void drawAbove(FrameNumber frame, int x);
    void drawTriangle(std::initializer_list<QPointF> corners, const QColor& colour);
    void drawHeadAt(FrameNumber frame, int x, const QColor& colour);
    void drawMark(int frame, int x, std::initializer_list<QPointF> corners);
    void addTick(int x, int top, int bottom);
    int tickTop(qint64 frame, const TickSpacing& spacing) const;
    void drawNumbers(const TickSpacing& spacing);

    FrameSlider& m_slider;
    QPainter m_painter;
    QFontMetrics m_metrics;
    QVector<QLine> m_ticks;
    int m_width;
    int m_height;
    int m_bandLeft;
    int m_bandRight;
};

FrameSlider::Painting::Painting(FrameSlider& owner, const QRect& painted)
    : m_slider(owner)
    , m_painter(&owner)
    , m_metrics(owner.numberFont(), &owner)
    , m_width(owner.width())
    , m_height(owner.height())
    , m_bandLeft(painted.left() - BandReach)
    , m_bandRight(painted.right() + BandReach)
{
    m_painter.setFont(owner.numberFont());
    m_painter.setClipRect(painted);
    // Palettes of hosts often give disabled text the colour of all text.
    const QPalette& palette = owner.palette();
    const QColor& faint = palette.color(QPalette::Disabled, QPalette::Text);
    if (!owner.isEnabled() && faint == palette.color(QPalette::Active, QPalette::Text))
        m_painter.setOpacity(0.5);
}

void FrameSlider::Painting::drawRows()
{
    const auto draw = [&](QPalette::ColorRole role, std::initializer_list<int> rows) {
        m_painter.setPen(m_slider.palette().color(role));
        for (const int y : rows)
            m_painter.drawLine(0, y, m_width - 1, y);
    };
    draw(QPalette::Text, {16, 19, 22});
    draw(QPalette::Base, {17, 20});
}

void FrameSlider::Painting::drawScale()
{
    m_painter.setPen(m_slider.palette().color(QPalette::Text));
    const TickSpacing spacing(m_width, m_slider.m_viewStart, m_slider.m_viewEnd);
    // Ticks outside the band are not looked at, however long the view is.
    const qint64 first =
        std::max<qint64>(m_slider.m_viewStart, Rounding::floor(m_slider.mouseToValue(m_bandLeft)));
    const qint64 last =
        std::min<qint64>(m_slider.m_viewEnd, Rounding::floor(m_slider.mouseToValue(m_bandRight)) + 1);
    for (qint64 f = floorToMultiple(first, spacing.minorStep); f <= last; f += spacing.minorStep) {
        if (f <= m_slider.m_viewStart)
            continue;
        const int top = tickTop(f, spacing);
        if (top < TickBottom)
            addTick(m_slider.valueToMouse(static_cast<double>(f)), top, TickBottom);
    }
    if (m_slider.m_viewStart <= m_slider.m_viewEnd)
        addTick(std::max(m_slider.valueToMouse(m_slider.m_viewStart), 0), 0, m_height - 1);
    addTick(m_slider.valuePlusOneToMouse(m_slider.m_viewEnd), 0, m_height - 1);
    m_painter.drawLines(m_ticks);
    drawNumbers(spacing);
}

// The upper end of a frame's tick; TickBottom for no tick.
int FrameSlider::Painting::tickTop(qint64 frame, const TickSpacing& spacing) const
{
    if (frame % spacing.labelStep == 0)
        return 10;
    if (frame % spacing.step == 0)
        return 14;
    if (spacing.halfStep > 0 && frame % spacing.halfStep == 0)
        return spacing.pixels >= WideHalfStep ? 13 : TickBottom;
    return spacing.pixels >= WideMinorStep ? 12 : TickBottom;
}

void FrameSlider::Painting::addTick(int x, int top, int bottom)
{
    if (inBand(x))
        m_ticks.append(QLine(x, top, x, bottom));
}

void FrameSlider::Painting::drawNumber(const ScaleNumber& number, int baseline)
{
    // A wide number reaches farther into the band than a mark does.
    if (number.right > m_bandLeft && number.left <= m_bandRight)
        m_painter.drawText(number.left, baseline, QString::number(number.frame));
}

void FrameSlider::Painting::drawAbove(FrameNumber frame, int x)
{
    drawNumber(m_slider.numberAbove(frame, x), NumberRow);
}

// Which numbers there is room for is settled over the whole view, so that a band that is repainted alone
// shows what it showed before.
void FrameSlider::Painting::drawNumbers(const TickSpacing& spacing)
{
    const QVector<ScaleNumber> numbers = scaleNumbers(
        spacing, m_width, m_slider.m_viewStart, m_slider.m_viewEnd,
        std::max(m_slider.valueToMouse(m_slider.m_viewStart), 0),
        m_slider.valuePlusOneToMouse(m_slider.m_viewEnd),
        [this](qint64 frame) { return m_slider.valueToMouse(static_cast<double>(frame)); },
        [this](qint64 frame) { return widthOf(frame); });
    for (const ScaleNumber& number : numbers) {
        const bool atEnd = number.frame == m_slider.m_viewStart || number.frame == m_slider.m_viewEnd;
        drawNumber(number, atEnd ? m_height : m_height - 1);
    }
}

void FrameSlider::Painting::drawKeys()
{
    m_slider.prepareKeys();
    const auto draw = [&](int row, quint32 colour, const std::set<int>& frames) {
        m_slider.drawKeyframes(m_slider.m_viewStart, m_slider.m_viewEnd, row, m_painter, colourOf(colour),
                               frames);
    };
    draw(CacheRow, _cacheframeColour, m_slider.cacheFrames);
    if (m_slider.m_showGlobalKeys)
        draw(KeyRow, _keyframeColour, _keys);
}

QColor FrameSlider::Painting::colourOf(quint32 packed) const
{
    return m_slider.isEnabled() ? rgb0toQColor(packed) : m_slider.palette().color(QPalette::Text);
}

QColor FrameSlider::Painting::headColour(FrameNumber frame) const
{
    if (_keys.count(frame) > 0)
        return colourOf(_keyframeColour);
    const QPalette& palette = m_slider.palette();
    const bool dark = qGray(palette.color(m_slider.backgroundRole()).rgb()) < MidGrey;
    return _headColour == 0 && dark ? palette.color(QPalette::Text) : colourOf(_headColour);
}

void FrameSlider::Painting::drawTriangle(std::initializer_list<QPointF> corners, const QColor& colour)
{
    m_painter.setRenderHint(QPainter::Antialiasing, true);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(colour);
    m_painter.drawConvexPolygon(corners.begin(), static_cast<int>(corners.size()));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

void FrameSlider::Painting::drawHeadAt(FrameNumber frame, int x, const QColor& colour)
{
    if (inBand(x))
        drawTriangle({QPointF(x - 6, 8), QPointF(x + 7, 8), QPointF(x + 0.5, 15)}, colour);
    m_painter.setPen(colour);
    drawAbove(frame, x + 1);
}

void FrameSlider::Painting::drawHead()
{
    drawHeadAt(m_slider.m_value, m_slider.valueToMouse(m_slider.m_value), headColour(m_slider.m_value));
}

void FrameSlider::Painting::drawInOut()
{
    if (m_slider.m_hideInOut)
        return;
    const int in = m_slider.first_frame();
    const int out = m_slider.last_frame();
    const int xi = m_slider.valueToMouse(in);
    const int xo = m_slider.valueToMouse(out);
    drawMark(in, xi, {QPointF(xi, 16), QPointF(std::max(xi, 0) + 9, 16), QPointF(xi, 8)});
    drawMark(out, xo, {QPointF(xo, 16), QPointF(xo - 8, 16), QPointF(xo, 8)});
}

void FrameSlider::Painting::drawMark(int frame, int x, std::initializer_list<QPointF> corners)
{
    const QColor colour = colourOf(_inOutColour);
    if (inBand(x))
        drawTriangle(corners, colour);
    m_painter.setPen(colour);
    if (reaches(x, m_width) && frame != m_slider.m_value)
        drawAbove(frame, x);
}

void FrameSlider::Painting::drawSelection()
{
    if (dragged != &m_slider || dragMode != DragMode::Selecting)
        return;
    const auto [from, to] = std::minmax(selectAnchor, selectEnd);
    const int left = std::max(m_slider.valueToMouse(from), -BandReach);
    const int right = std::min(m_slider.valuePlusOneToMouse(to), m_width + BandReach);
    m_painter.setPen(Qt::white);
    m_painter.setBrush(QColor(255, 255, 255, 25));
    m_painter.drawRect(left, 0, right - left, TickBottom - 1);
    m_painter.setBrush(Qt::NoBrush);
}

void FrameSlider::Painting::drawHover()
{
    const FrameNumber frame = m_slider.nearestFrame(hoverX);
    const bool hovered = dragged == &m_slider && dragMode == DragMode::Hovering;
    if (!hovered || !inBand(hoverX) || frame == m_slider.m_value)
        return;
    QColor colour = headColour(frame);
    colour.setAlphaF(0.5);
    drawHeadAt(frame, m_slider.valueToMouse(frame), colour);
    hoverHalfWidth = m_slider.hoverReach(frame);
}

void FrameSlider::Painting::shadeOutside()
{
    if (!m_slider.settingsOwner)
        return;
    const int start = EndMargin + m_slider.m_margin;
    const int end = m_width - EndMargin - m_slider.m_margin;
    const int first = std::clamp(m_slider.valueToMouse(m_slider.m_frameFirst), start, std::max(start, end));
    const int last =
        std::clamp(m_slider.valuePlusOneToMouse(m_slider.m_frameLast), start, std::max(start, end));
    m_painter.fillRect(start, 0, first - start, TickBottom, Qt::black);
    m_painter.fillRect(last, 0, end - last, TickBottom, Qt::black);
}

void FrameSlider::Painting::drawFocus()
{
    if (!m_slider.hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(&m_slider);
    m_slider.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &m_painter, &m_slider);
}

QFont FrameSlider::numberFont() const
{
    QFont numbers = font();
    numbers.setPixelSize(FontSize);
    numbers.setStyleStrategy(QFont::PreferDefault);
    return numbers;
}

// A number above the scale, centred on a pixel. At the edges of the slider it stays inside.
ScaleNumber FrameSlider::numberAbove(FrameNumber frame, int x) const
{
    const int wide = QFontMetrics(numberFont(), this).horizontalAdvance(QString::number(frame));
    int left = x - wide / 2;
    if (reaches(x, width()))
        left = std::clamp(left, 0, std::max(width() - wide, 0));
    return {frame, left, left + wide};
}

// Half the width of the band around the mark of a frame that holds the mark and its number.
int FrameSlider::hoverReach(FrameNumber frame) const
{
    constexpr int MarkReach = 7;
    const int x = valueToMouse(frame);
    const ScaleNumber number = numberAbove(frame, x + 1);
    return std::max({x + 1 - number.left, number.right - x - 2, MarkReach}) + 2;
}

void FrameSlider::paintEvent(QPaintEvent* event)
{
    Painting painting(*this, event->rect());
    painting.drawRows();
    if (width() <= 2 * (EndMargin + m_margin))
        return;
    painting.drawScale();
    painting.drawKeys();
    painting.drawHead();
    painting.drawInOut();
    painting.drawSelection();
    painting.drawHover();
    painting.shadeOutside();
    painting.drawFocus();
}
