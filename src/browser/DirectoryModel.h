#pragma once

#include "browser/DirectoryRows.h"
#include "browser/DirectoryUpdate.h"
#include "browser/FileBrowser.h"
#include "catalogue/FileManager.h"
#include "catalogue/KnownFiles.h"

#include <QAbstractItemModel>
#include <QDir>
#include <memory>
#include <string>
#include <vector>

namespace Halvern::UI {

class PickList;

/// The rows of one directory as a flat table of name, size and modification time. It owns the manager that
/// reads the directory; the entries of its rows belong to that manager. update() reads with a second one,
/// which then takes the place of the first.
///
/// Between the start of a read and buildRunningList() the rows keep their number and are empty: their entries
/// are gone. entry() is null for them and for every row that does not exist.
class FileBrowser::DirectoryModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column
    {
        NameColumn,
        SizeColumn,
        ModifiedColumn,
        ColumnCount
    };

    /// Rows whose path is in @p pickList are painted in the queued colour; the list outlives the model.
    /// @p browser is the parent, and its slots managerRefreshList() and managerFilesUpdated(int, int) are
    /// told what the manager announces. @p assumeZeroPadding: see FileManager::setAssumeZeroPadding().
    DirectoryModel(const PickList& pickList, bool assumeZeroPadding, QObject* browser);

    QModelIndex index(int row, int column, const QModelIndex& /*parent*/ = QModelIndex()) const override
    {
        return createIndex(row, column);
    }
    QModelIndex parent(const QModelIndex& /*child*/) const override { return {}; }
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : ColumnCount;
    }
    /// Besides the displayed texts: Qt::UserRole is the bare name, Qt::BackgroundRole the colour of queued
    /// and hovered rows, Qt::ToolTipRole what a sequence lacks, as textOfFaults() tells. Sizes up to 1024
    /// bytes are numbers, larger ones texts like "12KB" or "3MB".
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Begins to read @p dir; with @p force also if it is the present directory. @p mode is not read: the
    /// mode in force is that of setSequenceMode(). A present directory that can't be opened keeps its rows.
    void setDirectory(const QDir& dir, SequenceMode mode, bool force);
    const QDir& directory() const { return m_directory; }
    std::string path() const { return m_directory.absolutePath().toStdString(); } ///< In UTF-8.
    /// Rebuilds the rows from what has arrived and resets the model. While an evaluator is asked it waits.
    void buildRunningList();
    /// Reads the present directory again. Does nothing while there are no rows, unless the last read failed.
    void refreshList();
    /// Reads the present directory again in the background and brings the rows to the new state, with
    /// updated() at the end. Until then the rows stand as they are and can be used. They change by
    /// insertions, removals, layout changes and dataChanged(), never by a reset. An evaluator is asked only
    /// if a file is another than before, or its size or time. @p changed are the names of the files that
    /// changed since the last successful update, or else the last read, began. The attributes of few other
    /// files are read.
    ///
    /// False, and nothing happens, while the directory is being read, also for attributes or by an update. A
    /// new read abandons the update. If the rows are built anew meanwhile, it brings those to the new state.
    bool update(ChangedNames changed = std::nullopt);
    bool isUpdating() const { return m_update.isRunning(); }
    /// Why the last update failed: an error number of the system, 0 if it succeeded or the directory was read
    /// since. The rows are those of the last state that could be read.
    int updateError() const { return m_update.error(); }
    /// Whether rows are shown in the order of the model (default: yes). Then update() can bring a few ranges
    /// of rows one by one, which is the fastest.
    void setShownAsOrdered(bool shown) { m_shownAsOrdered = shown; }
    void resetModel();
    void refreshModel(const QModelIndex& from, const QModelIndex& to) { emit dataChanged(from, to); }
    void updateInfo(int first, int count);

    /// The row under the mouse, -1 for none. Setting it announces nothing.
    int hoveredRow() const { return m_hoveredRow; }
    void setHoveredRow(int row) { m_hoveredRow = row; }

    /// Expanded (the initial mode) gives every file its row. Takes effect at the next buildRunningList().
    void setSequenceMode(SequenceMode mode);
    /// Whether the built-in rules split sequences at gaps (default: no); takes effect in the same way.
    void setSplitSequences(bool split) { m_splitSequences = split; }
    /// Null for the built-in rules, also used if it is destroyed. Takes effect in the same way. Not owned.
    void setEvaluator(FileSequenceEvaluator* evaluator);
    bool hasEvaluator() const { return !m_evaluatorLifetime.expired(); }

    /// False while a read is under way whose rows were not built yet.
    bool isListReady() const { return m_listReady; }
    /// Why the listing is empty or incomplete: an error number of the system, 0 if it succeeded.
    int readError() const { return m_buildError != 0 ? m_buildError : m_manager->readError(); }
    bool isReading() const { return m_reading; }
    /// Whether every file that was read has its size and time.
    bool hasAllAttributes() const { return m_manager->isInfoComplete(); }
    /// The rows in source order, which is by name; those of an evaluator, and if names have no such order,
    /// as they were given. To be looked at while isListReady() only.
    const std::vector<FileInfo*>& rows() const { return m_rows.entries; }
    /// Of rows(), as they were when these were built. Rows beyond it are about to be removed.
    const NameOrder& nameOrder() const { return m_rows.names; }
    bool isInNameOrder() const { return m_rows.isInNameOrder(); }
    /// The name of a row with an entry, as it is displayed, without range and "/".
    const char* displayName(int row) const { return m_rows.name(static_cast<std::size_t>(row)); }
    /// The first row of that name, which is bytes; invalid if there is none.
    QModelIndex find(const QByteArray& name) const;
    /// The entry of a row, borrowed; null if there is none to follow.
    FileInfo* entry(int row) const;
    /// The entry of a row that is known to exist.
    FileInfo* fileInfo(const QModelIndex& index) const
    {
        return m_rows.entries[static_cast<std::size_t>(index.row())];
    }
    /// The path of an entry; a sequence gives its name with placeholder and range.
    QString getFullFilePath(const FileInfo& info) const;
    QString getFullFilePath(int row) const;
    QString getFullFilePath(const QModelIndex& index) const { return getFullFilePath(index.row()); }

