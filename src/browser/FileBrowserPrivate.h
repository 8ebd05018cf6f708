#pragma once

#include "browser/Controls.h"
#include "browser/FileBrowser.h"
#include "browser/FilesList.h"
#include "browser/History.h"
#include "browser/PickList.h"
#include "browser/ShownState.h"
#include "catalogue/DirectoryWatch.h"

#include <QMutex>
#include <QPointer>
#include <QTimer>
#include <optional>

class QAction;

namespace Halvern::UI {

class FavoritesList;
class FavoritesModel;
class FavoritesProxy;
struct DirectoryRows;
class ListNotice;
class RowChanges;

class FileBrowser::Private
{
public:
    /// What all browsers of the process share.
    struct ClassWide
    {
        QMutex colourMutex;
        QColor highlightColour = Qt::black;
        QColor queuedColour = Qt::red;
        bool useLastSavedDir = true;
        SequenceMode sequenceMode = SequenceMode::Collapsed;
        bool assumeZeroPadding = false;
        QString defaultPath;

        QString settingsGroup = QStringLiteral("FileBrowser/");
        QString sortColumnKey() const { return settingsGroup + QLatin1String("orderlogicalindex"); }
        QString sortOrderKey() const { return settingsGroup + QLatin1String("sortorder"); }
        QString sequencesKey() const { return settingsGroup + QLatin1String("sequences"); }
        QString splitSequencesKey() const { return settingsGroup + QLatin1String("splitsequences"); }
        QString directoryKey() const { return settingsGroup + QLatin1String("directory"); }
        const QString previewKey = QStringLiteral("FileBrowser/preview");
    };
    static ClassWide s_classWide;

    explicit Private(FileBrowser* browser);
    /// What points back to the browser goes before the browser does, and without calling it.
    ~Private();

    // FileBrowser.cpp
    void initFilesList();

    // FileBrowserFavorites.cpp
    void initFavorites();
    void resetFavoritesModel();
    int currentFavorite() const;
    std::optional<Favorite> editableFavorite() const;
    void enableFavoriteEditing();

    // FileBrowserListing.cpp
    void selectTypedRow();
    void buildRows();
    void showArrivedAttributes();
    void showNotice();
    void updateSplitSequencesButton();

    // FileBrowserNavigation.cpp
    static bool isOnDisk(const QDir& dir);
    static QString namePrefixOf(const QString& text);
    void awaitFolder(const QDir& left);
    void clearFilterBlock();
    void completeTypedName();
    QString completionText(int row) const;
    QString getCommonPrefix() const;

    // FileBrowserSelection.cpp
    bool isAwaited() const;
    bool awaitsSelection() const;
    void awaitChoice();
    void chooseAwaited();
    void showText(const QString& text);
    QModelIndex shownSequence() const;
    bool isAcceptable() const;
    QString typedName() const;
    bool isTypedFolder() const;
    bool isTypedFolderListed() const;
    bool isAcceptable(const FileInfo& info) const;
    bool takesFolders() const;
    void showQueue(bool changed);

    // FileBrowserSettings.cpp
    void loadSortOrder();

    // FileBrowserWatching.cpp
    void initWatch();
    void watchIfShown();
    void noteReading();
    void beginUpdate(const RowChanges& changes, const DirectoryRows& rows);
    void updatePickList(const RowChanges& changes, const DirectoryRows& rows);
    void endUpdate(bool succeeded);

    FileBrowser* const q;

    SelectionType m_selectionType = SelectionType::Files;
    bool m_sequencesEnabled = true;
    bool m_mayNotExist = false;
    bool m_multipleSelections = false;
    bool m_showChooserTypes = true;
    bool m_filterBlock = false;
    FaveType m_faveType = FaveAll;
    bool m_favoritesChanged = false;

    PickList m_pickList;
    History m_history;
    QDir m_directory;
    bool m_listed = false; // refresh() ran, and no directory was set without it since

    // What is done when the list of the present read is there.
    /// Rows to be found again. If the filename field shows the path of one of several, it goes on to do so.
    struct Awaited : FilesList::Choice
    {
        QString text;
        FilesList::RowName textRow;
    } m_awaited;
    QString m_updatedText;    // of the filename field when all rows are in their places; empty if it stays
    bool m_awaitsTop = false; // a list of another folder is shown from its top
    bool m_awaitsTypedRow = false;
    bool m_rowsUpdating = false; // what is chosen is looked at when all rows are in their places
    bool m_choiceUpdated = false;
    bool m_pickListUpdated = false;
    bool m_typedFolderWasListed = false;
    bool m_rowsKnow = false; // while changes of an update are announced, nothing is asked of the disk
    bool m_rowsHeld = false; // buildRows() follows when all that decides about them is set

    // Brings attributes that arrived to the list, several batches at a time.
    QTimer m_attributesTimer;

    FavoritesModel* m_favoritesModel = nullptr;
    FavoritesProxy* m_favoritesProxy = nullptr;
    FavoritesList* m_favoritesList = nullptr;
    QAction* m_editFavoriteAction = nullptr;
    QAction* m_removeFavoriteAction = nullptr;
    DirectoryModel* m_model = nullptr;
    ProxyModel* m_proxy = nullptr;
    FilesList* m_filesList = nullptr;
    FilesMenu* m_filesMenu = nullptr;
    ListNotice* m_notice = nullptr;
    Controls m_controls;
    QPointer<QWidget> m_previewWidget;

    DirectoryWatch m_watch; // of the model's directory
    ShownState m_shownState{q};
    bool m_watched = false;
};

} // namespace Halvern::UI
