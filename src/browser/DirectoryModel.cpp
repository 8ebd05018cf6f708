#include "browser/DirectoryModel.h"

#include "browser/FilesMenu.h"
#include "catalogue/FileSequenceEvaluator.h"
#include "paths/Path.h"

#include <QDateTime>
#include <QFont>
#include <QPointer>
#include <algorithm>

namespace Halvern::UI {

namespace {

constexpr std::size_t TypicalRowCount = 4000;

QVariant sizeText(unsigned long long bytes)
{
    if (bytes > 1048576)
        return QString(QString::number(bytes >> 20) + QLatin1String("MB"));
    if (bytes <= 1024)
        return bytes;
    return QString(QString::number(bytes >> 10) + QLatin1String("KB"));
}

} // namespace

// The time in which a host's evaluator is asked. The host may destroy the model in it.
class FileBrowser::DirectoryModel::Evaluating
{
public:
    explicit Evaluating(DirectoryModel* asking)
        : model(asking)
    {
        model->evaluating = true;
    }
    ~Evaluating()
    {
        if (model)
            model->evaluating = false;
    }
    Evaluating(const Evaluating&) = delete;
    Evaluating& operator=(const Evaluating&) = delete;

private:
    const QPointer<DirectoryModel> model;
};

FileBrowser::DirectoryModel::DirectoryModel(FileBrowser* owner)
    : QAbstractItemModel(owner)
    , browser(owner)
{
    entries.reserve(TypicalRowCount);
    manager.setAssumeZeroPadding(_assumeZeroPadding);
    setSequenceMode(SequenceMode::Expanded);
    connect(&manager, SIGNAL(refreshList()), browser, SLOT(managerRefreshList()));
    connect(&manager, SIGNAL(infoUpdated(int, int)), browser, SLOT(managerFilesUpdated(int, int)));
}

QModelIndex FileBrowser::DirectoryModel::index(int row, int column, const QModelIndex& /*parent*/) const
{
    return createIndex(row, column);
}

QModelIndex FileBrowser::DirectoryModel::parent(const QModelIndex& /*child*/) const
{
    return {};
}

int FileBrowser::DirectoryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries.size());
}

int FileBrowser::DirectoryModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

FileInfo* FileBrowser::DirectoryModel::entry(int row) const
{
    const bool there = listReady && row >= 0 && row < static_cast<int>(entries.size());
    return there ? entries[static_cast<std::size_t>(row)] : nullptr;
}

const char* FileBrowser::DirectoryModel::displayName(int row) const
{
    const auto index = static_cast<std::size_t>(row);
    return namesFixed ? names.name(index) : entries[index]->displayName();
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
    if (!browser->pickList.isEmpty() && browser->pickList.contains(normalizeFile(getFullFilePath(info))))
        return _alreadyQueuedColor;
    if (row == hovered)
        return _highlightColor;
    return {};
}

QVariant FileBrowser::DirectoryModel::headerData(int section, Qt::Orientation /*orientation*/, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn:
        return tr("Name");
    case SizeColumn:
        return tr("Size");
    case ModifiedColumn:
        return tr("Modified");
    default:
        return {};
    }
}

void FileBrowser::DirectoryModel::setDirectory(const QDir& dir, SequenceMode /*mode*/, bool force)
{
    const bool started = manager.getFilesFromFolder(dir.absolutePath().toStdString(), force);
    const bool entriesDied = entriesGeneration != manager.generation();
    if (entriesDied) {
        hovered = -1;
        browser->filesMenu->forgetItems();
    }
    if (started) {
        listReady = false;
        entriesGeneration = manager.generation();
    } else if (entriesDied || (!force && dir != directory)) {
        beginResetModel();
        entries.clear();
        names = NameOrder();
        entriesGeneration = manager.generation();
        endResetModel();
    }
    directory = dir;
}

void FileBrowser::DirectoryModel::setEvaluator(FileSequenceEvaluator* newEvaluator)
{
    evaluator = newEvaluator;
    evaluatorLifetime.reset();
    if (!evaluator)
        return;
    evaluatorLifetime = evaluator->lifetime();
    evaluator->setManager(&manager);
}

