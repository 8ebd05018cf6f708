#include "widgets/LegibleDelegate.h"

#include <algorithm>
#include <cmath>

namespace Halvern::UI {

namespace {

double luminance(const QColor& colour)
{
    const auto linear = [](double part) { return std::pow(part, 2.2); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// 1 for equal colours, 21 for black on white.
double contrast(const QColor& one, const QColor& other)
{
    constexpr double Flare = 0.05;
    const double a = luminance(one) + Flare;
    const double b = luminance(other) + Flare;
    return a > b ? a / b : b / a;
}

QColor softened(const QColor& colour, const QColor& base)
{
    constexpr double MostOfBase = 0.6;
    const double share = MostOfBase * colour.hsvSaturationF() * colour.valueF();
    const auto mixed = [share](double part, double basePart) {
        return static_cast<float>(part + share * (basePart - part));
    };
    return QColor::fromRgbF(mixed(colour.redF(), base.redF()), mixed(colour.greenF(), base.greenF()),
                            mixed(colour.blueF(), base.blueF()));
}

// Latin text does not: without shaping it lacks kerning and ligatures only.
bool needsShaping(const QString& text)
{
    constexpr ushort FirstMark = 0x300; // combining marks, and other scripts after them
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= FirstMark; });
}

} // namespace

void LegibleDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    constexpr double LeastContrast = 4.5;
    QStyledItemDelegate::initStyleOption(option, index);
    // Shaping takes a third of each paint.
    if (!needsShaping(option->text))
        option->font.setStyleStrategy(
            QFont::StyleStrategy(option->font.styleStrategy() | QFont::PreferNoShaping));
    if (option->backgroundBrush.style() == Qt::NoBrush)
        return;
    const QColor background =
        softened(option->backgroundBrush.color(), option->palette.color(QPalette::Base));
    option->backgroundBrush = background;
    if (contrast(option->palette.color(QPalette::Text), background) >= LeastContrast)
        return;
    const bool white = contrast(Qt::white, background) > contrast(Qt::black, background);
    option->palette.setColor(QPalette::Text, white ? Qt::white : Qt::black);
}

} // namespace Halvern::UI
