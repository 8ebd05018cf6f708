#include "favorites/CachedFileIconProvider.h"

#include <QApplication>
#include <QDir>
#include <QFileIconProvider>
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

QIcon CachedFileIconProvider::genericFolderIcon()
{
    if (generic.isNull())
        generic = platformIcon(QFileIconProvider::Folder);
    return generic;
}

QIcon CachedFileIconProvider::folderIcon(const QString& path)
{
    const auto cached = icons.constFind(path);
    if (cached != icons.constEnd())
        return *cached;
    QIcon icon;
    if (path == QDir::rootPath())
        icon = driveIcon();
    else if (path == QDir::homePath() && qobject_cast<QApplication*>(QCoreApplication::instance()))
        icon = QApplication::style()->standardIcon(QStyle::SP_DirHomeIcon);
    else
        icon = genericFolderIcon();
    if (!icon.isNull())
        icons.insert(path, icon);
    return icon;
}

} // namespace Halvern::UI
