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

    /// The file, an empty path for none, and the product that is named in it and in the favourite of its
    /// folder. The list stays as it is until the store is initialised or reset, but load() and save() use the
    /// new path at once.
    void setPreferences(const QString& path, const QString& product);
    /// Folders of the default favourites. The home and the working folder of the process stand in for an
    /// empty @p home and @p working, and such favourites are never persistent the first time they are added;
    /// the others are left out while empty. @p persist says whether the defaults are kept in the file.
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
    /// Writes the file, as Base::SharedFile::change() does. If it was read before, what other programs
    /// changed since stays (FavoritesFile::merge()), and the list does not change. If it was never read, or
    /// is missing or empty, it is replaced by the list. If load() could not read it, it is tried again
    /// before; what can't be read is not written.
    void save();
    /// Whether the last save() failed, so that the file lacks changes.
    bool isSaveDue() const { return m_saveDue; }

    /// Adds a favourite that is not a drive; texts are UTF-8. A persistent one takes the place and the values
    /// of the first persistent one of equal name and type. A negative @p flags stands for its complement. The
    /// favourite is not resolved.
    void addFolder(const std::string& name, const std::string& keyText, const std::string& path,
                   const std::string& iconPath, const std::string& tooltip, int flags, bool persist);
    /// Inserts a copy at the place of its rank, duplicate or not.
    void add(const Favorite& favorite);
    /// Removes the first favourite of that name that is as persistent as @p persistent says; with a @p type
    /// other than 0 it must have that type. None: nothing happens.
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
