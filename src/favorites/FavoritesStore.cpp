#include "favorites/FavoritesStore.h"

#include "base/SharedFile.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace Halvern::UI {

namespace {

std::string fileName(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

void printError(const char* format, const QString& path, int error)
{
    std::fprintf(stderr, format, fileName(path).c_str(), std::strerror(error));
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
    if (path != m_preferencesPath) {
        m_known.reset();
        m_readDue = m_saveDue = false;
    }
    m_preferencesPath = path;
    m_productName = product;
}

void FavoritesStore::setDefaultFolders(const QString& home, const QString& root, const QString& working,
                                       const QString& product, bool persist)
{
    m_homeFolder = home;
    m_rootFolder = root;
    m_workingFolder = working;
    m_productFolder = product;
    m_defaultsPersist = persist;
}

void FavoritesStore::setEvaluator(FavoriteExpressionEvaluator* newEvaluator)
{
    if (newEvaluator != m_evaluator.get())
        m_evaluator.reset(newEvaluator);
}

QList<Favorite>& FavoritesStore::ensureList()
{
    if (!m_list)
        m_list = std::make_unique<QList<Favorite>>();
    return *m_list;
}

void FavoritesStore::ensureInitialized()
{
    if (!m_initialized)
        initialize();
}

void FavoritesStore::initialize()
{
    if (m_initialized && !m_readDue)
        return;
    ensureList();
    if (!m_evaluator)
        m_evaluator = std::make_unique<FavoriteExpressionEvaluator>();
    // What follows initialises again.
    const bool isFirst = !std::exchange(m_initialized, true);
    QList<Favorite> loaded;
    const int error = read(loaded);
    const bool isMissing = error == ENOENT;
    if (isFirst ? isMissing || !m_defaultsPersist : isMissing && m_defaultsPersist)
        addDefaults();
    take(error, loaded, isFirst ? Duplicates::Allowed : Duplicates::LeftOut);
    if (isMissing)
        save();
    else if (error != 0)
        printError("Can't read %s: %s\n", m_preferencesPath, error);
}

void FavoritesStore::addDefaults()
{
    if (!m_initialized) {
        initialize();
        return;
    }
    const auto addDefault = [this](const char* name, const char* keyText, const QString& path,
                                   const char* iconPath, bool persist) {
        if (!path.isEmpty())
            addFolder(name, keyText, path.toStdString(), iconPath, std::string(), FaveAll, persist);
    };
    const auto orFallback = [this](QString& folder, const QString& fallback) {
        const bool given = !folder.isEmpty();
        if (!given)
            folder = fallback;
        return given && m_defaultsPersist;
    };
    const bool homePersists = orFallback(m_homeFolder, QDir::homePath());
    addDefault("Home", "^~", m_homeFolder, "home_dir", homePersists);
    addDefault("Root", "^/", m_rootFolder, "root_dir", m_defaultsPersist);
    const bool workingPersists = orFallback(m_workingFolder, QDir::currentPath());
    addDefault("Current", "^.", m_workingFolder, "", workingPersists);
    if (!m_productName.isEmpty())
        addDefault(m_productName.toUtf8().constData(), "", m_productFolder, "icon16", m_defaultsPersist);
}

int FavoritesStore::read(QList<Favorite>& loaded) const
{
    if (m_preferencesPath.isEmpty())
        return ENOENT;
    std::string text;
    const int error = Base::SharedFile::read(fileName(m_preferencesPath), text);
    if (error != 0)
        return error;
    if (FavoritesFile::hasOverlongLine(text))
        return EFBIG;
    loaded = FavoritesFile::parse(text);
    return 0;
}

// Adds what read() gave, or notes its error.
void FavoritesStore::take(int error, QList<Favorite>& loaded, Duplicates duplicates)
{
    m_readDue = error != 0 && error != ENOENT;
    if (m_readDue)
        return;
    m_known = FavoritesFile::keys(loaded);
    QList<Favorite>& favorites = ensureList();
    const int rank = Favorite(false, true).favoriteRank();
    int position = insertionPoint(rank);
    if (duplicates == Duplicates::LeftOut) {
        // What was added meanwhile takes the place of what it would have replaced. The rest comes before it.
        loaded.erase(std::remove_if(loaded.begin(), loaded.end(),
                                    [this](const Favorite& favorite) {
                                        return findPersistent(favorite) != m_list->end();
                                    }),
                     loaded.end());
        position = insertionPoint(rank - 1);
    }
    // All have one rank, so each belongs after the one before.
    for (int i = 0; i < loaded.size(); ++i)
        favorites.insert(position + i, loaded.at(i));
    resolve(position, static_cast<int>(loaded.size()));
}

void FavoritesStore::load()
{
    QList<Favorite> loaded;
    const int error = read(loaded);
    take(error, loaded, Duplicates::Allowed);
    if (m_readDue)
        printError("Can't read %s: %s\n", m_preferencesPath, error);
}

void FavoritesStore::save()
{
    if (m_preferencesPath.isEmpty()) {
        std::fputs("FileBrowser, Can't write favorites: No preferences path.\n", stderr);
        return;
    }
    const int error = write();
    m_saveDue = error != 0;
    if (error != 0)
        printError("Can't write %s: %s\n", m_preferencesPath, error);
}

int FavoritesStore::write()
{
    if (m_readDue) {
        QList<Favorite> loaded;
        const int error = read(loaded);
        take(error, loaded, Duplicates::LeftOut);
        if (m_readDue)
            return error;
    }
    const QList<Favorite>& favorites = ensureList();
    const int failure =
        Base::SharedFile::change(fileName(m_preferencesPath), [&](int error, std::string& contents) {
            if (error == 0 && FavoritesFile::hasOverlongLine(contents))
                error = EFBIG;
            if (error != 0 && error != ENOENT)
                return error;
            // An empty file was not written by a program that removed something.
            contents = m_known && !contents.empty()
                           ? FavoritesFile::merge(contents, *m_known, favorites, m_productName)
                           : FavoritesFile::format(favorites, m_productName);
            if (contents.size() > Base::SharedFile::MostBytes)
                return EFBIG;
            return 0;
        });
    if (failure == 0)
        m_known = FavoritesFile::keys(favorites);
    return failure;
}

void FavoritesStore::addFolder(const std::string& name, const std::string& keyText, const std::string& path,
                               const std::string& iconPath, const std::string& tooltip, int flags,
                               bool persist)
{
    ensureInitialized();
    Favorite favorite(false, persist);
    favorite.name = QString::fromStdString(name);
    favorite.keyText = QString::fromStdString(keyText);
    favorite.path = QString::fromStdString(path);
    favorite.iconPath = QString::fromStdString(iconPath);
    favorite.tooltip = QString::fromStdString(tooltip);
    favorite.requestedFlags = flags;
    favorite.type = flags >= 0 ? flags : ~flags;
    if (persist) {
        const auto same = findPersistent(favorite);
        if (same != m_list->end()) {
            *same = favorite;
            return;
        }
    }
    add(favorite);
}

// The first persistent favourite of the same name and type.
QList<Favorite>::iterator FavoritesStore::findPersistent(const Favorite& favorite)
{
    return std::find_if(m_list->begin(), m_list->end(), [&](const Favorite& other) {
        return other.persistent && other.type == favorite.type && other.name == favorite.name;
    });
}

int FavoritesStore::insertionPoint(int rank) const
{
    const auto behind = std::find_if(m_list->cbegin(), m_list->cend(), [rank](const Favorite& favorite) {
        return favorite.favoriteRank() > rank;
    });
    return static_cast<int>(behind - m_list->cbegin());
}

void FavoritesStore::add(const Favorite& favorite)
{
    ensureList().insert(insertionPoint(favorite.favoriteRank()), favorite);
}

void FavoritesStore::removeFolder(const std::string& name, int type, bool persistent)
{
    ensureInitialized();
    const auto found = std::find_if(m_list->begin(), m_list->end(), [&](const Favorite& favorite) {
        return favorite.persistent == persistent && (type == FaveAll || favorite.type == type) &&
               favorite.name.toUtf8().toStdString() == name;
    });
    if (found != m_list->end())
        m_list->erase(found);
}

void FavoritesStore::reset()
{
    if (m_initialized) {
        m_initialized = false;
        m_known.reset();
        m_list->clear();
    }
    initialize();
}

void FavoritesStore::resetNonPersistent()
{
    ensureInitialized();
    const auto isTransient = [](const Favorite& favorite) {
        return !favorite.persistent && !favorite.isDrive;
    };
    m_list->erase(std::remove_if(m_list->begin(), m_list->end(), isTransient), m_list->end());
    addDefaults();
}

void FavoritesStore::resolve(Favorite& favorite)
{
    const QString folder = m_evaluator ? m_evaluator->evaluate(favorite) : favorite.path;
    favorite.dir = QDir(folder);
    favorite.resolved = !folder.isEmpty();
    favorite.icon =
        favorite.isDrive ? m_iconProvider.driveIcon() : CachedFileIconProvider::iconOfFile(favorite.iconPath);
    if (favorite.icon.isNull())
        favorite.icon = m_iconProvider.folderIcon(favorite.dir.absolutePath());
}

void FavoritesStore::resolveAll()
{
    resolve(0, static_cast<int>(ensureList().size()));
}

void FavoritesStore::resolve(int first, int count)
{
    for (int i = first; i < first + count; ++i) {
        // The host's evaluator may change the list, or save it.
        Favorite favorite = m_list->value(i);
        resolve(favorite);
        if (i < m_list->size() && m_list->at(i).isSame(favorite))
            m_list->replace(i, favorite);
    }
}

} // namespace Halvern::UI
