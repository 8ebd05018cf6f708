#include "dialog/Preview.h"

#include "pictures/Picture.h"

#include <QPainter>

namespace Halvern::UI {

namespace {

constexpr int TextMargin = 6; // pixels

QSizeF wholeSizeOf(const Picture& picture)
{
    const QSizeF pixels = picture.fullSize.isEmpty() ? picture.image.size() : picture.fullSize;
    return picture.pixelAspect > 1 ? QSizeF(pixels.width() * picture.pixelAspect, pixels.height())
                                   : QSizeF(pixels.width(), pixels.height() / picture.pixelAspect);
}

} // namespace

FilePreview::Preview::Preview(QWidget* parent)
    : Base::DrawingSurface(parent)
{
    // With these buffers, which QPainter needs only to clip, a software driver takes five times as long.
    auto flat = format();
    flat.setDepthBufferSize(0);
    flat.setStencilBufferSize(0);
    setFormat(flat);
    setMinimumSize(512, 256);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize FilePreview::Preview::room() const
{
    return size() * devicePixelRatioF();
}

void FilePreview::Preview::showPicture(const Picture& picture)
{
    m_image = picture.image;
    m_wholeSize = wholeSizeOf(picture);
    m_text.clear();
    update();
}

void FilePreview::Preview::showText(const QString& text)
{
    m_image = {};
    m_text = text;
    update();
}

void FilePreview::Preview::setReading(bool reading)
{
    if (m_isReading == reading)
        return;
    m_isReading = reading;
    update();
}

void FilePreview::Preview::resizeEvent(QResizeEvent* event)
{
    Base::DrawingSurface::resizeEvent(event);
    emit resized();
}

void FilePreview::Preview::resizeGL(int /*width*/, int /*height*/) {}

void FilePreview::Preview::paintGL()
{
    if (!isValid())
        return;
    QPainter painter(this);
    const QRect target = m_image.isNull() ? QRect() : pictureRect();
    painter.save();
    painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
    for (const QRect& margin : QRegion(QRect(QPoint(), room())) - target)
        painter.fillRect(margin, Qt::black);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, target.size() != m_image.size());
    if (!m_image.isNull())
        painter.drawImage(target, m_image);
    painter.restore();

    painter.setPen(QColor(170, 170, 170));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_text);
    if (!m_isReading)
        return;
    const QString mark = tr("Reading …");
    const QMargins margins(TextMargin, TextMargin, TextMargin, TextMargin);
    QRect box = fontMetrics().boundingRect(mark).marginsAdded(margins);
    box.moveBottomLeft(rect().bottomLeft());
    painter.fillRect(box, QColor(0, 0, 0, 150));
    painter.drawText(box, Qt::AlignCenter, mark);
}

// Pixels of the screen, so that a picture that was read for this size is shown pixel by pixel.
QRect FilePreview::Preview::pictureRect() const
{
    const QSize place = room();
    const QSizeF whole = m_wholeSize * devicePixelRatioF();
    QSize size = m_image.size().scaled(place, Qt::KeepAspectRatio);
    if (size.width() > whole.width() || size.height() > whole.height())
        size = m_image.size().scaled(whole.toSize(), Qt::KeepAspectRatio);
    const QSize rounding = size - m_image.size();
    if (qAbs(rounding.width()) <= 1 && qAbs(rounding.height()) <= 1)
        size = m_image.size();
    return {QPoint((place.width() - size.width()) / 2, (place.height() - size.height()) / 2), size};
}

} // namespace Halvern::UI
