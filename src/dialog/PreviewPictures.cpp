#include "dialog/PreviewPictures.h"

#include <QPainter>

namespace Halvern::UI {

namespace {

constexpr int CheckerSide = 8; // pixels of both fields in a row

QBrush checker()
{
    QImage fields(CheckerSide * 2, CheckerSide * 2, QImage::Format_RGB32);
    fields.fill(QColor(40, 40, 40));
    QPainter painter(&fields);
    for (const int corner : {0, CheckerSide})
        painter.fillRect(corner, corner, CheckerSide, CheckerSide, QColor(56, 56, 56));
    painter.end();
    return QBrush(fields);
}

// Opaque, and in the format that is drawn fastest.
QImage overChecker(const QImage& image)
{
    QImage opaque(image.size(), QImage::Format_RGB32);
    QPainter painter(&opaque);
    painter.fillRect(opaque.rect(), checker());
    painter.drawImage(0, 0, image);
    return opaque;
}

} // namespace

PreviewPictures::PreviewPictures(QObject* parent)
    : QObject(parent)
{
    connect(&m_reader, &PictureReader::pictureRead, this, &PreviewPictures::receive);
    connect(&m_reader, &PictureReader::pictureFailed, this, &PreviewPictures::fail);
}

void PreviewPictures::show(const QString& path, const QSize& room, const QStringList& ahead)
{
    QStringList unknown;
    for (const QString& next : ahead) {
        if (!m_cache.contains(next, room))
            unknown << next;
    }
    m_path = path;
    m_awaited.removeAll(path);
    m_awaited << path;
    const Picture* found = m_cache.find(path);
    const bool isWhole = found && found->room == room;
    m_reader.read(path, room, isWhole ? found->version : FileVersion(), unknown);
    if (!found)
        return;
    if (isWhole)
        m_awaited.clear();
    emit pictureReady(Picture(*found));
}

void PreviewPictures::forget()
{
    m_path.clear();
    m_awaited.clear();
    m_reader.cancel();
}

void PreviewPictures::clear()
{
    forget();
    m_reader.stop();
    m_cache.clear();
}

void PreviewPictures::receive(Picture picture)
{
    picture.image = overChecker(picture.image);
    m_cache.insert(picture);
    emit cacheChanged();
    const auto place = m_awaited.indexOf(picture.path);
    if (place < 0 && picture.path != m_path)
        return;
    m_awaited.erase(m_awaited.begin(), m_awaited.begin() + place + 1);
    emit pictureReady(picture);
}

void PreviewPictures::fail(const QString& path, const QString& reason)
{
    if (path != m_path)
        return;
    m_awaited.clear();
    emit pictureFailed(reason);
}

} // namespace Halvern::UI
