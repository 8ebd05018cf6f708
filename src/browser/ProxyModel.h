#pragma once

#include "browser/FileBrowser.h"
#include "browser/NameFilter.h"

#include <QSortFilterProxyModel>
#include <string>
#include <vector>

namespace Halvern::UI {

/// Filters and orders the rows of a DirectoryModel: hides names that begin with ".", applies the wildcard
/// filter and the typed name prefix, and sorts. It does so when it is told to, not when data change.
class FileBrowser::ProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    /// @p model is the source. It outlives the proxy.
    ProxyModel(DirectoryModel* model, QObject* parent);

    /// Rows must begin with @p text in any case, "#" for printf tokens. A leading "." shows hidden names too.
    void setNamePrefix(const QString& text);
    /// As the rows must begin, in UTF-8; empty if any may.
    const std::string& namePrefix() const { return m_namePrefix; }
    /// Wildcard patterns that files must match, as NameFilter takes them; empty for all.
    void setFilterPattern(const QString& patterns);
    /// While set, folders always pass and the name prefix is not looked at.
    void setFilterBlocked(bool blocked) { m_filterBlocked = blocked; }
    /// Filters and sorts again. While a read is under way nothing happens: the rows are built anew after it.
    void apply();
    /// Attributes have arrived: the next sorting and showAttributes() look at them.
    void noteAttributes() { m_keysAreOld = true; }
    /// Shows the attributes of the rows as they are now, and sorts again if these decide the order. Rows that
    /// are equal then stand as in the source, in whichever order their attributes arrived. Selection, current
    /// row and scroll position stay.
    void showAttributes();

    /// Why no row is accepted, as a sentence. Only for a list that is ready and has no rows.
    QString reasonForNoRows() const;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    /// Deliberately not a strict order: by name and size, rows with equal keys are less both ways.
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private slots:
    bool readKeys();
    void beginUpdate();
    void noteEntries(const std::vector<FileInfo*>& before, const std::vector<FileInfo*>& after);
    void endUpdate();

private:
    /// What decides the place of a row. Keys stand close together; entries are kilobytes apart.
    struct RowKey
    {
        const FileInfo* entry;
        unsigned long long size;
        long long time;
        int place; ///< Of the name, NameOrder::NoRank if its sort key does not decide.
        bool isFile;
        bool vanishes; ///< It is about to be removed, and stands after the others.
    };

    bool matchesPrefix(const char* name) const;
    bool isSortedByAttribute() const;
    void sortAgain();
    static bool isNameLess(const RowKey& left, const RowKey& right);
    static bool isLess(const RowKey& left, const RowKey& right, int column);

    std::string m_namePrefix;
    NameFilter m_nameFilter;
    DirectoryModel* m_model;
    bool m_filterBlocked = false;
    std::vector<RowKey> m_keys; // of the source rows, none during a read
    bool m_keysAreOld = false;
    bool m_fromSourceOrder = false; // sorting gives what it gives if rows stand as in the source before
    // In this update of the model:
    bool m_isArranged = false;   // by a layout change
    bool m_namesChanged = false; // those of rows that stay, while rows are filtered
};

} // namespace Halvern::UI