void FileBrowser::DirectoryModel::buildRunningList()
{
    using Base::FileHandle;
    // Asked again from within its answer, an evaluator might never come to an end.
    if (evaluating) {
        wantedAgain = true;
        return;
    }
    bool evaluated = hasEvaluator() && sequenceMode != SequenceMode::Expanded;
    const FileInfo* hoveredEntry = entry(hovered);
    // The host's code runs while the model still stands as it was. Where it made the browser read another
    // directory, its answer is about entries that are gone.
    const unsigned generation = manager.generation();
    const FileSequenceEvaluator* const asked = evaluator;
    wantedAgain = false;
    const QPointer<DirectoryModel> self(this);
    std::vector<FileInfo*> evaluatedRows = evaluated ? evaluateFiles() : std::vector<FileInfo*>();
    if (!self)
        return;
    if (generation != manager.generation() || asked != evaluator) {
        if (wantedAgain)
            QMetaObject::invokeMethod(this, &DirectoryModel::buildRunningList, Qt::QueuedConnection);
        return;
    }
    evaluated = evaluated && hasEvaluator() && sequenceMode != SequenceMode::Expanded;
    beginResetModel();
    if (evaluated)
        entries.swap(evaluatedRows);
    else if (sequenceMode == SequenceMode::Expanded)
        manager.buildRunningList(&entries, FileHandle::AllFiles);
    else
        manager.buildRunningList(&entries, splitSequences ? FileHandle::RegisteredSplitSequences
                                                          : FileHandle::RegisteredSequences);
    entriesGeneration = manager.generation();
    orderRows(evaluated);
    listReady = true;
    if (entry(hovered) != hoveredEntry) {
        const auto found = std::find(entries.begin(), entries.end(), hoveredEntry);
        hovered = hoveredEntry && found != entries.end() ? static_cast<int>(found - entries.begin()) : -1;
    }
    endResetModel();
}

// An evaluator's rows stay in its order, and it may rename them.
void FileBrowser::DirectoryModel::orderRows(bool evaluated)
{
    namesFixed = !evaluated;
    names = manager.takeNameOrder();
    if (evaluated || sequenceMode != SequenceMode::Expanded || names.size() != entries.size())
        names = NameOrder(entries, evaluated ? NameOrder::AsAdded : NameOrder::ByKey);
    if (!evaluated)
        names.apply(entries);
}

void FileBrowser::DirectoryModel::setSequenceMode(SequenceMode mode)
{
    sequenceMode = mode;
    manager.setNamesOrdered(mode == SequenceMode::Expanded);
}

std::vector<FileInfo*> FileBrowser::DirectoryModel::evaluateFiles()
{
    std::vector<FileInfo*> files;
    manager.buildRunningList(&files, Base::FileHandle::AllFiles);
    manager.forgetFollowers();
    // Rows of the host's own making may not outlive its next answer.
    browser->filesMenu->forgetItems();
    evaluator->setManager(&manager);
    const Evaluating guard(this);
    return evaluator->evaluateFiles(files);
}

void FileBrowser::DirectoryModel::refreshList()
{
    if (!entries.empty())
        setDirectory(directory, browser->getSequenceMode(), true);
}

void FileBrowser::DirectoryModel::resetModel()
{
    beginResetModel();
    endResetModel();
}

void FileBrowser::DirectoryModel::refreshModel(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    emit dataChanged(topLeft, bottomRight);
}

void FileBrowser::DirectoryModel::updateInfo(int /*first*/, int /*count*/)
{
    refreshModel(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

QString FileBrowser::DirectoryModel::getFullFilePath(const FileInfo& info) const
{
    return Base::withSeparator(directory.absolutePath()) + QString::fromUtf8(info.displayName());
}

QString FileBrowser::DirectoryModel::getFullFilePath(int row) const
{
    return getFullFilePath(*entries[static_cast<std::size_t>(row)]);
}

} // namespace Halvern::UI
