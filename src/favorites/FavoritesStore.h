#pragma once

#include "favorites/CachedFileIconProvider.h"
#include "favorites/Favorite.h"
#include "favorites/FavoritesFile.h"

#include <QList>
#include <memory>
#include <optional>
#include <string>

namespace Halvern::UI {

/// The ordered list of favourites and the file that keeps the persistent ones. All browsers of a process
/// share instance(). The order is that of Favorite::favoriteRank(), and among equals that of insertion.
///
/// Several programs may use one file at the same time: save() joins what they changed. Nothing is written
/// unasked but the file of a user who has none yet, in initialize(). Errors of reading and writing are
/// printed to standard error. GUI thread only.
class FavoritesStore
{
public:
    FavoritesStore() = default;
    FavoritesStore(const FavoritesStore&) = delete;
    FavoritesStore& operator=(const FavoritesStore&) = delete;

    /// The one that browsers show. It is never destroyed.
    static FavoritesStore& instance();

    /// The list, owned by the store; null until something needed it.
    QList<Favorite>* favorites() { return m_list.get(); }

    /// See FileBrowser::SetPreferencesPath(). The list stays as it is.
    void setPreferences(const QString& path, const QString& product);
    /// See FileBrowser::SetDefaultFavoritePaths(). What stands in for an empty @p home or @p working is not
    /// persistent the first time it is added; the others are left out while they are empty.
    void setDefaultFolders(const QString& home, const QString& root, const QString& working,
                           const QString& product, bool persist);
    void setProductFolder(const QString& path) { m_productFolder = path; }
    /// Takes ownership and deletes the one before; null for none, which leaves paths as they are.
    void setEvaluator(FavoriteExpressionEvaluator* newEvaluator);
    FavoriteExpressionEvaluator* evaluator() const { return m_evaluator.get(); }

    /// Once: adds the defaults and reads the file, or writes it if there is none. If the defaults persist and
    /// there is a file, they come from it. A file that could not be read is tried again by each call.
    void initialize();
    /// Adds the defaults; the first time, as a part of initialize().
    void addDefaults();
    /// Appends what the file holds, duplicates included, and resolves it.
    void load();
    /// Writes the file by Base::SharedFile::change(). If it was read before, the list is merged with what it
    /// holds now (FavoritesFile::merge()), unless it is missing or empty. If load() could not read it, it is
    /// tried again before; what can't be read is not written.
    void save();
    /// Whether the last save() failed, so that the file lacks changes.
    bool isSaveDue() const { return m_saveDue; }

    /// See FileBrowser::AddFavoriteDir(). The favourite is not resolved.
    void addFolder(const std::string& name, const std::string& keyText, const std::string& path,
                   const std::string& iconPath, const std::string& tooltip, int flags, bool persist);
    /// Inserts a copy at the place of its rank, duplicate or not.
    void add(const Favorite& favorite);
    /// See FileBrowser::RemoveFavoriteDir().
    void removeFolder(const std::string& name, int type, bool persistent);
    /// Forgets everything and initialises again.
    void reset();
    /// Forgets what is neither persistent nor a drive, and adds the defaults again.
    void resetNonPersistent();

    /// Finds folder and icon. The disk is asked for the icon file, if one is named, and never for the folder.
    void resolve(Favorite& favorite);
    void resolveAll();

private:
    enum class Duplicates
    {
        Allowed,
        LeftOut
    };

    QList<Favorite>& ensureList();
    void ensureInitialized();
    int read(QList<Favorite>& loaded) const;
    void take(int error, QList<Favorite>& loaded, Duplicates duplicates);
    int write();
    QList<Favorite>::iterator findPersistent(const Favorite& favorite);
    void resolve(int first, int count);
    int insertionPoint(int rank) const;

    std::unique_ptr<QList<Favorite>> m_list;
    std::unique_ptr<FavoriteExpressionEvaluator> m_evaluator;
    CachedFileIconProvider m_iconProvider;
    bool m_initialized = false;
    QString m_preferencesPath;
    QString m_productName;
    QString m_homeFolder;
    QString m_rootFolder = QStringLiteral("/");
    QString m_workingFolder;
    QString m_productFolder;
    bool m_defaultsPersist = false;
    std::optional<FavoritesFile::Keys> m_known; // what the list and the file had in common; null: never read
    bool m_readDue = false;                     // reading failed, and what the file holds is not in the list
    bool m_saveDue = false;
};

} // namespace Halvern::UI
