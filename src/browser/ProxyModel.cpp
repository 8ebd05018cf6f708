#include "browser/ProxyModel.h"

#include "base/Text.h"
#include "browser/DirectoryModel.h"
#include "catalogue/FileInfo.h"
#include "frames/Placeholder.h"

#include <QScopedValueRollback>
#include <algorithm>
#include <cstring>
#include <new>

namespace Halvern::UI {

namespace {

// What a person typed or pasted, cut to what a line holds.
QString shortened(const QString& text)
{
    constexpr int MostCharacters = 60;
    return text.size() <= MostCharacters ? text : QString(text.left(MostCharacters) + QChar(0x2026));
}

} // namespace

FileBrowser::ProxyModel::ProxyModel(DirectoryModel* source, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_model(source)
{
    setDynamicSortFilter(false);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    // Before the connections of the base class, which sorts at once.
    for (const char* signal : {SIGNAL(modelReset()), SIGNAL(readStarted())})
        connect(m_model, signal, this, SLOT(readKeys()));
    connect(m_model, &DirectoryModel::layoutChanged, this, [this] {
        readKeys();
        m_isArranged = true;
    });
    connect(m_model, &DirectoryModel::rowsAboutToBeUpdated, this, &ProxyModel::beginUpdate);
    connect(m_model, &DirectoryModel::rowsUpdated, this, &ProxyModel::endUpdate);
    connect(m_model, &DirectoryModel::entriesReplaced, this, &ProxyModel::noteEntries);
    connect(this, &ProxyModel::layoutAboutToBeChanged, this, [this] {
        if (m_keysAreOld)
            readKeys();
    });
    setSourceModel(m_model);
}

void FileBrowser::ProxyModel::setNamePrefix(const QString& text)
{
    m_namePrefix = Placeholder::withHashes(text).toUtf8().constData();
}

void FileBrowser::ProxyModel::setFilterPattern(const QString& patterns)
{
    if (patterns != m_nameFilter.text())
        m_nameFilter = NameFilter(patterns);
}

void FileBrowser::ProxyModel::apply()
{
    if (m_model->isListReady())
        invalidate();
}

void FileBrowser::ProxyModel::showAttributes()
{
    if (!m_model->isListReady() || m_model->rowCount() == 0)
        return;
    const bool kindsChanged = readKeys();
    if (kindsChanged && !m_nameFilter.text().isEmpty()) {
        // A link that turned out to be a folder passes every filter.
        invalidate();
    } else if (isSortedByAttribute()) {
        sortAgain();
    }
    m_model->updateInfo(0, -1);
}

// The same rows pass the filter. Views keep a selection faster if they know that rows only move.
void FileBrowser::ProxyModel::sortAgain()
{
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    {
        const QSignalBlocker blocker(this);
        const QScopedValueRollback<bool> fromSource(m_fromSourceOrder, true);
        sort(sortColumn(), sortOrder());
    }
    emit layoutChanged({}, VerticalSortHint);
}

// Rows that come and go one by one are put where the source has them. Keys of other rows must not decide.
void FileBrowser::ProxyModel::beginUpdate()
{
    const bool byName = sortColumn() == DirectoryModel::NameColumn && sortOrder() == Qt::AscendingOrder;
    m_model->setShownAsOrdered(byName || sortColumn() < 0);
    m_keys.clear();
    m_keysAreOld = false; // a layout change reads them, or the end of the update tells that they are old
    m_isArranged = m_namesChanged = false;
}

// A sequence that has other frames may begin with what is typed from now on, or not any more.
void FileBrowser::ProxyModel::noteEntries(const std::vector<FileInfo*>& before,
                                          const std::vector<FileInfo*>& after)
{
    noteAttributes();
    const bool isFiltered = !m_nameFilter.text().isEmpty() || !m_namePrefix.empty();
    const bool mayPassOtherwise = isFiltered && !m_isArranged;
    for (std::size_t row = 0; mayPassOtherwise && !m_namesChanged && row < before.size(); ++row)
        m_namesChanged = before[row] && after[row] &&
                         (before[row]->isSequence() || after[row]->isSequence()) &&
                         std::strcmp(before[row]->displayName(), after[row]->displayName()) != 0;
}

// Without a layout change of the source, names and attributes may yet decide otherwise.
void FileBrowser::ProxyModel::endUpdate()
{
    if (m_isArranged)
        return;
    if (m_namesChanged)
        invalidate();
    else if (isSortedByAttribute() || !m_model->isInNameOrder())
        sortAgain();
}

bool FileBrowser::ProxyModel::isSortedByAttribute() const
{
    return sortColumn() == DirectoryModel::SizeColumn || sortColumn() == DirectoryModel::ModifiedColumn;
}

// Whether a row is a file that was none before, or the other way round. Attributes are looked at only if they
// decide something: the entries of many rows take their time to be fetched from memory.
bool FileBrowser::ProxyModel::readKeys()
{
    const bool needsAttributes = isSortedByAttribute() || !m_nameFilter.text().isEmpty();
    m_keysAreOld = !needsAttributes;
    if (!m_model->isListReady()) {
        m_keys.clear();
        return true;
    }
    const std::vector<FileInfo*>& rows = m_model->rows();
    const std::vector<int>& ranks = m_model->nameOrder().ranks();
    bool kindsChanged = m_keys.size() != rows.size();
    try {
        m_keys.resize(rows.size());
    } catch (const std::bad_alloc&) {
        m_keys.clear(); // the rows stay in the order of the source
        return true;
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        RowKey& key = m_keys[row];
        key.entry = rows[row];
        key.vanishes = row >= ranks.size();
        key.place = key.vanishes ? NameOrder::NoRank : ranks[row];
        if (!key.entry || !needsAttributes)
            continue;
        const bool isFile = !key.entry->isDirectory();
        kindsChanged = kindsChanged || key.isFile != isFile;
        key.size = isFile ? key.entry->size() : 0;
        key.time = key.entry->modificationTime();
        key.isFile = isFile;
    }
    return kindsChanged;
}

bool FileBrowser::ProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex& /*sourceParent*/) const
{
    if (!m_model->isListReady())
        return true;
    const FileInfo* info = m_model->entry(sourceRow);
    if (!info)
        return false;
    const char* name = m_model->displayName(sourceRow);
    if (!m_nameFilter.text().isEmpty()) {
        if (m_filterBlocked && name[0] == '.')
            return false;
        if (m_filterBlocked && info->isDirectory())
            return true;
        if (!info->isDirectory() && !m_nameFilter.matches(QString::fromUtf8(info->fileName())))
            return false;
    }
    return m_filterBlocked || matchesPrefix(name);
}

QString FileBrowser::ProxyModel::reasonForNoRows() const
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const char* name = m_model->entry(row) ? m_model->displayName(row) : ".";
        if (m_filterBlocked ? name[0] != '.' : matchesPrefix(name))
            return FileBrowser::tr("No file matches the filter %1.").arg(shortened(m_nameFilter.text()));
    }
    if (m_filterBlocked || m_namePrefix.empty())
        return FileBrowser::tr("This folder is empty.");
    return FileBrowser::tr("Nothing here begins with \"%1\".")
        .arg(shortened(QString::fromStdString(m_namePrefix)));
}

