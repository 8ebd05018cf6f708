#include "browser/ProxyModel.h"

#include "base/Text.h"
#include "browser/DirectoryModel.h"
#include "browser/RowRanks.h"
#include "frames/Placeholder.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace Halvern::UI {

namespace {

// Names with equal keys come before each other in both directions, and so does the answer.
bool nameLess(const FileInfo& left, const FileInfo& right)
{
    if (NameOrder::isKeyed(left) && NameOrder::isKeyed(right))
        return std::strcmp(left.getStringSortName(), right.getStringSortName()) <= 0;
    return std::strcoll(left.displayName(), right.displayName()) <= 0;
}

bool sizeLess(const FileInfo& left, const FileInfo& right)
{
    if (left.isDirectory() != right.isDirectory())
        return left.isDirectory();
    if (left.isDirectory() || left.size() == right.size())
        return nameLess(left, right);
    return left.size() < right.size();
}

} // namespace

FileBrowser::ProxyModel::ProxyModel(FileBrowser* owner)
    : QSortFilterProxyModel(owner)
    , browser(owner)
{
    setDynamicSortFilter(false);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    // Before the connections of the base class, which show the rows at once.
    connect(owner->directoryModel, SIGNAL(modelReset()), this, SLOT(forgetRanks()));
    setSourceModel(owner->directoryModel);
}

void FileBrowser::ProxyModel::setNamePrefix(const QString& text)
{
    namePrefix = Placeholder::withHashes(text).toUtf8().constData();
}

void FileBrowser::ProxyModel::setFilterPattern(const QString& patterns)
{
    if (patterns != nameFilter.text())
        nameFilter = NameFilter(patterns);
}

void FileBrowser::ProxyModel::apply()
{
    if (browser->directoryModel->isListReady())
        invalidate();
}

void FileBrowser::ProxyModel::sort(int column, Qt::SortOrder order)
{
    forgetRanks();
    fromSourceOrder = false;
    QSortFilterProxyModel::sort(column, order);
}

bool FileBrowser::ProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& /*sourceParent*/) const
{
    const DirectoryModel& model = *browser->directoryModel;
    // Filtering begins here, and sorting follows it; sizes and times may have arrived.
    if (sourceRow == 0) {
        rankedColumn = NoColumn;
        fromSourceOrder = true;
    }
    if (!model.isListReady())
        return true;
    const FileInfo* info = model.entry(sourceRow);
    if (!info)
        return false;
    const char* name = model.displayName(sourceRow);
    if (!nameFilter.text().isEmpty()) {
        if (filterBlocked && name[0] == '.')
            return false;
        if (filterBlocked && info->isDirectory())
            return true;
        if (!info->isDirectory() && !nameFilter.matches(QString::fromUtf8(info->fileName())))
            return false;
    }
    return filterBlocked || matchesPrefix(name);
}

bool FileBrowser::ProxyModel::matchesPrefix(const char* name) const
{
    if (name[0] == '.' && (namePrefix.empty() || namePrefix[0] != '.'))
        return false;
    // A name that ends early differs at its terminator.
    return (namePrefix.empty() || name[0] != '\0') &&
           std::equal(namePrefix.begin(), namePrefix.end(), name, [](char wanted, char present) {
               return Base::lowerCase(wanted) == Base::lowerCase(present);
           });
}

// None while there are no rows to rank.
std::vector<int> FileBrowser::ProxyModel::ranksBy(int column) const
{
    const DirectoryModel& model = *browser->directoryModel;
    if (!model.isListReady())
        return {};
    if (column == DirectoryModel::SizeColumn)
        return RowRanks::bySize(model.rows(), model.nameOrder());
    if (column == DirectoryModel::ModifiedColumn)
        return RowRanks::byTime(model.rows(), placesOfEqualTimes());
    return model.nameOrder().ranks();
}

// Sorting keeps equal rows as they stand, which is the order of the names then, and not that in which the
// list was built.
std::vector<int> FileBrowser::ProxyModel::placesOfEqualTimes() const
{
    if (!fromSourceOrder)
        return {};
    std::vector<int> places = browser->directoryModel->nameOrder().places();
    if (sortOrder() == Qt::DescendingOrder)
        std::transform(places.begin(), places.end(), places.begin(), std::negate<>());
    return places;
}

bool FileBrowser::ProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const int column = left.column();
    if (column != right.column())
        return false;
    if (column != rankedColumn) {
        ranks = ranksBy(column);
        rankedColumn = column;
    }
    const auto leftRow = static_cast<std::size_t>(left.row());
    const auto rightRow = static_cast<std::size_t>(right.row());
    if (leftRow < ranks.size() && rightRow < ranks.size()) {
        const int leftRank = ranks[leftRow];
        const int rightRank = ranks[rightRow];
        if (leftRank != NameOrder::NoRank && rightRank != NameOrder::NoRank)
            return column == DirectoryModel::ModifiedColumn ? leftRank < rightRank : leftRank <= rightRank;
    }
    const FileInfo* leftInfo = browser->directoryModel->entry(left.row());
    const FileInfo* rightInfo = browser->directoryModel->entry(right.row());
    if (!leftInfo || !rightInfo)
        return false;
    switch (column) {
    case DirectoryModel::NameColumn:
        return nameLess(*leftInfo, *rightInfo);
    case DirectoryModel::SizeColumn:
        return sizeLess(*leftInfo, *rightInfo);
    case DirectoryModel::ModifiedColumn:
        return leftInfo->modificationTime() < rightInfo->modificationTime();
    default:
        return false;
    }
}

} // namespace Halvern::UI
