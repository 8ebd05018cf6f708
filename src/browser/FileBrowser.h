#pragma once

#include "base/Export.h"
#include "favorites/Favorite.h"

#include <QAbstractItemModel>
#include <QColor>
#include <QDir>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QWidget>
#include <optional>
#include <string>

class FilePathEdit;
class QAction;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QMenu;
class QPushButton;
class QTimer;

namespace Halvern::UI {

class DisclosureButton;
class FavoritesList;
class FavoritesModel;
class FavoritesProxy;
class FileDialog;
class FileInfo;
class FileSequenceEvaluator;

/// A file browser for production work on image sequences: navigation buttons above, a panel for favourites on
/// the left, the list of files with sequences collapsed, a filename field, options, and the buttons Next,
/// Open and Cancel below. A host embeds it, reacts to accepted() and rejected(), and reads selectedFiles().
///
/// GUI thread only; files are listed on a worker thread of its own. Its controls are found by objectName,
/// which is the name of their field. Default folders, colours and settings keys are class-wide: every browser
/// of the process shares them. Nothing throws; a directory that does not exist is ignored.
class HVCOREUI_EXPORT FileBrowser : public QWidget
{
    Q_OBJECT

public:
    class DirectoryModel;
    class ProxyModel;
    class FilesList;
    class FilesMenu;

    enum class SequenceMode
    {
        Collapsed = 0, ///< Numbered files share a row; as class-wide default, paths keep their "#".
        Expanded = 1   ///< Every file has its row; as class-wide default, paths are given in printf form.
    };

    Q_ENUM(SequenceMode)

    enum class SelectionType
    {
        Files = 0,       ///< Next takes selected rows only.
        Directories = 1, ///< Only directories are picked; Next without a selection takes the directory.
        FilesAndDirectories = 2 ///< Everything is picked; Next without a selection takes the directory.
    };
    Q_ENUM(SelectionType)

    /// Makes the favourites of the process ready, reads the stored settings and sets the stored directory, or
    /// the working directory; the files are listed when the browser is first shown, if nothing asked for them
    /// before. @p parent owns it.
    explicit FileBrowser(QWidget* parent = nullptr);
    /// Writes the favourites file if the user added, edited or removed favourites in this browser, or if an
    /// earlier attempt failed, and stores the directory and the preview state.
    ~FileBrowser() override;

    /// Goes to @p dir: enters it into the history and sets the buttons. Unless @p keepFilename, its path is
    /// placed in the filename field and fileSelected() emitted for it. @p doRefresh lists it (default of the
    /// bindings: true). Nothing happens where @p dir does not exist or is the present directory.
    void setDirectory(QDir dir, bool keepFilename, bool doRefresh);
    /// The present directory.
    QDir directory() const { return currentDirectory; }
    /// Places a path in the filename field, goes to its directory and selects the bare name, so that typing
    /// replaces it. A name without "/" is relative to the present directory. The listing is not narrowed to
    /// it.
    void setFilename(const QString& name);
    /// Adds patterns like "*.exr *.dpx" to the filter box, and lists again with @p doRefresh. The first one
    /// is the filter in force where the box was empty.
    void setFilters(QStringList& filters, bool doRefresh);
    /// While set, the typed name does not narrow the list, and folders are always listed (default: off).
    void setFilterBlock(bool block) { filterBlock = block; }

    /// What was chosen, without duplicates: the text of the filename field, or in a browser for several
    /// selections the selected rows, and the pick list behind it. A sequence is given with its placeholder
    /// and range, "/shots/img.####.exr 1-100". Names that do not exist are given as they were typed.
    QStringList selectedFiles() const;
    /// The paths that were queued with Next and "Add", in that order.
    const QStringList& pickedFiles() const { return pickList; }

