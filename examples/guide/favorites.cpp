#include <QApplication>
#include <QTemporaryDir>
#include <browser/FileBrowser.h>
#include <iostream>

using namespace Halvern::UI;

// Favourites of this host may begin with the name of a show: "%SHOW%/plates".
class ShowPaths : public FavoriteExpressionEvaluator
{
public:
    QString evaluate(const Favorite& favorite) override
    {
        return QString(favorite.path).replace("%SHOW%", qEnvironmentVariable("SHOW", "/tmp"));
    }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    FileBrowser::SetPreferencesPath(folder.filePath("favorites"), "Comp");
    FileBrowser::SetDefaultFavoritePaths("", "/", "", "/opt/comp", false);
    FileBrowser::SetFavoriteExpressionEvaluator(new ShowPaths); // the browsers own it
    FileBrowser::InitFavs();
    // Kept in the file, shown in browsers for images and for sequences.
    FileBrowser::AddFavoriteDir("plates", "", "%SHOW%/plates", "", "Scans of today", FaveImage | FaveSequence,
                                true);
    // For this session only, in every browser.
    FileBrowser::AddFavoriteDir("scratch", "", "/tmp", "", "", FaveAll, false);
    FileBrowser::SaveFavorites();
    for (const Favorite& favorite : *FileBrowser::Favorites())
        std::cout << favorite.name.toStdString() << (favorite.persistent ? " (kept)" : "") << std::endl;
}
