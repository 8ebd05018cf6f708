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

constexpr int EndMargin = 10;
constexpr int FontSize = 9;
constexpr int TickBottom = 16;
constexpr int NumberRow = 7; // the baseline of the numbers above the head and the marks
constexpr int KeyRow = 17;
constexpr int CacheRow = 20;
constexpr int BandReach = 16; // how far a mark can stand outside what is repainted and still show in it
constexpr qint64 WideHalfStep = 11;
constexpr qint64 WideMinorStep = 31;

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
    /// A number below the scale.
    struct Label
    {
        QString text;
        int left = 0;
        int right = 0; // behind the last pixel
    };

    bool inBand(int x) const { return x >= bandLeft && x <= bandRight; }
    bool inWidget(int x) const { return x >= -BandReach && x < width + BandReach; }
    QColor headColour(FrameNumber frame) const;
    Label label(qint64 frame, int x) const;
    void drawLabel(const Label& label, int baseline);
    void drawTriangle(std::initializer_list<QPointF> corners, const QColor& colour);
    int drawHeadAt(FrameNumber frame, int x, const QColor& colour);
    void drawMark(int frame, int x, std::initializer_list<QPointF> corners);
    void addTick(int x, int top, int bottom);
    int tickTop(qint64 frame, const TickSpacing& spacing) const;
    void drawNumbers(const TickSpacing& spacing);

    FrameSlider& slider;
    QPainter painter;
    QFontMetrics metrics;
    QVector<QLine> ticks;
    int width;
    int height;
    int bandLeft;
    int bandRight;
};

FrameSlider::Painting::Painting(FrameSlider& owner, const QRect& painted)
    : slider(owner)
    , painter(&owner)
    , metrics(painter.font())
    , width(owner.width())
    , height(owner.height())
    , bandLeft(painted.left() - BandReach)
    , bandRight(painted.right() + BandReach)
{
    QFont font = painter.font();
    font.setPixelSize(FontSize);
    font.setStyleStrategy(QFont::PreferDefault);
    painter.setFont(font);
    metrics = painter.fontMetrics();
    painter.setClipRect(painted);
}

void FrameSlider::Painting::drawRows()
{
    const auto draw = [&](QPalette::ColorRole role, std::initializer_list<int> rows) {
        painter.setPen(slider.palette().color(role));
        for (const int y : rows)
            painter.drawLine(0, y, width - 1, y);
    };
    draw(QPalette::Text, {16, 19, 22});
    draw(QPalette::Base, {17, 20});
}

void FrameSlider::Painting::drawScale()
{
    painter.setPen(slider.palette().color(QPalette::Text));
    const TickSpacing spacing(width, slider.m_viewStart, slider.m_viewEnd);
    // Ticks outside the band are not looked at, however long the view is.
    const qint64 first = std::max<qint64>(slider.m_viewStart, Rounding::floor(slider.mouseToValue(bandLeft)));
    const qint64 last =
        std::min<qint64>(slider.m_viewEnd, Rounding::floor(slider.mouseToValue(bandRight)) + 1);
    for (qint64 f = floorToMultiple(first, spacing.minorStep); f <= last; f += spacing.minorStep) {
        if (f <= slider.m_viewStart)
            continue;
        const int top = tickTop(f, spacing);
        if (top < TickBottom)
            addTick(slider.valueToMouse(static_cast<double>(f)), top, TickBottom);
    }
    if (slider.m_viewStart <= slider.m_viewEnd)
        addTick(std::max(slider.valueToMouse(slider.m_viewStart), 0), 0, height - 1);
    addTick(slider.valuePlusOneToMouse(slider.m_viewEnd), 0, height - 1);
    painter.drawLines(ticks);
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
        ticks.append(QLine(x, top, x, bottom));
}

FrameSlider::Painting::Label FrameSlider::Painting::label(qint64 frame, int x) const
{
    const QString text = QString::number(frame);
    const int wide = metrics.horizontalAdvance(text);
    return {text, x - wide / 2, x - wide / 2 + wide};
}

void FrameSlider::Painting::drawLabel(const Label& label, int baseline)
{
    // A wide number reaches farther into the band than a mark does.
    if (label.right > bandLeft && label.left <= bandRight)
        painter.drawText(label.left, baseline, label.text);
}

// Which numbers there is room for is settled over the whole view, so that a band that is repainted alone
// shows what stood there before. In a narrow slider the spacing alone does not keep long numbers apart.
void FrameSlider::Painting::drawNumbers(const TickSpacing& spacing)
{
    const qint64 start = slider.m_viewStart;
    const qint64 end = slider.m_viewEnd;
    const Label last = label(end, slider.valuePlusOneToMouse(slider.m_viewEnd));
    int taken = last.left - 1; // the last pixel that carries a number already
    if (start <= end) {
        const Label first = label(start, std::max(slider.valueToMouse(slider.m_viewStart), 0));
        drawLabel(first, height);
        taken = first.right;
        for (qint64 f = floorToMultiple(start, spacing.labelStep) + spacing.labelStep; f < end;
             f += spacing.labelStep) {
            const int x = slider.valueToMouse(static_cast<double>(f));
            const Label number = label(f, x);
            const int wide = number.right - number.left;
            const bool crowdsEnds = x <= wide + EndMargin || x >= width - EndMargin - 2 * wide;
            if (crowdsEnds || number.left <= taken || number.right >= last.left)
                continue;
            drawLabel(number, height - 1);
            taken = number.right;
        }
    }
    if (last.left > taken)
        drawLabel(last, height);
}

