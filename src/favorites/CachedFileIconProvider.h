#pragma once

#include <QIcon>

namespace Halvern::UI {

/// The platform's icons of folders and drives. No icon is looked up on disk by the folder it is for: a folder
/// on storage that does not answer has its icon at once. Each icon is made once, so that Qt's cache of
/// pixmaps does not grow with each browser. Without a QApplication all icons are null. GUI thread only.
class CachedFileIconProvider
{
public:
    /// The icon of the folder with this absolute path: the home and the root folder have their own.
    QIcon folderIcon(const QString& path);
    QIcon driveIcon();
    /// The icon in an image file, at the size of icons. Null if @p path is none, or above 16 million pixels.
    static QIcon iconOfFile(const QString& path);

private:
    QIcon m_drive;
    QIcon m_home;
    QIcon m_folder;
};

} // namespace Halvern::UI