    /// Whether several rows can be selected (default: no). Shows the Next button where they can.
    void setMultipleSelections(bool multiple);
    /// What may be chosen (default: files).
    void setSelectionType(SelectionType type) { selectionType = type; }
    /// Whether names of files that do not exist are acceptable (default: no). It is for the FileDialog around
    /// the browser; in a browser of a host's own it has no effect.
    void setMayNotExist(bool may) { mayNotExist = may; }
    /// Shows or hides Next, Open and Cancel together (default: shown, Next only for several selections). What
    /// was set last counts: setMultipleSelections() afterwards decides about Next again.
    void setButtonsVisible(bool visible);
    /// The text of the Open button, "Open" by default.
    void setAcceptButtonText(const QString& text);
    /// What looks like markup is shown as markup.
    void setAcceptButtonTooltip(const QString& text);
    /// Open is disabled in a new browser, and only its host enables it.
    void setAcceptButtonEnabled(bool enabled);
    /// Next is enabled in a new browser.
    void setNextButtonEnabled(bool enabled);

    /// Whether sequences can be collapsed (default: yes). Shows or hides the check boxes for it and rebuilds
    /// the list accordingly; while off, sequence settings are not written.
    void setSequencesEnabled(bool enabled);
    /// What the "sequences" box says.
    SequenceMode getSequenceMode() const;
    /// Lets @p evaluator decide what a sequence is, null for the built-in rules, and rebuilds the list. The
    /// caller keeps ownership; a browser notices when the evaluator is destroyed.
    void setFileSequenceEvaluator(FileSequenceEvaluator* evaluator);

    /// Puts a widget below the browser, shown and hidden with the preview button. It becomes a child and must
    /// have a slot fileSelected(const Halvern::UI::FileInfo&, QDir).
    void setPreviewWidget(QWidget* widget);

    /// Gives the settings of list, sort order and directory a namespace of their own, for all browsers of the
    /// process, and reads them: "render" gives keys like "FileBrowser/render/sortorder". Empty: no effect.
    void buildSettingsNamespace(const QString& ns);
    /// Reads sequence display, sort order and directory from the settings again.
    void updateFromPreferences();

    /// What the browser is for, FaveType bits (default: FaveAll): it shows favourites of these kinds and
    /// those for every browser, and a favourite that the user adds here is of this type to begin with.
    void setFaveType(FaveType type);
    /// Whether the user can choose the kinds of browser that show a favourite (default: yes).
    void setShowChooserTypes(bool show) { showChooserTypes = show; }
    /// Finds folder and icon of every favourite again and shows the list as it is by now; a browser does not
    /// notice by itself what others change.
    void refreshFavorites();

    void removeListDuplicates(QStringList& list) const { list.removeDuplicates(); }

    /// Turns the frame placeholder from the first to the last "#" into a printf token: "img.####.exr" gives
    /// "img.%04d.exr", "img.#.exr" gives "img.%d.exr". Text without "#" is returned as it is.
    static QString replaceHashes(const QString& name);
    /// replaceHashes() where the default sequence mode is Expanded, else @p name.
    static QString normalizeFile(const QString& name);

    /// The colour behind the row under the mouse; black by default. Colours may be set from any thread, but
    /// not while a browser paints.
    static void SetHighlightColor(const QColor& colour);
    static const QColor& GetHightlightColor() { return _highlightColor; }
    /// The colour behind rows that are in the pick list; red by default.
    static void SetQueuedColor(const QColor& colour);
    static const QColor& GetQueuedColor() { return _alreadyQueuedColor; }
    /// Whether a new browser opens where the last one was (default: yes) or in the working directory.
    static void SetUseLastSavedDir(bool use) { _useLastSavedDir = use; }
    static bool GetUseLastSavedDir() { return _useLastSavedDir; }
    /// Whether paths hold placeholders of "#" (Collapsed, the default) or printf tokens (Expanded), in all
    /// browsers from then on; see normalizeFile().
    static void SetDefaultSequenceMode(SequenceMode mode) { _sequenceMode = mode; }
    static SequenceMode GetDefaultSequenceMode() { return _sequenceMode; }
    /// Whether unpadded frame numbers of one width are shown with that width (default: no). For browsers that
    /// are made from then on.
    static void SetAssumeZeroPadding(bool assume) { _assumeZeroPadding = assume; }
    /// What a leading "." stands for in typed folders like "./shots/"; by default the working directory.
    static void SetDefaultPath(const QString& path) { _defaultPath = path; }

