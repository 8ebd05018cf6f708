#include "browser/DirectoryModel.h"

#include "browser/PickList.h"
#include "browser/SequenceFaults.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "paths/Path.h"

#include <QDateTime>
#include <QFont>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <algorithm>
#include <cerrno>
#include <new>
#include <utility>

namespace Halvern::UI {

namespace {

QVariant alignment(int column)
{
    return column == FileBrowser::DirectoryModel::SizeColumn ? QVariant(Qt::AlignRight | Qt::AlignVCenter)
                                                             : QVariant();
}

QVariant sizeText(unsigned long long bytes)
{
    if (bytes > 1048576)
        return QString(QString::number(bytes >> 20) + QLatin1String("MB"));
    if (bytes <= 1024)
        return bytes;
    return QString(QString::number(bytes >> 10) + QLatin1String("KB"));
}

} // namespace

FileBrowser::DirectoryModel::DirectoryModel(const PickList& pickList, bool assumeZeroPadding,
                                            QObject* browser)
    : QAbstractItemModel(browser)
    , m_pickList(pickList)
    , m_update(assumeZeroPadding)
{
    m_manager->setAssumeZeroPadding(assumeZeroPadding);
    setSequenceMode(SequenceMode::Expanded);
    connectManager();
    connect(&m_update, &DirectoryUpdate::filesRead, this, [this] { takeFiles(); });
    connect(&m_update, &DirectoryUpdate::ended, this, &DirectoryModel::updated);
}

void FileBrowser::DirectoryModel::connectManager()
{
    const QObject* browser = QObject::parent();
    // Before the browser, which looks at it.
    connect(m_manager.get(), &FileManager::refreshList, this, [this] { m_reading = false; });
    connect(m_manager.get(), SIGNAL(refreshList()), browser, SLOT(managerRefreshList()));
    connect(m_manager.get(), SIGNAL(infoUpdated(int, int)), browser, SLOT(managerFilesUpdated(int, int)));
}

int FileBrowser::DirectoryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.entries.size());
}

FileInfo* FileBrowser::DirectoryModel::entry(int row) const
{
    const bool exists = m_listReady && row >= 0 && row < rowCount();
    return exists ? m_rows.entries[static_cast<std::size_t>(row)] : nullptr;
}

QModelIndex FileBrowser::DirectoryModel::find(const QByteArray& name) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (entry(row) && name == displayName(row))
            return index(row, NameColumn);
    }
    return {};
}

QVariant FileBrowser::DirectoryModel::data(const QModelIndex& index, int role) const
{
    const FileInfo* info = index.isValid() ? entry(index.row()) : nullptr;
    if (!info)
        return {};
    switch (role) {
    case Qt::FontRole: {
        if (!info->isDirectory())
            return {};
        QFont font;
        font.setWeight(QFont::Bold);
        return font;
    }
    case Qt::BackgroundRole:
        return background(index.row(), *info);
    case Qt::DisplayRole:
    case Qt::EditRole:
        return displayText(*info, index.column());
    case Qt::TextAlignmentRole:
        return alignment(index.column());
    case Qt::ToolTipRole:
        return textOfFaults(*info);
    case Qt::UserRole:
        return QString::fromUtf8(info->displayName());
    default:
        return {};
    }
}

QVariant FileBrowser::DirectoryModel::displayText(const FileInfo& info, int column) const
{
    switch (column) {
    case NameColumn:
        if (info.isDirectory())
            return QString(QString::fromUtf8(info.displayName()) + QLatin1Char('/'));
        if (info.isSequence())
            return normalizeFile(info.getSequenceLongName());
        return QString::fromUtf8(info.fileName());
    case SizeColumn:
        return info.isDirectory() ? QVariant(QString(QLatin1String(""))) : sizeText(info.size());
    case ModifiedColumn:
        return QDateTime::fromSecsSinceEpoch(info.modificationTime());
    default:
        return {};
    }
}

QVariant FileBrowser::DirectoryModel::background(int row, const FileInfo& info) const
{
    if (!m_pickList.isEmpty() && m_pickList.contains(normalizeFile(getFullFilePath(info))))
        return GetQueuedColor();
    if (row == m_hoveredRow)
        return GetHightlightColor();
    return {};
}

