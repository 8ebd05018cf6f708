#pragma once

#include "browser/FileBrowser.h"

#include <QMenu>

namespace Halvern::UI {

class PickList;

/// The context menu of the file list, whose actions also work by their shortcuts while the list has the
/// focus. It keeps what the next "Add" or "Remove" is about: what the menu was opened on, or for a shortcut
/// the selection if the mouse is over it, else the row under the mouse.
class FileBrowser::FilesMenu : public QMenu
{
    Q_OBJECT

public:
    /// All outlive the menu. The actions call slots of @p browser, which is the parent.
    FilesMenu(DirectoryModel* model, FilesList* list, const PickList& pickList, QWidget* browser);

    void defaultSetup();
    void setEditActionsVisible(bool visible);
    /// Collects the items for a shortcut, or keeps those of a menu that was opened unless @p force is set.
    void updateEditData(bool force);
    void prepareItemsForEditing();
    void enableActions();

    const QList<FileInfo*>& items() const { return m_editItems; }
    /// "Add" or "Remove" was carried out: the next shortcut collects its items anew.
    void finishEditing() { m_menuOpen = false; }

public slots:
    /// Pops up for the row of @p sourceIndex, which may be invalid. For a list of single selection it offers
    /// "Refresh" alone.
    void popupMenu(const QPoint& globalPosition, const QModelIndex& sourceIndex);

private slots:
    void replaceItems(const std::vector<FileInfo*>& before, const std::vector<FileInfo*>& after);

private:
    QAction* makeAction(const char* name, const QString& text, const char* slot);

    DirectoryModel* m_model;
    FilesList* m_list;
    const PickList& m_pickList;
    bool m_menuOpen = false;
    QList<FileInfo*> m_editItems;
    QAction* m_addAction = nullptr;
    QAction* m_removeAction = nullptr;
    QAction* m_refreshAction = nullptr;
};

} // namespace Halvern::UI
