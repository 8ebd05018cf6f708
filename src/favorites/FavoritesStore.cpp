#include "favorites/FavoritesStore.h"

#include "base/FileContents.h"
#include "favorites/FavoritesFile.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTextStream>
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Halvern::UI {

namespace {

void printError(const char* format, const QString& path, int error)
{
    std::fprintf(stderr, format, QFile::encodeName(path).constData(), std::strerror(error));
}

bool hasName(const Favorite& favorite, const std::string& name)
{
    return favorite.name.toUtf8().toStdString() == name;
}

} // namespace

FavoritesStore& FavoritesStore::instance()
{
    // Icons must not be destroyed when the application is already gone.
    static auto* const store = new FavoritesStore;
    return *store;
}

void FavoritesStore::setPreferences(const QString& path, const QString& product)
{
    preferencesPath = path;
    productName = product;
}

void FavoritesStore::setDefaultFolders(const QString& home, const QString& root, const QString& working,
                                       const QString& product, bool persist)
{
    homeFolder = home;
    rootFolder = root;
    workingFolder = working;
    productFolder = product;
    defaultsPersist = persist;
}

void FavoritesStore::setEvaluator(FavoriteExpressionEvaluator* newEvaluator)
{
    if (newEvaluator != expressionEvaluator.get())
        expressionEvaluator.reset(newEvaluator);
}

QList<Favorite>& FavoritesStore::ensureList()
{
    if (!list)
        list = std::make_unique<QList<Favorite>>();
    return *list;
}

void FavoritesStore::initialize()
{
    if (initialized)
        return;
    ensureList();
    if (!expressionEvaluator)
        expressionEvaluator = std::make_unique<FavoriteExpressionEvaluator>();
    // What follows initialises again.
    initialized = true;
    if (!QFile::exists(preferencesPath)) {
        addDefaults();
        save();
        return;
    }
    if (!defaultsPersist)
        addDefaults();
    load();
}

void FavoritesStore::addDefaults()
{
    const auto addDefault = [this](const char* name, const char* keyText, const QString& path,
                                   const char* iconPath, bool persist) {
        if (!path.isEmpty())
            addFolder(name, keyText, path.toStdString(), iconPath, std::string(), FaveAll, persist);
    };
    const auto orFallback = [this](QString& folder, const QString& fallback) {
        const bool given = !folder.isEmpty();
        if (!given)
            folder = fallback;
        return given && defaultsPersist;
    };
    const bool homePersists = orFallback(homeFolder, QDir::homePath());
    addDefault("Home", "^~", homeFolder, "home_dir", homePersists);
    addDefault("Root", "^/", rootFolder, "root_dir", defaultsPersist);
    const bool workingPersists = orFallback(workingFolder, QDir::currentPath());
    addDefault("Current", "^.", workingFolder, "", workingPersists);
    if (!productName.isEmpty())
        addDefault(productName.toUtf8().constData(), "", productFolder, "icon16", defaultsPersist);
}

void FavoritesStore::load()
{
    if (preferencesPath.isEmpty())
        return;
    std::string text;
    const int error = Base::readFile(QFile::encodeName(preferencesPath).toStdString(), text);
    unreadPath = preferencesPath;
    unreadError = QFile::exists(preferencesPath) ? error : 0;
    if (unreadError != 0)
        printError("Can't read %s: %s\n", preferencesPath, error);
    if (error != 0)
        return;
    QList<Favorite> loaded = FavoritesFile::parse(text);
    for (Favorite& favorite : loaded)
        resolve(favorite);
    // All have one rank, so each belongs behind the one before.
    QList<Favorite>& favoriteList = ensureList();
    int position = insertionPoint(Favorite(false, true).favoriteRank());
    for (const Favorite& favorite : qAsConst(loaded))
        favoriteList.insert(position++, favorite);
}

void FavoritesStore::save()
{
    if (preferencesPath.isEmpty()) {
        std::fputs("FileBrowser, Can't write favorites: No preferences path.\n", stderr);
        return;
    }
    QByteArray bytes;
    {
        QTextStream stream(&bytes);
        stream << FavoritesFile::format(ensureList(), productName);
    }
    // A file that could not be read holds favourites that are not in the list.
    const bool unread = unreadError != 0 && unreadPath == preferencesPath && QFile::exists(preferencesPath);
    const int error =
        unread ? unreadError
               : Base::replaceFile(QFile::encodeName(preferencesPath).toStdString(), bytes.toStdString());
    if (error != 0)
        printError("Can't write %s: %s\n", preferencesPath, error);
}

void FavoritesStore::addFolder(const std::string& name, const std::string& keyText, const std::string& path,
                               const std::string& iconPath, const std::string& tooltip, int flags,
                               bool persist)
{
    initialize();
    Favorite favorite(false, persist);
    favorite.name = QString::fromStdString(name);
    favorite.keyText = QString::fromStdString(keyText);
    favorite.path = QString::fromStdString(path);
    favorite.iconPath = QString::fromStdString(iconPath);
    favorite.tooltip = QString::fromStdString(tooltip);
    favorite.requestedFlags = flags;
    favorite.type = flags >= 0 ? flags : ~flags;
    if (persist) {
        const auto same = std::find_if(list->begin(), list->end(), [&](const Favorite& other) {
            return other.persistent && other.type == favorite.type && hasName(other, name);
        });
        if (same != list->end()) {
            *same = favorite;
            return;
        }
    }
    add(favorite);
}

int FavoritesStore::insertionPoint(int rank) const
{
    const auto behind = std::find_if(list->cbegin(), list->cend(), [rank](const Favorite& favorite) {
        return favorite.favoriteRank() > rank;
    });
    return static_cast<int>(behind - list->cbegin());
}

void FavoritesStore::add(const Favorite& favorite)
{
    ensureList().insert(insertionPoint(favorite.favoriteRank()), favorite);
}

void FavoritesStore::removeFolder(const std::string& name, int type, bool persistent)
{
    initialize();
    const auto found = std::find_if(list->begin(), list->end(), [&](const Favorite& favorite) {
        return favorite.persistent == persistent && (type == FaveAll || favorite.type == type) &&
               hasName(favorite, name);
    });
    if (found != list->end())
        list->erase(found);
}

void FavoritesStore::reset()
{
    if (initialized) {
        initialized = false;
        list->clear();
    }
    initialize();
}

void FavoritesStore::resetNonPersistent()
{
    initialize();
    const auto isTransient = [](const Favorite& favorite) {
        return !favorite.persistent && !favorite.isDrive;
    };
    list->erase(std::remove_if(list->begin(), list->end(), isTransient), list->end());
    addDefaults();
}

void FavoritesStore::resolve(Favorite& favorite)
{
    const QString folder = expressionEvaluator ? expressionEvaluator->evaluate(favorite) : favorite.path;
    favorite.dir = QDir(folder);
    favorite.resolved = !folder.isEmpty();
    favorite.icon = findIcon(favorite);
    if (favorite.icon.isNull())
        favorite.icon = iconProvider.genericFolderIcon();
}

QIcon FavoritesStore::findIcon(const Favorite& favorite)
{
    if (favorite.isDrive)
        return iconProvider.driveIcon();
    const bool mayHaveIcons = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    // Asking whether it is a file keeps pipes, whose readers wait, from being opened.
    if (mayHaveIcons && !favorite.iconPath.isEmpty() && QFileInfo(favorite.iconPath).isFile())
        return QIcon(favorite.iconPath);
    return iconProvider.folderIcon(favorite.dir.absolutePath());
}

void FavoritesStore::resolveAll()
{
    for (int i = 0, count = ensureList().size(); i < count; ++i) {
        // The host's evaluator may change the list.
        Favorite favorite = list->value(i);
        resolve(favorite);
        if (i < list->size() && list->at(i).isSame(favorite))
            list->replace(i, favorite);
    }
}

} // namespace Halvern::UI