void FrameSlider::Painting::drawKeys()
{
    slider.prepareKeys();
    const auto draw = [&](int row, quint32 colour, const std::set<int>& frames) {
        slider.drawKeyframes(slider.m_viewStart, slider.m_viewEnd, row, painter, rgb0toQColor(colour),
                             frames);
    };
    draw(CacheRow, _cacheframeColour, slider.cacheFrames);
    if (slider.m_showGlobalKeys)
        draw(KeyRow, _keyframeColour, _keys);
}

QColor FrameSlider::Painting::headColour(FrameNumber frame) const
{
    return rgb0toQColor(_keys.count(frame) > 0 ? _keyframeColour : _headColour);
}

void FrameSlider::Painting::drawTriangle(std::initializer_list<QPointF> corners, const QColor& colour)
{
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawConvexPolygon(corners.begin(), static_cast<int>(corners.size()));
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

// Returns the width of the number.
int FrameSlider::Painting::drawHeadAt(FrameNumber frame, int x, const QColor& colour)
{
    if (inBand(x))
        drawTriangle({QPointF(x - 6, 8), QPointF(x + 7, 8), QPointF(x + 0.5, 15)}, colour);
    const Label number = label(frame, x + 1);
    painter.setPen(colour);
    drawLabel(number, NumberRow);
    return number.right - number.left;
}

void FrameSlider::Painting::drawHead()
{
    drawHeadAt(slider.m_value, slider.valueToMouse(slider.m_value), headColour(slider.m_value));
}

void FrameSlider::Painting::drawInOut()
{
    if (slider.m_hideInOut)
        return;
    const int in = slider.first_frame();
    const int out = slider.last_frame();
    const int xi = slider.valueToMouse(in);
    const int xo = slider.valueToMouse(out);
    drawMark(in, xi, {QPointF(xi, 16), QPointF(std::max(xi, 0) + 9, 16), QPointF(xi, 8)});
    drawMark(out, xo, {QPointF(xo, 16), QPointF(xo - 8, 16), QPointF(xo, 8)});
}

void FrameSlider::Painting::drawMark(int frame, int x, std::initializer_list<QPointF> corners)
{
    const QColor colour = rgb0toQColor(_inOutColour);
    if (inBand(x))
        drawTriangle(corners, colour);
    painter.setPen(colour);
    if (inWidget(x) && frame != slider.m_value)
        drawLabel(label(frame, x), NumberRow);
}

void FrameSlider::Painting::drawSelection()
{
    if (dragMode != DragMode::Selecting)
        return;
    const auto [from, to] = std::minmax(selectAnchor, selectEnd);
    const int left = std::max(slider.valueToMouse(from), -BandReach);
    const int right = std::min(slider.valuePlusOneToMouse(to), width + BandReach);
    painter.setPen(Qt::white);
    painter.setBrush(QColor(255, 255, 255, 25));
    painter.drawRect(left, 0, right - left, TickBottom - 1);
    painter.setBrush(Qt::NoBrush);
}

void FrameSlider::Painting::drawHover()
{
    const FrameNumber frame = slider.nearestFrame(hoverX);
    if (dragMode != DragMode::Hovering || !inBand(hoverX) || frame == slider.m_value)
        return;
    QColor colour = headColour(frame);
    colour.setAlphaF(0.5);
    const int half = drawHeadAt(frame, slider.valueToMouse(frame), colour) / 2;
    hoverHalfWidth = half < 7 ? 9 : half + 2;
}

void FrameSlider::Painting::shadeOutside()
{
    if (!slider.settingsOwner)
        return;
    const int start = EndMargin + slider.m_margin;
    const int end = width - EndMargin - slider.m_margin;
    const int first = std::clamp(slider.valueToMouse(slider.m_frameFirst), start, std::max(start, end));
    const int last = std::clamp(slider.valuePlusOneToMouse(slider.m_frameLast), start, std::max(start, end));
    painter.fillRect(start, 0, first - start, TickBottom, Qt::black);
    painter.fillRect(last, 0, end - last, TickBottom, Qt::black);
}

void FrameSlider::Painting::drawFocus()
{
    if (!slider.hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(&slider);
    slider.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &slider);
}

void FrameSlider::paintEvent(QPaintEvent* event)
{
    if (width() <= 2 * EndMargin)
        return;
    Painting painting(*this, event->rect());
    painting.drawRows();
    painting.drawScale();
    painting.drawKeys();
    painting.drawHead();
    painting.drawInOut();
    painting.drawSelection();
    painting.drawHover();
    painting.shadeOutside();
    painting.drawFocus();
}
