#pragma once

#include "base/Export.h"
#include "favorites/Favorite.h"

#include <QColor>
#include <QDir>
#include <QModelIndex>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <string>

namespace Halvern::UI {

class FileInfo;
class FileSequenceEvaluator;

/// A file browser for production work on image sequences: navigation buttons above, a panel for favourites on
/// the left, the list of files with sequences collapsed, a filename field, options, and the buttons Next,
/// Open and Cancel below. A host embeds it, reacts to accepted() and rejected(), and reads selectedFiles().
///
/// GUI thread only; files are listed on a worker thread of its own. Its controls are found by objectName,
/// which is the name of their field. Default folders, colours and settings keys are class-wide: every browser
/// of the process shares them. Nothing throws; a directory that does not exist is ignored. A slot of any of
/// its signals, or an evaluator, that destroys the browser does it with deleteLater(), never at once.
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

    /// Reads the stored settings and sets the stored directory, or the working directory; the files are
    /// listed when the browser is first shown, if nothing asked for them before. @p parent owns it.
    explicit FileBrowser(QWidget* parent = nullptr);
    /// Writes the favourites file if the user added, edited or removed favourites in this browser, or if an
    /// earlier attempt failed, and stores the directory and the preview state.
    ~FileBrowser() override;

    /// Goes to @p dir: enters it into the history and sets the buttons. Unless @p keepFilename, its path is
    /// placed in the filename field and fileSelected() emitted for it. @p doRefresh lists it (default of the
    /// bindings: true). Nothing happens if @p dir does not exist, or is the present one and listed.
    void setDirectory(QDir dir, bool keepFilename, bool doRefresh);
    QDir directory() const;
    /// Places a path in the filename field, goes to its directory and selects the bare name, so that typing
    /// replaces it; the listing is not narrowed to it. Without "/" it is relative to the present directory.
    /// In another directory its row is selected as by refresh(); in the present one selected rows stay.
    void setFilename(const QString& name);
    /// Adds patterns like "*.exr *.dpx" to the filter box, and lists again with @p doRefresh. The first one
    /// is the filter in force if the box was empty.
    void setFilters(QStringList& filters, bool doRefresh);
    /// While set, the typed name does not narrow the list, and folders are always listed (default: off).
    void setFilterBlock(bool block);
    /// Empties the filter in force; the text of the filter box stays.
    void resetFileFilter();

    /// What was chosen, without duplicates: the text of the filename field, or in a browser for several
    /// selections the selected rows, and the pick list behind it. A sequence is given with its placeholder
    /// and range, "/shots/img.####.exr 1-100". Names that do not exist are given as they were typed.
    QStringList selectedFiles() const;
    /// The paths that were queued with Next and "Add", in that order.
    const QStringList& pickedFiles() const;
    /// Which buttons a FileDialog enables: both, if what is selected, or without a selection the typed
    /// folder, is of the selection type; Open alone for a single choice, or if setMayNotExist() or the pick
    /// list allow it; none while selected rows are read again. Asks the disk for unknown names only.
    enum class Acceptance
    {
        None,
        Open,
        OpenAndNext
    };
    Acceptance acceptance() const;

    /// Whether several rows can be selected (default: no). Shows the Next button if they can.
    void setMultipleSelections(bool multiple);
    /// What may be chosen (default: files).
    void setSelectionType(SelectionType type);
    /// Whether names of files that do not exist are acceptable (default: no), see acceptance(). A typed name
    /// that differs from a listed one in case only then stays.
    void setMayNotExist(bool may);
    /// Shows or hides Next, Open and Cancel together (default: shown, Next only for several selections). What
    /// was set last counts: setMultipleSelections() afterwards decides about Next again.
    void setButtonsVisible(bool visible);
    /// The text of the Open button, "Open" by default.
    void setAcceptButtonText(const QString& text);
    void setAcceptButtonTooltip(const QString& text);
    /// Open is disabled in a new browser, and only its host enables it. Next is enabled.
    void setAcceptButtonEnabled(bool enabled);
    void setNextButtonEnabled(bool enabled);

    /// Whether sequences can be collapsed (default: yes). Shows or hides the check boxes for it and rebuilds
    /// the list accordingly; while off, sequence settings are not written.
    void setSequencesEnabled(bool enabled);
    /// What the "sequences" box says.
    SequenceMode getSequenceMode() const;
    /// Lets @p evaluator decide what a sequence is, null for the built-in rules, and rebuilds the list. The
    /// caller keeps ownership; a browser notices when the evaluator is destroyed.
    void setFileSequenceEvaluator(FileSequenceEvaluator* evaluator);
    /// Whether changes in the folder appear by themselves while the browser can be seen (default: no). Rows
    /// change in place. Local changes appear within a second or two, those on a file server within 2 to 30.
    void setWatched(bool watched);
    bool isWatched() const;

    /// Puts a child below the browser, shown and hidden with the preview button. It must have a slot
    /// fileSelected(const Halvern::UI::FileInfo&, QDir).
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
    void setShowChooserTypes(bool show);
    /// Finds folder and icon of every favourite again and shows the list as it is now.
    void refreshFavorites();

