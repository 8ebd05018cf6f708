#pragma once

#include "browser/FileBrowser.h"
#include "browser/ProxyModel.h"

#include <QPair>
#include <QPersistentModelIndex>
#include <QSet>
#include <QTreeView>

namespace Halvern::UI {

class RowChanges;

/// The view of the files: keyboard navigation through directories, hover, and the pick-list menu on a right
/// click, which neither selects nor moves the current row. While a read is under way its rows are empty, and
/// none is selected or can be.
class FileBrowser::FilesList : public QTreeView
{
    Q_OBJECT

public:
    /// Shows @p proxy, whose source is @p model. Both outlive the list.
    FilesList(DirectoryModel* model, ProxyModel* proxy);

    /// Makes the columns as wide as usual names, sizes and times are in a font, and the list a little wider.
    void setColumnWidths(const QFontMetrics& font);
    QSize sizeHint() const override { return {m_widthHint, 200}; }

    /// Where the cursor key would go: the index one row above or below the current one.
    QModelIndex rowAbove() { return moveCursor(MoveUp, Qt::NoModifier); }
    QModelIndex rowBelow() { return moveCursor(MoveDown, Qt::NoModifier); }
    /// The selected rows that have an entry, in selection order, as indexes of the source.
    QModelIndexList selectedSourceRows() const;

    /// How a row is found again after the rows were built anew: the name of its entry and, of a sequence, the
    /// name without its range. Empty for a row without an entry.
    using RowName = QPair<QByteArray, QByteArray>;
    struct Choice
    {
        QSet<RowName> selected;
        RowName current;
        bool isEmpty() const { return selected.isEmpty() && current.first.isEmpty(); }
    };
    Choice choice() const;
    RowName currentName() const { return nameOf(m_proxy->mapToSource(currentIndex()).row()); }
    /// Selects the rows of @p choice that exist, and no others, and makes its current row the current one.
    /// A sequence that has other frames by now is found by its name without the range, once all names are
    /// read and if one row alone has that name. The scroll position stays.
    void choose(const Choice& choice);
    /// The source row that choose() would select for this name; -1 for none.
    int find(const RowName& name) const;
    RowName nameOf(int sourceRow) const;

    /// A text in the middle of the list, in place of rows; empty for none.
    void setNotice(const QString& text);

signals:
    void backRequested();
    void upRequested();
    void forwardRequested();
    /// The selected row is to be entered, if it is a folder.
    void enterRequested(QModelIndex index);
    /// For the row of @p sourceIndex, which may be invalid.
    void menuRequested(const QPoint& globalPosition, const QModelIndex& sourceIndex);

protected:
    /// The menu key opens the menu at the current row.
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* /*event*/) override { hoverNothing(); }
    void paintEvent(QPaintEvent* event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;

private slots:
    void hoverNothing();
    void beginUpdate(const Halvern::UI::RowChanges& changes);
    void endUpdate();

private:
    QItemSelectionRange currentRange() const;
    void resumeRange();
    bool navigates(const QKeyEvent& event);
    bool sorts(const QKeyEvent& event);
    QModelIndex nextStaying(QModelIndex index, const RowChanges& changes) const;
    QSet<int> find(const QSet<RowName>& names) const;

    DirectoryModel* m_model;
    ProxyModel* m_proxy;
    QString m_pressedFolder;      // in which the mouse was pressed last
    QPersistentModelIndex m_held; // during an update of the model: the row that keeps its place
    int m_heldTop = 0;            // pixels below the upper edge
    QItemSelectionRange m_range;  // during an update: the rows of a Shift selection
    QString m_notice;
    int m_widthHint = 0;
};

} // namespace Halvern::UI