QVariant FileBrowser::DirectoryModel::headerData(int section, Qt::Orientation /*orientation*/, int role) const
{
    if (role == Qt::TextAlignmentRole)
        return alignment(section);
    if (role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return {};
    const QString titles[ColumnCount] = {tr("Name"), tr("Size"), tr("Modified")};
    return titles[section];
}

void FileBrowser::DirectoryModel::setDirectory(const QDir& dir, SequenceMode /*mode*/, bool force)
{
    const bool started = m_manager->getFilesFromFolder(dir.absolutePath().toStdString(), force);
    const bool entriesDied = m_entriesGeneration != m_manager->generation();
    const QDir before = std::exchange(m_directory, dir);
    m_entriesGeneration = m_manager->generation();
    if (entriesDied) {
        m_hoveredRow = -1;
        emit entriesExpire();
    }
    if (started || entriesDied || readError() != 0)
        m_reading = started;
    if (started)
        m_listReady = false;
    if (started || entriesDied || dir != before) {
        m_update.abandon();
        m_update.forgetError();
    }
    if (started) {
        emit readStarted();
    } else if (entriesDied || (!force && dir != before)) {
        beginResetModel();
        m_rows = DirectoryRows();
        m_listReady = true;
        endResetModel();
    } else if (readError() != 0) {
        emit readFailed();
        // A read of the same directory was under way and was stopped: what it found is the list.
        if (!m_listReady)
            buildLater();
    }
}

void FileBrowser::DirectoryModel::setEvaluator(FileSequenceEvaluator* evaluator)
{
    m_evaluator = evaluator;
    m_evaluatorLifetime.reset();
    if (!m_evaluator)
        return;
    m_evaluatorLifetime = m_evaluator->lifetime();
    giveManagerToEvaluator();
}

void FileBrowser::DirectoryModel::giveManagerToEvaluator()
{
    if (hasEvaluator())
        m_evaluator->setManager(m_manager.get());
}

void FileBrowser::DirectoryModel::buildRunningList()
{
    // Asked again from within its answer, an evaluator might never come to an end.
    if (m_evaluating) {
        m_wantedAgain = true;
        return;
    }
    const FileInfo* hoveredEntry = entry(m_hoveredRow);
    // The host's code runs before the model changes. It may make the browser read another directory.
    const unsigned generation = m_manager->generation();
    const FileSequenceEvaluator* const asked = m_evaluator;
    m_wantedAgain = false;
    const bool asks = isEvaluating();
    // The rows that an update was to change are about to go. What it reads stays good.
    m_update.repeatSteps();
    std::vector<FileInfo*> evaluatedRows = asks ? evaluateFiles() : std::vector<FileInfo*>();
    if (asks)
        m_update.repeatSteps(); // takeFiles() did nothing in the meantime
    if (generation != m_manager->generation() || asked != m_evaluator) {
        if (m_wantedAgain)
            buildLater();
        return;
    }
    beginResetModel();
    m_buildError = 0;
    try {
        m_rows = asks && isEvaluating() ? DirectoryRows(std::move(evaluatedRows)) : builtRows(*m_manager);
    } catch (const std::bad_alloc&) {
        m_buildError = ENOMEM;
        m_rows.entries.clear();
        m_rows.names = NameOrder();
    }
    m_keptRows.clear();
    m_entriesGeneration = m_manager->generation();
    m_listReady = true;
    if (entry(m_hoveredRow) != hoveredEntry) {
        const auto& entries = m_rows.entries;
        const auto found = std::find(entries.begin(), entries.end(), hoveredEntry);
        m_hoveredRow =
            hoveredEntry && found != entries.end() ? static_cast<int>(found - entries.begin()) : -1;
    }
    endResetModel();
}

DirectoryRows FileBrowser::DirectoryModel::builtRows(FileManager& manager) const
{
    using Base::FileHandle;
    if (m_sequenceMode == SequenceMode::Expanded)
        return {manager, FileHandle::AllFiles};
    return {manager,
            m_splitSequences ? FileHandle::RegisteredSplitSequences : FileHandle::RegisteredSequences};
}

// As if the manager had announced the names.
void FileBrowser::DirectoryModel::buildLater()
{
    QMetaObject::invokeMethod(QObject::parent(), "managerRefreshList", Qt::QueuedConnection);
}

void FileBrowser::DirectoryModel::setSequenceMode(SequenceMode mode)
{
    m_sequenceMode = mode;
    m_manager->setNamesOrdered(mode == SequenceMode::Expanded);
}

std::vector<FileInfo*> FileBrowser::DirectoryModel::evaluateFiles()
{
    m_manager->forgetFollowers();
    emit entriesExpire();
    // Nobody follows the rows while the host's code runs: it may free those that it made.
    if (std::exchange(m_listReady, false))
        emit readStarted();
    return askEvaluator(*m_manager);
}

std::vector<FileInfo*> FileBrowser::DirectoryModel::askEvaluator(FileManager& manager)
{
    std::vector<FileInfo*> files;
    manager.buildRunningList(&files, Base::FileHandle::AllFiles);
    m_evaluator->setManager(&manager);
    const auto restore = qScopeGuard([this] { giveManagerToEvaluator(); });
    const QScopedValueRollback<bool> guard(m_evaluating, true);
    return m_evaluator->evaluateFiles(files);
}

void FileBrowser::DirectoryModel::refreshList()
{
    if (!m_rows.entries.empty() || readError() != 0)
        setDirectory(m_directory, m_sequenceMode, true);
}

void FileBrowser::DirectoryModel::resetModel()
{
    beginResetModel();
    endResetModel();
}

void FileBrowser::DirectoryModel::updateInfo(int /*first*/, int /*count*/)
{
    refreshModel(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

QString FileBrowser::DirectoryModel::getFullFilePath(const FileInfo& info) const
{
    return Base::withSeparator(m_directory.absolutePath()) + QString::fromUtf8(info.displayName());
}

QString FileBrowser::DirectoryModel::getFullFilePath(int row) const
{
    return getFullFilePath(*m_rows.entries[static_cast<std::size_t>(row)]);
}

} // namespace Halvern::UI