    void removeListDuplicates(QStringList& list) const { list.removeDuplicates(); }
    /// Turns the frame placeholder from the first to the last "#" into a printf token: "img.####.exr" gives
    /// "img.%04d.exr", "img.#.exr" gives "img.%d.exr". Text without "#" is returned as it is.
    static QString replaceHashes(const QString& name);
    /// replaceHashes() if the default sequence mode is Expanded, else @p name.
    static QString normalizeFile(const QString& name);

    /// The colour behind the row under the mouse; black by default. Not to be set while a browser paints.
    static void SetHighlightColor(const QColor& colour);
    static const QColor& GetHightlightColor();
    /// The colour behind rows that are in the pick list; red by default.
    static void SetQueuedColor(const QColor& colour);
    static const QColor& GetQueuedColor();
    /// Whether a new browser opens where the last one was (default: yes) or in the working directory.
    static void SetUseLastSavedDir(bool use);
    static bool GetUseLastSavedDir();
    /// Whether paths hold placeholders of "#" (Collapsed, the default) or printf tokens (Expanded).
    static void SetDefaultSequenceMode(SequenceMode mode);
    static SequenceMode GetDefaultSequenceMode();
    /// Whether new browsers show unpadded frame numbers of one width with that width (default: no).
    static void SetAssumeZeroPadding(bool assume);
    static bool GetAssumeZeroPadding();
    /// What a leading "." stands for in typed folders like "./shots/"; by default the working directory.
    static void SetDefaultPath(const QString& path);

    /// The favourites of the process, in the order of the panels; null until something needed it.
    static QList<Favorite>* Favorites();
    /// The file of the persistent favourites (empty: none), and the product's name for its header and for the
    /// favourite of its folder. Called before the first browser is made; later, loads and saves use it.
    static void SetPreferencesPath(const QString& path, const QString& productName);
    /// Folders of the default favourites Home, Root, Current and of the product; the home folder and the
    /// working directory stand in for empty ones. @p persist says whether they are kept in the file. A new
    /// browser sets the product's folder to that of the application. To be called before the first one.
    static void SetDefaultFavoritePaths(const QString& home, const QString& root, const QString& working,
                                        const QString& productDir, bool persist);
    /// Takes ownership of what turns paths of favourites into folders, and deletes the one before.
    static void SetFavoriteExpressionEvaluator(FavoriteExpressionEvaluator* evaluator);
    static FavoriteExpressionEvaluator* GetFavoriteExpressionEvaluator();
    /// Once per process, also by the first browser: adds the defaults and reads or makes the favourites file.
    static void InitFavs();
    /// Adds the default favourites; InitFavs() and the resets do it.
    static void InitDefaultFavorites();
    /// Adds what the favourites file holds to the list. Errors are printed to standard error.
    static void LoadFavorites();
    /// Writes the favourites file. If it was read before, what other programs changed since stays; if not, it
    /// is replaced. Failures are printed to standard error and leave the old file, and the next browser that
    /// closes tries again. Programs that save wait for each other, five seconds at most.
    static void SaveFavorites();
    /// Adds a favourite; all texts are UTF-8. @p flags are FaveType bits, a negative number stands for its
    /// complement. With @p persist it is kept in the file and takes the place of an earlier one of the same
    /// name and type. refreshFavorites() makes it a folder that can be opened, SaveFavorites() writes it.
    static void AddFavoriteDir(std::string name, std::string keyText, std::string path, std::string iconPath,
                               std::string tooltip, int flags, bool persist);
    /// Inserts a copy where it belongs: non-persistent ones first, drives last.
    static void AddFavorite(const Favorite& favorite);
    /// Removes the first favourite of that name, type (0 for any) and persistence, if there is one.
    static void RemoveFavoriteDir(std::string name, int type, bool persistent);
    /// Forgets all favourites and initialises them again from defaults and file.
    static void ResetFavorites();
    /// Forgets the favourites that are not kept, and adds the defaults again.
    static void ResetNonPersistentFavorites();

public slots:
    /// Applies the filename field and the filter to the list again, and clears the selection. The row whose
    /// path the field holds is then selected; while the folder is read, as soon as it is listed.
    void refresh();

signals:
    /// A directory was entered, a row selected or a path typed, or the selected sequence has another range.
    /// @p info lives until the signal returns.
    void fileSelected(const Halvern::UI::FileInfo& info, QDir dir);
    /// A row was double-clicked; this signal comes first. @p info lives until the signal returns.
    void fileDoubleClick(const Halvern::UI::FileInfo& info);
    void fileDoubleClick();
    void previewOpening(); ///< The preview is about to be shown. It may be destroyed in answer.
    void previewClosed();  ///< The preview was hidden.
    void accepted();       ///< Open, or Return in the filename field.
    void rejected();       ///< Cancel.
    void textChanged();    ///< Never emitted by the browser itself.
    void filenameTextChanged(QString text);
    /// The selection, the rows, the pick list or what may be chosen changed: acceptance() may have too.
    void choiceChanged();

protected:
    /// Keys of the filename field: Up and Down move in the list, Tab completes.
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Return ends at the filter, and at the filename field if Open is shown, which would answer it again.
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

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Halvern::UI