signals:
    /// A read has begun, or an evaluator is asked: the rows are empty until the model is reset.
    void readStarted();
    /// The present directory could not be opened; its rows stay.
    void readFailed();
    /// Entries die, or an evaluator is asked, which may free rows of its own making.
    void entriesExpire();
    /// Each entry of @p before was replaced by the one at the same index of @p after, null if there is none.
    /// The entries of @p before are about to be destroyed.
    void entriesReplaced(const std::vector<FileInfo*>& before, const std::vector<FileInfo*>& after);
    void rowsAboutToBeUpdated(const Halvern::UI::RowChanges& changes, const Halvern::UI::DirectoryRows& rows);
    /// The rows stand as announced.
    void rowsUpdated();
    /// An update has ended, once for each update() that returned true. @p milliseconds is the time that
    /// reading and bringing the rows over took. @p succeeded is false if the directory could not be read to
    /// its end, or if the update was abandoned; the rows are then as they were.
    void updated(int milliseconds, bool succeeded);

private:
    struct NextRows;

    bool isEvaluating() const { return hasEvaluator() && m_sequenceMode != SequenceMode::Expanded; }
    std::vector<FileInfo*> evaluateFiles();
    std::vector<FileInfo*> askEvaluator(FileManager& manager);
    void giveManagerToEvaluator();
    DirectoryRows builtRows(FileManager& manager) const;
    void buildLater();
    void connectManager();

    // DirectoryModelUpdate.cpp
    void takeFiles();
    void buildNextRows();
    void keepRowsOfEvaluator(std::vector<RowKey>& keys);
    void bringRows(NextRows& next);
    void changeRows(NextRows& next);
    void loseRows();
    void bringByRanges(NextRows& next);
    void bringByLayout(NextRows& next);

    QVariant displayText(const FileInfo& info, int column) const;
    QVariant background(int row, const FileInfo& info) const;

    const PickList& m_pickList;
    FileSequenceEvaluator* m_evaluator = nullptr; // to be followed only while hasEvaluator()
    std::weak_ptr<const void> m_evaluatorLifetime;
    bool m_evaluating = false;
    bool m_wantedAgain = false; // a list, while the evaluator was asked for it
    QDir m_directory;
    int m_hoveredRow = -1;
    bool m_listReady = false;
    bool m_reading = false;
    int m_buildError = 0; // ENOMEM if there was no memory for the rows
    DirectoryRows m_rows;
    std::vector<std::unique_ptr<FileInfo>> m_keptRows; // in place of rows that an evaluator may have freed
    unsigned m_entriesGeneration = 0;                  // of the manager when the entries were taken
    std::unique_ptr<FileManager> m_manager = std::make_unique<FileManager>();
    DirectoryUpdate m_update;
    unsigned m_updateCount = 0;
    bool m_shownAsOrdered = true;
    SequenceMode m_sequenceMode;
    bool m_splitSequences = false;
};

} // namespace Halvern::UI
