#pragma once

#include "browser/FileBrowser.h"
#include "browser/NameFilter.h"

#include <QSortFilterProxyModel>
#include <string>
#include <vector>

namespace Halvern::UI {

/// Filters and orders the rows of a DirectoryModel: hides names that begin with ".", applies the wildcard
/// filter and the typed name prefix, and sorts. It filters and sorts when it is told to, not when data
/// change.
class FileBrowser::ProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit ProxyModel(FileBrowser* owner);

    /// Rows must begin with @p text in any letter case, with "#" in place of printf tokens; a leading "."
    /// shows hidden names too.
    void setNamePrefix(const QString& text);
    /// The prefix as rows are compared with it, UTF-8.
    const std::string& prefix() const { return namePrefix; }
    /// Wildcard patterns that files must match, as NameFilter takes them; empty for all.
    void setFilterPattern(const QString& patterns);
    /// While set, folders always pass and the name prefix is not looked at.
    void setFilterBlocked(bool blocked) { filterBlocked = blocked; }
    /// Filters and sorts afresh. While a read is under way nothing happens: the rows are built anew after it.
    void apply();
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private slots:
    void forgetRanks() { rankedColumn = NoColumn; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    static constexpr int NoColumn = -1;

    bool matchesPrefix(const char* name) const;
    std::vector<int> ranksBy(int column) const;
    std::vector<int> placesOfEqualTimes() const;

    std::string namePrefix;
    NameFilter nameFilter;
    FileBrowser* browser;
    bool filterBlocked = false;

    // Of the rows in the column by which it is being sorted; the first comparison finds them.
    mutable std::vector<int> ranks;
    mutable int rankedColumn = NoColumn;
    mutable bool fromSourceOrder = true; // sorts rows as the source has them, not as they are sorted already
};

} // namespace Halvern::UI
