// The panel of favourites, and the class-wide functions for them, which the store carries out.

#include "browser/FileBrowser.h"

#include "favorites/EditFavoriteDialog.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "favorites/FavoritesStore.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace Halvern::UI {

void FileBrowser::prepareFavorites()
{
    FavoritesStore& store = FavoritesStore::instance();
    store.setProductFolder(QCoreApplication::applicationDirPath());
    store.initialize();
    store.resolveAll();
}

void FileBrowser::initFavoritesList()
{
    favoritesModel = new FavoritesModel(Favorites(), &_highlightColor, this);
    favoritesProxy = new FavoritesProxy(favoritesModel, this);
    favoritesList = new FavoritesList(favoritesProxy, this);
    favoritesList->setObjectName(QStringLiteral("favoritesList"));

    favoritesMenu = new QMenu(this);
    favoritesMenu->setObjectName(QStringLiteral("favoritesMenu"));
    const auto addAction = [this](const char* name, const QString& text, const char* slot) {
        QAction* action = favoritesMenu->addAction(text, this, slot);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    editFavoriteAction = addAction("editFavoriteAction", tr("Edit..."), SLOT(editFavorite()));
    removeFavoriteAction = addAction("removeFavoriteAction", tr("Remove"), SLOT(removeFavorite()));
    favoritesMenu->addSeparator();
    addCurrentAction = addAction("addCurrentAction", tr("Add Current..."), SLOT(addFavorite()));
    favoritesList->setMenu(favoritesMenu, editFavoriteAction, removeFavoriteAction);

    connect(favoritesList->selectionModel(), SIGNAL(currentChanged(const QModelIndex&, const QModelIndex&)),
            this, SLOT(favoriteSelected(QModelIndex)));
    connect(favoritesList, SIGNAL(clickedAgain(QModelIndex)), this, SLOT(favoriteSelected(QModelIndex)));
    connect(favoritesList, SIGNAL(entered(QModelIndex)), this, SLOT(hoverFavorite(QModelIndex)));
}

void FileBrowser::setFaveType(FaveType type)
{
    faveType = type;
    const QModelIndex current = favoritesList->currentIndex();
    // Else the view would take its neighbour for the current one, and the browser would go there.
    if (current.isValid() && !favoritesModel->shown(favoritesProxy->sourceRow(current)).isFor(type))
        favoritesList->setCurrentIndex(QModelIndex());
    favoritesProxy->setFaveType(type);
}

void FileBrowser::refreshFavorites()
{
    FavoritesStore::instance().resolveAll();
    resetFavoritesModel();
}

void FileBrowser::resetFavoritesModel()
{
    favoritesModel->resetModel();
    // A reset takes the current row away without announcing it.
    favoriteSelected(QModelIndex());
}

void FileBrowser::favoriteSelected(QModelIndex current)
{
    const Favorite* favorite = favoritesProxy->favorite(current);
    const bool editable = favorite && favorite->isEditable();
    editFavoriteButton->setEnabled(editable);
    removeFavoriteButton->setEnabled(editable);
    const int row = favoritesProxy->sourceRow(current);
    if (row < 0)
        return;
    // What the row shows, though another browser may have changed it since.
    const Favorite shown = favoritesModel->shown(row);
    if (shown.hasFolder())
        setDirectory(shown.dir, false, true);
}

void FileBrowser::hoverFavorite(QModelIndex index)
{
    favoritesModel->hover(favoritesProxy->sourceRow(index));
}

void FileBrowser::addFavorite()
{
    Favorite favorite(false, true);
    favorite.path = currentDirectory.absolutePath();
    favorite.name = QDir(favorite.path).dirName();
    favorite.type = faveType;
    if (!showEditFavoriteDialog(favorite))
        return;
    FavoritesStore& store = FavoritesStore::instance();
    store.resolve(favorite);
    store.add(favorite);
    resetFavoritesModel();
    favoritesChanged = true;
}

// A copy of the favourite in a row, if the user may change it.
std::optional<Favorite> FileBrowser::editableFavorite(int row) const
{
    const Favorite* favorite = favoritesModel->favorite(row);
    return favorite && favorite->isEditable() ? std::optional<Favorite>(*favorite) : std::nullopt;
}

// While a dialog is open its host may change the favourites: what was asked about is looked up again.

void FileBrowser::editFavorite()
{
    const int row = favoritesProxy->sourceRow(favoritesList->currentIndex());
    const std::optional<Favorite> before = editableFavorite(row);
    if (!before)
        return;
    Favorite edited = *before;
    if (!showEditFavoriteDialog(edited))
        return;
    // The host's evaluator may change the list.
    FavoritesStore::instance().resolve(edited);
    const int position = favoritesModel->positionInList(*before, row);
    if (position < 0)
        return;
    Favorites()->replace(position, edited);
    resetFavoritesModel();
    favoritesChanged = true;
}

void FileBrowser::removeFavorite()
{
    const int row = favoritesProxy->sourceRow(favoritesList->currentIndex());
    const std::optional<Favorite> before = editableFavorite(row);
    if (!before)
        return;
    const QPointer<QMessageBox> box = new QMessageBox(
        QMessageBox::Information, tr("Remove Favorite"),
        tr("Do you want to remove the folder '") + before->name + tr("' from the list of favorite folders?"),
        QMessageBox::Yes | QMessageBox::No, this);
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::Yes);
    const bool confirmed = box->exec() == QMessageBox::Yes;
    // It is gone with the browser where the host closed that in the meantime.
    if (!box)
        return;
    delete box;
    const int position = confirmed ? favoritesModel->positionInList(*before, row) : -1;
    if (position < 0)
        return;
    Favorites()->removeAt(position);
    resetFavoritesModel();
    favoritesChanged = true;
}

