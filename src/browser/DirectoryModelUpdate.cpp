// How the rows change in place when the directory was read again.

#include "browser/DirectoryModel.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "catalogue/KnownFiles.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace Halvern::UI {

/// What the rows become, on its way through several turns of the event loop.
struct FileBrowser::DirectoryModel::NextRows
{
    std::vector<RowKey> keysBefore;
    DirectoryRows rows;
    RowChanges changes;
};

namespace {

// Each range takes a walk over all rows of the model and of the view's order.
constexpr std::size_t FewRanges = 32;

} // namespace

bool FileBrowser::DirectoryModel::update(ChangedNames changed)
{
    const bool isRead = m_listReady && !m_reading && (hasAllAttributes() || readError() != 0);
    if (!isRead || m_evaluating || m_update.isRunning())
        return false;
    KnownFiles known = readError() == 0 ? m_manager->knownFiles() : KnownFiles();
    // Nobody tells that the time of a folder changes with what is in it.
    if (changed)
        changed->insert({".", ".."});
    known.setChanged(std::move(changed), m_updateCount++);
    m_update.begin(m_directory.absolutePath().toStdString(), std::move(known),
                   m_sequenceMode == SequenceMode::Expanded);
    return true;
}

// Each of the steps takes a turn of its own: at 100,000 rows each takes its time.
void FileBrowser::DirectoryModel::takeFiles()
{
    if (m_evaluating)
        return;
    if (!m_update.isUnchanged())
        buildNextRows();
    else if (readError() == 0)
        m_update.finish();
    else
        m_update.abandon(); // the rows could not be built meanwhile: the next update brings them
}

void FileBrowser::DirectoryModel::buildNextRows()
{
    const auto next = std::make_shared<NextRows>();
    next->keysBefore = m_rows.keys(*m_manager);
    const FileSequenceEvaluator* const asked = m_evaluator;
    const bool asks = isEvaluating();
    std::vector<FileInfo*> evaluatedRows;
    if (asks) {
        keepRowsOfEvaluator(next->keysBefore);
        m_wantedAgain = false;
        const unsigned number = m_update.number();
        evaluatedRows = askEvaluator(m_update.manager());
        const bool isAbandoned = !m_update.isRunning() || number != m_update.number();
        if (isAbandoned || asked != m_evaluator) {
            if (!isAbandoned)
                m_update.abandon();
            if (m_wantedAgain)
                buildLater();
            return;
        }
    }
    next->rows =
        asks && isEvaluating() ? DirectoryRows(std::move(evaluatedRows)) : builtRows(m_update.manager());
    m_update.inNextTurn([this, next] {
        next->changes = RowChanges(next->keysBefore, next->rows.keys(m_update.manager()));
        m_update.inNextTurn([this, next] { bringRows(*next); });
    });
}

// An evaluator may free rows of its own making when it is asked. The list goes on showing copies of them.
void FileBrowser::DirectoryModel::keepRowsOfEvaluator(std::vector<RowKey>& keys)
{
    std::vector<std::unique_ptr<FileInfo>> kept;
    std::vector<FileInfo*> entries = m_rows.entries;
    for (std::size_t row = 0; row < entries.size(); ++row) {
        if (!entries[row] || m_manager->owns(entries[row]))
            continue;
        kept.push_back(std::make_unique<FileInfo>(*entries[row]));
        kept.back()->clearSequenceList();
        kept.back()->setParentSequence(nullptr);
        entries[row] = kept.back().get();
        keys[row].name = entries[row]->fileName();
    }
    if (kept.empty())
        return;
    entries.swap(m_rows.entries);
    emit entriesReplaced(entries, m_rows.entries);
    m_keptRows.swap(kept);
}

void FileBrowser::DirectoryModel::bringRows(NextRows& next)
{
    const RowChanges& changes = next.changes;
    const std::vector<FileInfo*> entriesBefore = m_rows.entries;
    std::vector<FileInfo*> entriesAfter(entriesBefore.size(), nullptr);
    for (int row = 0; row < changes.rowsBefore(); ++row) {
        const auto place = static_cast<std::size_t>(changes.places()[static_cast<std::size_t>(row)]);
        if (!changes.vanishes(row))
            entriesAfter[static_cast<std::size_t>(row)] = next.rows.entries[place];
    }
    // No host is called until all rows are in their places.
    emit rowsAboutToBeUpdated(changes, next.rows);
    try {
        // First: whatever fails, the rows that are shown belong to the manager or are given up.
        m_update.exchange(m_manager);
        connectManager();
        giveManagerToEvaluator();
        m_manager->setNamesOrdered(m_sequenceMode == SequenceMode::Expanded);
        m_entriesGeneration = m_manager->generation();
        changeRows(next);
    } catch (const std::bad_alloc&) {
        loseRows();
        // Back, with all connections, of which some may be missing.
        m_update.exchange(m_manager);
        connectManager();
        giveManagerToEvaluator();
        m_entriesGeneration = m_manager->generation();
        throw;
    }
    emit entriesReplaced(entriesBefore, entriesAfter);
    m_keptRows.clear();
    if (rowCount() > 0)
        updateInfo(0, -1);
    emit rowsUpdated();
    m_update.finish();
}

