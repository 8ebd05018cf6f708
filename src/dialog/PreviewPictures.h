#pragma once

#include "pictures/PictureCache.h"
#include "pictures/PictureReader.h"

#include <QObject>

namespace Halvern::UI {

/// The pictures of a preview pane, over a dark checker: those in the cache at once, the others as soon as
/// they are read.
class PreviewPictures : public QObject
{
    Q_OBJECT

public:
    explicit PreviewPictures(QObject* parent);

    /// Shows the picture of @p path, and then reads those of @p ahead that are not in the cache.
    void show(const QString& path, const QSize& room, const QStringList& ahead);
    /// Wants nothing any more: no signal comes for what was to be shown.
    void forget();
    /// Forgets also what was read, and ends the processes.
    void clear();

    const PictureCache& cache() const { return m_cache; }

signals:
    /// To be shown now. It is the picture that was asked for last, or an older one, which is the newest that
    /// could be read so far; or the file has changed, and this is its new picture.
    void pictureReady(const Halvern::UI::Picture& picture);
    /// The picture that was asked for last can't be read.
    void pictureFailed(const QString& reason);
    /// A picture was read, shown or not.
    void cacheChanged();

private:
    void receive(Picture picture);
    void fail(const QString& path, const QString& reason);

    PictureReader m_reader;
    PictureCache m_cache;
    QStringList m_awaited; // asked for after the picture that was shown last, in this order
    QString m_path;        // asked for last
};

} // namespace Halvern::UI
