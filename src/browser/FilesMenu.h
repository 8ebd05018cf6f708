#pragma once

#include "browser/FileBrowser.h"

#include <QMenu>

namespace Halvern::UI {

/// The context menu of the file list, whose actions also work by their shortcuts while the list has the
/// focus. It keeps what the next "Add" or "Remove" is about: what the menu was opened on, or for a shortcut
/// the selection if the mouse is over it, else the row under the mouse.
class FileBrowser::FilesMenu : public QMenu
{
    Q_OBJECT

public:
    explicit FilesMenu(FileBrowser* owner);

    /// Makes the actions and connects them.
    void defaultSetup();
    /// Pops up for the row of @p sourceIndex, which may be invalid. A single-selection browser offers
    /// "Refresh" alone.
    void popupMenu(const QPoint& globalPosition, const QModelIndex& sourceIndex);
    /// Collects the items for a shortcut. The menu's items are kept where it was opened before and @p force
    /// is not set.
    void updateEditData(bool force);
    void prepareItemsForEditing();
    /// Shows or hides "Add" and "Remove".
    void setEditActionsVisible(bool visible);
    /// Enables all actions.
    void enableActions();

    /// The entries that the next "Add" or "Remove" acts on.
    const QList<FileInfo*>& items() const { return editItems; }
    /// "Add" or "Remove" was carried out: the next shortcut collects its items anew.
    void finishEditing() { menuOpen = false; }
    /// The entries are about to die: the next shortcut collects its items anew.
    void forgetItems()
    {
        editItems.clear();
        menuOpen = false;
    }

private:
    QAction* makeAction(const QString& text, const char* slot);

    FileBrowser* browser;
    bool menuOpen = false;
    QList<FileInfo*> editItems;
    QAction* addAction = nullptr;
    QAction* removeAction = nullptr;
    QAction* refreshAction = nullptr;
};

} // namespace Halvern::UI
