#pragma once

#include "favorites/CachedFileIconProvider.h"
#include "favorites/Favorite.h"

#include <QList>
#include <memory>
#include <string>

namespace Halvern::UI {

/// The ordered list of favourites and the file that keeps the persistent ones. All browsers of a process
/// share instance(). The order is that of Favorite::favoriteRank(), and among equals that of insertion.
///
/// Nothing is written unasked but the file of a user who has none yet, in initialize(). Errors of reading and
/// writing are printed to standard error. GUI thread only.
class FavoritesStore
{
public:
    FavoritesStore() = default;
    FavoritesStore(const FavoritesStore&) = delete;
    FavoritesStore& operator=(const FavoritesStore&) = delete;

    /// The one that browsers show. It is never destroyed.
    static FavoritesStore& instance();

    /// The list, owned by the store; null until something needed it.
    QList<Favorite>* favorites() { return list.get(); }

    /// The file, an empty path for none, and the product that is named in it and in the favourite of its
    /// folder. The list stays as it is until the store is initialised or reset, but load() and save() use the
    /// new path at once.
    void setPreferences(const QString& path, const QString& product);
    /// Folders of the default favourites. The home and the working folder of the process stand in for an
    /// empty @p home and @p working, and such favourites are never persistent the first time they are added;
    /// the others are left out while empty. @p persist says whether the defaults are kept in the file.
    void setDefaultFolders(const QString& home, const QString& root, const QString& working,
                           const QString& product, bool persist);
    void setProductFolder(const QString& path) { productFolder = path; }
    /// Takes ownership and deletes the one before; null for none, which leaves paths as they are.
    void setEvaluator(FavoriteExpressionEvaluator* newEvaluator);
    FavoriteExpressionEvaluator* evaluator() const { return expressionEvaluator.get(); }

    /// Once: adds the defaults and reads the file, or writes it where there is none. Where the defaults
    /// persist and there is a file, they come from it.
    void initialize();
    void addDefaults();
    /// Appends what the file holds, duplicates included, and resolves it.
    void load();
    /// Writes the file anew, as Base::replaceFile() does. Refuses while the file is there and load() could
    /// not read it, so that what it holds is not lost.
    void save();

    /// Adds a favourite that is not a drive; texts are UTF-8. A persistent one takes the place and the values
    /// of the first persistent one of equal name and type. A negative @p flags stands for its complement. The
    /// favourite is not resolved.
    void addFolder(const std::string& name, const std::string& keyText, const std::string& path,
                   const std::string& iconPath, const std::string& tooltip, int flags, bool persist);
    /// Inserts a copy where it belongs, duplicate or not.
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
    QList<Favorite>& ensureList();
    int insertionPoint(int rank) const;
    QIcon findIcon(const Favorite& favorite);

    std::unique_ptr<QList<Favorite>> list;
    std::unique_ptr<FavoriteExpressionEvaluator> expressionEvaluator;
    CachedFileIconProvider iconProvider;
    bool initialized = false;
    QString preferencesPath;
    QString productName;
    QString homeFolder;
    QString rootFolder = QStringLiteral("/");
    QString workingFolder;
    QString productFolder;
    bool defaultsPersist = false;
    QString unreadPath;  // what load() read last, and
    int unreadError = 0; // why it could not
};

} // namespace Halvern::UI