bool FileBrowser::ProxyModel::matchesPrefix(const char* name) const
{
    if (name[0] == '.' && (m_namePrefix.empty() || m_namePrefix[0] != '.'))
        return false;
    // A name that ends early differs at its terminator.
    return std::equal(m_namePrefix.begin(), m_namePrefix.end(), name, [](char wanted, char present) {
        return Base::lowerCase(wanted) == Base::lowerCase(present);
    });
}

bool FileBrowser::ProxyModel::isNameLess(const RowKey& left, const RowKey& right)
{
    if (left.place != NameOrder::NoRank && right.place != NameOrder::NoRank)
        return left.place <= right.place;
    return std::strcoll(left.entry->displayName(), right.entry->displayName()) <= 0;
}

bool FileBrowser::ProxyModel::isLess(const RowKey& left, const RowKey& right, int column)
{
    switch (column) {
    case DirectoryModel::NameColumn:
        return isNameLess(left, right);
    case DirectoryModel::SizeColumn:
        if (left.isFile != right.isFile)
            return right.isFile;
        return left.size != right.size ? left.size < right.size : isNameLess(left, right);
    case DirectoryModel::ModifiedColumn:
        return left.time < right.time;
    default:
        return false;
    }
}

bool FileBrowser::ProxyModel::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const auto leftRow = static_cast<std::size_t>(left.row());
    const auto rightRow = static_cast<std::size_t>(right.row());
    if (left.column() != right.column() || leftRow >= m_keys.size() || rightRow >= m_keys.size())
        return false;
    const RowKey& a = m_keys[leftRow];
    const RowKey& b = m_keys[rightRow];
    if (a.vanishes != b.vanishes)
        return b.vanishes == (sortOrder() == Qt::AscendingOrder);
    if (!a.entry || !b.entry)
        return false;
    const bool less = isLess(a, b, left.column());
    if (!m_fromSourceOrder || less != isLess(b, a, left.column()))
        return less;
    // A stable sort keeps rows of which neither is less, and turns rows round that are less both ways.
    const bool isDescending = sortOrder() == Qt::DescendingOrder;
    return (leftRow < rightRow) != (less != isDescending);
}

} // namespace Halvern::UI
