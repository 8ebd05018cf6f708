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

QIcon homeIcon()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance())
               ? QApplication::style()->standardIcon(QStyle::SP_DirHomeIcon)
               : QIcon();
}

const QIcon& madeOnce(QIcon& icon, QIcon (*make)())
{
    if (icon.isNull())
        icon = make();
    return icon;
}

} // namespace

QIcon CachedFileIconProvider::driveIcon()
{
    return madeOnce(m_drive, [] { return platformIcon(QFileIconProvider::Drive); });
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
    else if (path == QDir::homePath())
        icon = madeOnce(m_home, homeIcon);
    return icon.isNull() ? madeOnce(m_folder, [] { return platformIcon(QFileIconProvider::Folder); }) : icon;
}

} // namespace Halvern::UI