    /// The favourites of the process, in the order of the panels; null until something needed it.
    static QList<Favorite>* Favorites();
    /// The file that keeps the persistent favourites, and the name of the product, which is written into it
    /// and names the favourite of the product's folder. Without a path nothing is kept. To be called before
    /// the first browser is made. Later, the list stays as it is until ResetFavorites(), but LoadFavorites()
    /// and SaveFavorites() use the new path at once: saving before the reset, which a browser also does after
    /// the user's changes, replaces that file by the present list.
    static void SetPreferencesPath(const QString& path, const QString& productName);
    /// Folders of the default favourites Home, Root, Current and of the product; the home folder and the
    /// working directory stand in for empty ones. @p persist says whether they are kept in the file. A new
    /// browser sets the product's folder to that of the application. To be called before the first browser
    /// is made.
    static void SetDefaultFavoritePaths(const QString& home, const QString& root, const QString& working,
                                        const QString& productDir, bool persist);
    /// Takes ownership of what turns the paths of favourites into folders, and deletes the one before; null
    /// leaves the paths as they are.
    static void SetFavoriteExpressionEvaluator(FavoriteExpressionEvaluator* evaluator);
    static FavoriteExpressionEvaluator* GetFavoriteExpressionEvaluator();
    /// Once per process: adds the defaults and reads the favourites file, or makes it where it is missing.
    /// The first browser does it too.
    static void InitFavs();
    /// Adds the default favourites; InitFavs() and the resets do it.
    static void InitDefaultFavorites();
    /// Adds what the favourites file holds to the list. Errors are printed to standard error.
    static void LoadFavorites();
    /// Writes the favourites file. If it was read before, what other programs added and removed since stays;
    /// the list does not change. If it was never read, it is replaced by the list as it is. What fails, a full
    /// disk included, is printed to standard error and leaves the old file; so does a file that cannot be
    /// read. The next browser that closes tries again. Other programs that save wait for each other, five
    /// seconds at most.
    static void SaveFavorites();
    /// Adds a favourite; all texts are UTF-8. @p flags are FaveType bits, a negative number stands for its
    /// complement. With @p persist it is kept in the file and takes the place of an earlier one of the same
    /// name and type. It can be opened from the next refreshFavorites() on, and nothing is written before
    /// SaveFavorites().
    static void AddFavoriteDir(std::string name, std::string keyText, std::string path, std::string iconPath,
                               std::string tooltip, int flags, bool persist);
    /// Inserts a copy where it belongs: non-persistent ones first, drives last.
    static void AddFavorite(const Favorite& favorite);
    /// Removes the first favourite of that name, type (0 for any) and persistence; nothing if there is none.
    static void RemoveFavoriteDir(std::string name, int type, bool persistent);
    /// Forgets all favourites and initialises them again from defaults and file.
    static void ResetFavorites();
    /// Forgets the favourites that are not kept, and adds the defaults again.
    static void ResetNonPersistentFavorites();

signals:
    /// A directory was entered, a single row selected, or a path typed. @p info lives until the signal
    /// returns. Who destroys the browser in answer does it with deleteLater().
    void fileSelected(const Halvern::UI::FileInfo& info, QDir dir);
    /// A row was double-clicked; this signal comes first. @p info lives until the signal returns.
    void fileDoubleClick(const Halvern::UI::FileInfo& info);
    void fileDoubleClick();
    /// The preview is about to be shown. It may be destroyed in answer. Who destroys the browser does it with
    /// deleteLater().
    void previewOpening();
    /// The preview was hidden.
    void previewClosed();
    /// Open, or Return in the filename field.
    void accepted();
    /// Cancel.
    void rejected();
    /// Never emitted by the browser itself.
    void textChanged();
    /// The text of the filename field changed. Who destroys the browser in answer does it with deleteLater().
    void filenameTextChanged(QString text);

protected:
    /// Keys of the filename field: Up and Down move in the list, Tab completes.
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Return ends at the filter, and where Open is shown at the filename field, since Open would answer it
    /// once more as the default button of a dialog.
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private slots:
    void onFileInfoAvailable() {}
    void favoriteSelected(QModelIndex current);
    void filterChanged(QString text);
    void navigateUp();
    void navigateBack();
    void navigateForwards();
    void showPreview(bool state);
    void showSequences(bool state);
    void splitIncompleteSequences(bool state);
    void autoComplete(QString text);
    void fileSelectionChanged();
    void fileClicked(QModelIndex index);
    void newFolder();
    void refresh();
    void fileDoubleClicked(QModelIndex index);
    void addFavorite();
    void removeFavorite();
    void editFavorite();
    bool showEditFavoriteDialog(Halvern::UI::Favorite& fav);
    void hoverItem(QModelIndex index);
    void hoverFavorite(QModelIndex index);
    void managerRefreshList();
    void managerFilesUpdated(int start, int end);
    void addItemToQueue();
    void removeItemFromQueue();
    void deleteItem() {}
    void refreshDirectory();
    void fileMenuClosed();
    void sortingChanged(int region, Qt::SortOrder sort);
    virtual void nextClicked();
    virtual void accept();
    virtual void reject();
    void loadDirectorySettings();
    static bool isOnDisk(const QDir& dir);
    void showArrivedAttributes();

private:
    friend class FileDialog;

