// What a browser remembers from one run of the application to the next.

#include "browser/FileBrowser.h"

#include "browser/DirectoryModel.h"
#include "browser/FileBrowserPrivate.h"
#include "widgets/AppSettings.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QScopedValueRollback>

namespace Halvern::UI {

void FileBrowser::buildSettingsNamespace(const QString& ns)
{
    if (ns.isEmpty())
        return;
    Private::s_classWide.settingsGroup = QLatin1String("FileBrowser/") + ns + QLatin1Char('/');
    updateFromPreferences();
}

void FileBrowser::updateFromPreferences()
{
    if (d->m_sequencesEnabled) {
        const int mode = AppSettings::Number(Private::s_classWide.sequencesKey()).value_or(0);
        const bool split = AppSettings::Flag(Private::s_classWide.splitSequencesKey()).value_or(false);
        const bool expanded = mode == static_cast<int>(SequenceMode::Expanded);
        {
            // The slots of the boxes would build the rows for each.
            const QScopedValueRollback<bool> hold(d->m_rowsHeld, true);
            d->m_model->setSplitSequences(split);
            d->m_controls.splitCheck->setChecked(split);
            d->m_model->setSequenceMode(expanded ? SequenceMode::Expanded : SequenceMode::Collapsed);
            d->m_controls.sequencesCheck->setChecked(!expanded);
        }
        d->buildRows();
    }
    d->loadSortOrder();
    loadDirectorySettings();
    if (isVisible() && !d->m_listed)
        refresh();
}

void FileBrowser::Private::loadSortOrder()
{
    const int column = AppSettings::Number(s_classWide.sortColumnKey()).value_or(0);
    const int order = AppSettings::Number(s_classWide.sortOrderKey()).value_or(0);
    // A column that the list does not have would leave it in the order of the disk.
    const bool known = column >= 0 && column < DirectoryModel::ColumnCount;
    m_filesList->header()->setSortIndicator(
        known ? column : 0, order == Qt::DescendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void FileBrowser::sortingChanged(int region, Qt::SortOrder sort)
{
    AppSettings::Store({{Private::s_classWide.sortColumnKey(), region},
                        {Private::s_classWide.sortOrderKey(), static_cast<int>(sort)}});
}

void FileBrowser::loadDirectorySettings()
{
    const std::optional<QString> stored = AppSettings::Text(Private::s_classWide.directoryKey());
    const QDir candidate(GetUseLastSavedDir() && stored ? *stored : QDir::currentPath());
    setDirectory(candidate, false, false);
    if (!Private::isOnDisk(candidate))
        navigateUp();
}

} // namespace Halvern::UI