void FileBrowser::DirectoryModel::changeRows(NextRows& next)
{
    const RowChanges& changes = next.changes;
    const int hovered = std::exchange(m_hoveredRow, -1);
    const bool isInOrder = m_rows.isInNameOrder() && next.rows.isInNameOrder() && m_shownAsOrdered;
    const bool areFew = changes.vanishing().size() + changes.added().size() <= FewRanges;
    if (changes.isNone())
        m_rows = std::move(next.rows);
    else if (isInOrder && areFew && changes.keepsOrder())
        bringByRanges(next);
    else
        bringByLayout(next);
    if (hovered >= 0 && hovered < changes.rowsBefore() && !changes.vanishes(hovered))
        m_hoveredRow = changes.places()[static_cast<std::size_t>(hovered)];
    m_buildError = 0;
}

// As if a list had been built without memory for its rows.
void FileBrowser::DirectoryModel::loseRows()
{
    emit entriesExpire();
    beginResetModel();
    m_hoveredRow = -1;
    m_buildError = ENOMEM;
    m_rows.entries.clear();
    m_rows.names = NameOrder();
    m_keptRows.clear();
    endResetModel();
}

// The rows that stay keep their order: those that vanish are removed, then the new ones inserted.
void FileBrowser::DirectoryModel::bringByRanges(NextRows& next)
{
    const RowChanges& changes = next.changes;
    const std::vector<RowChanges::Range> vanishing = changes.vanishing();
    const std::vector<RowChanges::Range> added = changes.added();
    std::vector<FileInfo*>& entries = m_rows.entries;
    entries.reserve(changes.places().size());
    m_rows.isFixed = false;
    for (auto range = vanishing.rbegin(); range != vanishing.rend(); ++range) {
        beginRemoveRows({}, range->first, range->first + range->count - 1);
        entries.erase(entries.begin() + range->first, entries.begin() + range->first + range->count);
        endRemoveRows();
    }
    auto entry = entries.begin();
    for (int row = 0; row < changes.rowsBefore(); ++row) {
        if (!changes.vanishes(row))
            *entry++ =
                next.rows.entries[static_cast<std::size_t>(changes.places()[static_cast<std::size_t>(row)])];
    }
    for (const RowChanges::Range& range : added) {
        const auto from = next.rows.entries.begin() + range.first;
        beginInsertRows({}, range.first, range.first + range.count - 1);
        entries.insert(entries.begin() + range.first, from, from + range.count);
        endInsertRows();
    }
    m_rows = std::move(next.rows);
}

// All rows move at once: the new ones from the end to their places, and those that vanish to the end.
void FileBrowser::DirectoryModel::bringByLayout(NextRows& next)
{
    const std::vector<int>& places = next.changes.places();
    const auto placeOf = [&places](std::size_t row) { return static_cast<std::size_t>(places[row]); };
    const auto before = static_cast<std::size_t>(next.changes.rowsBefore());
    const std::size_t after = next.rows.entries.size();
    std::vector<FileInfo*> rows = m_rows.entries;
    for (std::size_t row = before; row < places.size(); ++row)
        rows.push_back(next.rows.entries[placeOf(row)]);
    std::vector<FileInfo*> arranged = next.rows.entries;
    arranged.resize(places.size());
    for (std::size_t row = 0; row < before; ++row) {
        if (placeOf(row) >= after)
            arranged[placeOf(row)] = rows[row];
    }
    if (places.size() > before) {
        beginInsertRows({}, static_cast<int>(before), static_cast<int>(places.size()) - 1);
        m_rows.entries.swap(rows);
        endInsertRows();
    }
    // Views keep a selection faster if they know that rows only move.
    emit layoutAboutToBeChanged({}, VerticalSortHint);
    m_rows = std::move(next.rows);
    m_rows.entries.swap(arranged);
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    for (const QModelIndex& index : from)
        to.append(createIndex(places[static_cast<std::size_t>(index.row())], index.column()));
    changePersistentIndexList(from, to);
    emit layoutChanged({}, VerticalSortHint);
    if (places.size() > after) {
        beginRemoveRows({}, static_cast<int>(after), static_cast<int>(places.size()) - 1);
        m_rows.entries.resize(after);
        endRemoveRows();
    }
}

} // namespace Halvern::UI
