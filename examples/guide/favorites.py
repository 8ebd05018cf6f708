import tempfile
from pathlib import Path

from PyQt5.QtWidgets import QApplication

from HvMirefoldCoreUI import FileBrowser

application = QApplication([])
with tempfile.TemporaryDirectory() as folder:
    preferences = Path(folder) / "favorites"
    FileBrowser.SetPreferencesPath(preferences, "Comp")
    FileBrowser.SetDefaultFavoritePaths("", "/", "", "/opt/comp")
    FileBrowser.AddFavoriteDir("plates", "", "/shows/x/plates", ttip="Scans of today")
    FileBrowser.AddFavoriteDir("scratch", "", "/tmp", persistent=False)  # for this session only
    FileBrowser.AddFavoriteDir("old", "", "/shows/old")
    FileBrowser.RemoveFavoriteDir("old")
    FileBrowser.SaveFavorites()
    print(preferences.read_text())