    void initWidgets();
    static void prepareFavorites();
    void initFavoritesPanel();
    void initFavoritesList();
    void resetFavoritesModel();
    std::optional<Favorite> editableFavorite(int row) const;
    void initFilesList();
    void initNavigationButtons();
    void initOptions();
    void initDialogButtons();
    void initLayout();
    void initAccessibility();
    void sortByKey(int column);
    void clearFilterBlock();
    bool buildRows();
    void buildRowsAfterClick();
    void loadSortOrder();
    void updateNavigationButtons();
    QString typedNamePrefix() const;
    QString getCommonPrefix() const;
    void completeTypedName();
    void _updateSplitSequencesButton();
    QSet<QString> queuedPaths() const;
    void finishQueueing();
    void showQueue();
    QModelIndexList selectedSourceRows() const;

    SelectionType selectionType = SelectionType::Files;
    bool sequencesEnabled = true;
    bool mayNotExist = false;
    bool multipleSelections = false;
    bool buttonsVisible = true;
    bool showChooserTypes = true;
    FavoritesList* favoritesList = nullptr;
    FavoritesModel* favoritesModel = nullptr;
    FavoritesProxy* favoritesProxy = nullptr;
    FaveType faveType = FaveAll;
    QMenu* favoritesMenu = nullptr;
    FilesMenu* filesMenu = nullptr;
    FilesList* filesList = nullptr;
    FilePathEdit* filenameEdit = nullptr;
    QLabel* filterLabel = nullptr;
    QComboBox* filterCombo = nullptr;
    QPushButton* upButton = nullptr;
    QPushButton* backButton = nullptr;
    QPushButton* forwardButton = nullptr;
    QPushButton* newFolderButton = nullptr;
    DisclosureButton* previewButton = nullptr;
    QCheckBox* sequencesCheck = nullptr;
    QCheckBox* splitCheck = nullptr;
    QAction* addCurrentAction = nullptr;
    QAction* editFavoriteAction = nullptr;
    QAction* removeFavoriteAction = nullptr;
    QPushButton* addFavoriteButton = nullptr;
    QPushButton* editFavoriteButton = nullptr;
    QPushButton* removeFavoriteButton = nullptr;
    bool favoritesChanged = false;
    QStringList pickList;
    DirectoryModel* directoryModel = nullptr;
    ProxyModel* proxyModel = nullptr;
    QDir currentDirectory;
    QList<QDir> history;
    int historyIndex = -1;
    bool hasDirectory = false;
    QPointer<QWidget> previewWidget;
    bool filterBlock = false;
    QPushButton* openButton = nullptr;
    QPushButton* nextButton = nullptr;
    QPushButton* cancelButton = nullptr;
    QGridLayout* mainLayout = nullptr;
    // refresh() ran, and no directory was set without it since.
    bool listed = false;
    // Brings attributes that arrived to the list, several batches at a time.
    QTimer* attributesTimer = nullptr;

    static QColor _highlightColor;
    static QColor _alreadyQueuedColor;
    static bool _useLastSavedDir;
    static SequenceMode _sequenceMode;
    static bool _assumeZeroPadding;
    static QString _defaultPath;
    static QString _orderLogicalIndexIdentifier;
    static QString _sortOrderIdentifier;
    static QString _sequencesIdentifier;
    static QString _splitSequencesIdentifier;
    static QString _directoryIdentifier;
    static QString _previewIdentifier;
    static QString _sizeIdentifier;
};

} // namespace Halvern::UI
