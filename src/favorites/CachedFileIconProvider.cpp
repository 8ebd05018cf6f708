#include "favorites/CachedFileIconProvider.h"

#include <QApplication>
#include <QDir>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QImageReader>
#include <QPixmap>
#include <QStyle>

namespace Halvern::UI {

namespace {

QIcon platformIcon(QFileIconProvider::IconType type)
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) ? QFileIconProvider().icon(type)
                                                                     : QIcon();
}

} // namespace

QIcon CachedFileIconProvider::driveIcon()
{
    return platformIcon(QFileIconProvider::Drive);
}

QIcon CachedFileIconProvider::iconOfFile(const QString& path)
{
    constexpr int MostPixels = 1 << 24;
    auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
    // Asking whether it is a file keeps pipes, whose readers wait, from being opened.
    if (!application || path.isEmpty() || !QFileInfo(path).isFile())
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    if (size.isEmpty() || size.height() > MostPixels / size.width())
        return {};
    const int edge = qRound(QApplication::style()->pixelMetric(QStyle::PM_LargeIconSize) *
                            application->devicePixelRatio());
    if (size.width() > edge || size.height() > edge)
        reader.setScaledSize(size.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return QIcon(QPixmap::fromImageReader(&reader));
}

QIcon CachedFileIconProvider::folderIcon(const QString& path)
{
    QIcon icon;
    if (path == QDir::rootPath())
        icon = driveIcon();
    else if (path == QDir::homePath() && qobject_cast<QApplication*>(QCoreApplication::instance()))
        icon = QApplication::style()->standardIcon(QStyle::SP_DirHomeIcon);
    if (!icon.isNull())
        return icon;
    if (m_folder.isNull())
        m_folder = platformIcon(QFileIconProvider::Folder);
    return m_folder;
}

} // namespace Halvern::UI
