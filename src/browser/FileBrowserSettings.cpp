// What a browser remembers from one run of the application to the next.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FilesList.h"
#include "widgets/AppSettings.h"

#include <QCheckBox>
#include <QHeaderView>

namespace Halvern::UI {

QString FileBrowser::_orderLogicalIndexIdentifier = QStringLiteral("FileBrowser/orderlogicalindex");
QString FileBrowser::_sortOrderIdentifier = QStringLiteral("FileBrowser/sortorder");
QString FileBrowser::_sequencesIdentifier = QStringLiteral("FileBrowser/sequences");
QString FileBrowser::_splitSequencesIdentifier = QStringLiteral("FileBrowser/splitsequences");
QString FileBrowser::_directoryIdentifier = QStringLiteral("FileBrowser/directory");
QString FileBrowser::_previewIdentifier = QStringLiteral("FileBrowser/preview");
QString FileBrowser::_sizeIdentifier = QStringLiteral("FileBrowser/size");

void FileBrowser::buildSettingsNamespace(const QString& ns)
{
    if (ns.isEmpty())
        return;
    const QString prefix = QLatin1String("FileBrowser/") + ns;
    _orderLogicalIndexIdentifier = prefix + QLatin1String("/orderlogicalindex");
    _sortOrderIdentifier = prefix + QLatin1String("/sortorder");
    _sequencesIdentifier = prefix + QLatin1String("/sequences");
    _splitSequencesIdentifier = prefix + QLatin1String("/splitsequences");
    _directoryIdentifier = prefix + QLatin1String("/directory");
    updateFromPreferences();
}

void FileBrowser::updateFromPreferences()
{
    if (sequencesEnabled) {
        const int mode = AppSettings::Number(_sequencesIdentifier).value_or(0);
        const bool split = AppSettings::Flag(_splitSequencesIdentifier).value_or(false);
        directoryModel->setSplitSequences(split);
        if (!buildRows())
            return;
        splitCheck->setChecked(split);
        const bool expanded = mode == static_cast<int>(SequenceMode::Expanded);
        directoryModel->setSequenceMode(expanded ? SequenceMode::Expanded : SequenceMode::Collapsed);
        if (!buildRows())
            return;
        sequencesCheck->setChecked(!expanded);
    }
    loadSortOrder();
    loadDirectorySettings();
}

void FileBrowser::loadSortOrder()
{
    const int column = AppSettings::Number(_orderLogicalIndexIdentifier).value_or(0);
    const int order = AppSettings::Number(_sortOrderIdentifier).value_or(0);
    // A column that the list does not have would leave it in the order of the disk.
    const bool known = column >= 0 && column < DirectoryModel::ColumnCount;
    filesList->header()->setSortIndicator(
        known ? column : 0, order == Qt::DescendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void FileBrowser::sortingChanged(int region, Qt::SortOrder sort)
{
    AppSettings::Store(
        {{_orderLogicalIndexIdentifier, region}, {_sortOrderIdentifier, static_cast<int>(sort)}});
}

void FileBrowser::loadDirectorySettings()
{
    const std::optional<QString> stored = AppSettings::Text(_directoryIdentifier);
    const QDir candidate(_useLastSavedDir && stored ? *stored : QDir::currentPath());
    setDirectory(candidate, false, false);
    if (!isOnDisk(candidate))
        navigateUp();
}

} // namespace Halvern::UI
