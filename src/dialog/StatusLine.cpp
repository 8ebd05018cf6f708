#include "dialog/StatusLine.h"

#include <QPainter>
#include <QStyle>
#include <QTextDocument>

namespace Halvern::UI {

StatusLine::StatusLine(QWidget* parent)
    : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
}

void StatusLine::say(const QString& text)
{
    setText(text);
    setToolTip(Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text);
}

void StatusLine::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    drawFrame(&painter);
    const QRect place = contentsRect();
    style()->drawItemText(&painter, place, int(alignment()), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, place.width()), foregroundRole());
}

} // namespace Halvern::UI