bool FileBrowser::showEditFavoriteDialog(Favorite& fav)
{
    const QPointer<EditFavoriteDialog> dialog = new EditFavoriteDialog(this, fav);
    dialog->setShowChooserTypes(showChooserTypes);
    const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
    if (accepted)
        dialog->applyTo(fav);
    delete dialog;
    return accepted;
}

QList<Favorite>* FileBrowser::Favorites()
{
    return FavoritesStore::instance().favorites();
}

void FileBrowser::SetPreferencesPath(const QString& path, const QString& productName)
{
    FavoritesStore::instance().setPreferences(path, productName);
}

void FileBrowser::SetDefaultFavoritePaths(const QString& home, const QString& root, const QString& working,
                                          const QString& productDir, bool persist)
{
    FavoritesStore::instance().setDefaultFolders(home, root, working, productDir, persist);
}

void FileBrowser::SetFavoriteExpressionEvaluator(FavoriteExpressionEvaluator* evaluator)
{
    FavoritesStore::instance().setEvaluator(evaluator);
}

FavoriteExpressionEvaluator* FileBrowser::GetFavoriteExpressionEvaluator()
{
    return FavoritesStore::instance().evaluator();
}

void FileBrowser::InitFavs()
{
    FavoritesStore::instance().initialize();
}

void FileBrowser::InitDefaultFavorites()
{
    FavoritesStore::instance().addDefaults();
}

void FileBrowser::LoadFavorites()
{
    FavoritesStore::instance().load();
}

void FileBrowser::SaveFavorites()
{
    FavoritesStore::instance().save();
}

void FileBrowser::AddFavoriteDir(std::string name, std::string keyText, std::string path,
                                 std::string iconPath, std::string tooltip, int flags, bool persist)
{
    FavoritesStore::instance().addFolder(name, keyText, path, iconPath, tooltip, flags, persist);
}

void FileBrowser::AddFavorite(const Favorite& favorite)
{
    FavoritesStore::instance().add(favorite);
}

void FileBrowser::RemoveFavoriteDir(std::string name, int type, bool persistent)
{
    FavoritesStore::instance().removeFolder(name, type, persistent);
}

void FileBrowser::ResetFavorites()
{
    FavoritesStore::instance().reset();
}

void FileBrowser::ResetNonPersistentFavorites()
{
    FavoritesStore::instance().resetNonPersistent();
}

} // namespace Halvern::UI
