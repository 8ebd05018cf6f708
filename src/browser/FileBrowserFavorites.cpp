// The panel of favourites, and the class-wide functions for them, which the store carries out.

#include "browser/FileBrowser.h"

#include "browser/FileBrowserPrivate.h"
#include "favorites/EditFavoriteDialog.h"
#include "favorites/FavoritesList.h"
#include "favorites/FavoritesModel.h"
#include "favorites/FavoritesProxy.h"
#include "favorites/FavoritesStore.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

namespace Halvern::UI {

void FileBrowser::Private::initFavorites()
{
    m_favoritesModel = new FavoritesModel(Favorites(), &s_classWide.highlightColour, q);
    m_favoritesProxy = new FavoritesProxy(m_favoritesModel, q);
    m_favoritesList = new FavoritesList(m_favoritesProxy, q);
    m_favoritesList->setObjectName(QStringLiteral("favoritesList"));
    m_favoritesList->setAccessibleName(tr("Favorites"));

    auto* menu = new QMenu(q);
    menu->setObjectName(QStringLiteral("favoritesMenu"));
    const auto addAction = [this, menu](const char* name, const QString& text, const char* slot) {
        QAction* action = menu->addAction(text, q, slot);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    m_editFavoriteAction = addAction("editFavoriteAction", tr("Edit..."), SLOT(editFavorite()));
    m_removeFavoriteAction = addAction("removeFavoriteAction", tr("Remove"), SLOT(removeFavorite()));
    menu->addSeparator();
    addAction("addCurrentAction", tr("Add Current..."), SLOT(addFavorite()));
    QObject::connect(m_favoritesList, &QWidget::customContextMenuRequested, menu,
                     [this, menu](const QPoint& position) {
                         enableFavoriteEditing();
                         menu->popup(m_favoritesList->viewport()->mapToGlobal(position));
                     });

    QObject::connect(m_favoritesList->selectionModel(),
                     SIGNAL(currentChanged(const QModelIndex&, const QModelIndex&)), q,
                     SLOT(favoriteSelected(QModelIndex)));
    QObject::connect(m_favoritesList, SIGNAL(clickedAgain(QModelIndex)), q,
                     SLOT(favoriteSelected(QModelIndex)));
    QObject::connect(m_favoritesList, SIGNAL(entered(QModelIndex)), q, SLOT(hoverFavorite(QModelIndex)));
}

void FileBrowser::setFaveType(FaveType type)
{
    d->m_faveType = type;
    const QModelIndex current = d->m_favoritesList->currentIndex();
    // Else the view would take its neighbour for the current one, and the browser would go there.
    if (current.isValid() && !d->m_favoritesModel->shown(d->m_favoritesProxy->sourceRow(current)).isFor(type))
        d->m_favoritesList->setCurrentIndex(QModelIndex());
    d->m_favoritesProxy->setFaveType(type);
}

void FileBrowser::refreshFavorites()
{
    FavoritesStore::instance().resolveAll();
    d->resetFavoritesModel();
}

void FileBrowser::Private::resetFavoritesModel()
{
    m_favoritesModel->resetModel();
    // A reset takes the current row away without announcing it.
    q->favoriteSelected(QModelIndex());
}

void FileBrowser::favoriteSelected(QModelIndex current)
{
    d->enableFavoriteEditing();
    const int row = d->m_favoritesProxy->sourceRow(current);
    if (row < 0)
        return;
    // What the row shows, though another browser may have changed it since.
    const Favorite shown = d->m_favoritesModel->shown(row);
    if (shown.hasFolder())
        setDirectory(shown.dir, false, true);
}

void FileBrowser::hoverFavorite(QModelIndex index)
{
    d->m_favoritesModel->hover(d->m_favoritesProxy->sourceRow(index));
}

void FileBrowser::addFavorite()
{
    Favorite favorite(false, true);
    favorite.path = d->m_directory.absolutePath();
    favorite.name = QDir(favorite.path).dirName();
    favorite.type = d->m_faveType;
    if (!showEditFavoriteDialog(favorite))
        return;
    FavoritesStore& store = FavoritesStore::instance();
    store.resolve(favorite);
    store.add(favorite);
    d->resetFavoritesModel();
    d->m_favoritesChanged = true;
}

int FileBrowser::Private::currentFavorite() const
{
    return m_favoritesProxy->sourceRow(m_favoritesList->currentIndex());
}

// A copy of the current favourite, if the user may change it.
std::optional<Favorite> FileBrowser::Private::editableFavorite() const
{
    const Favorite* favorite = m_favoritesModel->favorite(currentFavorite());
    return favorite && favorite->isEditable() ? std::optional<Favorite>(*favorite) : std::nullopt;
}

void FileBrowser::Private::enableFavoriteEditing()
{
    const bool editable = editableFavorite().has_value();
    m_controls.editFavoriteButton->setEnabled(editable);
    m_controls.removeFavoriteButton->setEnabled(editable);
    m_editFavoriteAction->setEnabled(editable);
    m_removeFavoriteAction->setEnabled(editable);
}

// While a dialog is open its host may change the favourites: what was asked about is looked up again.

void FileBrowser::editFavorite()
{
    const int row = d->currentFavorite();
    const std::optional<Favorite> before = d->editableFavorite();
    if (!before)
        return;
    Favorite edited = *before;
    if (!showEditFavoriteDialog(edited))
        return;
    // The host's evaluator may change the list.
    FavoritesStore::instance().resolve(edited);
    const int position = d->m_favoritesModel->positionInList(*before, row);
    if (position < 0)
        return;
    Favorites()->replace(position, edited);
    d->resetFavoritesModel();
    d->m_favoritesChanged = true;
}

void FileBrowser::removeFavorite()
{
    const int row = d->currentFavorite();
    const std::optional<Favorite> before = d->editableFavorite();
    if (!before)
        return;
    const QPointer<QMessageBox> box = new QMessageBox(
        QMessageBox::Information, tr("Remove Favorite"),
        tr("Do you want to remove the folder '") + before->name + tr("' from the list of favorite folders?"),
        QMessageBox::Yes | QMessageBox::No, this);
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::Yes);
    const bool confirmed = box->exec() == QMessageBox::Yes;
    // The host may have closed the browser in the meantime, and the box with it.
    if (!box)
        return;
    delete box;
    const int position = confirmed ? d->m_favoritesModel->positionInList(*before, row) : -1;
    if (position < 0)
        return;
    Favorites()->removeAt(position);
    d->resetFavoritesModel();
    d->m_favoritesChanged = true;
}

bool FileBrowser::showEditFavoriteDialog(Favorite& fav)
{
    const QPointer<EditFavoriteDialog> dialog = new EditFavoriteDialog(this, fav);
    dialog->setShowChooserTypes(d->m_showChooserTypes);
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
