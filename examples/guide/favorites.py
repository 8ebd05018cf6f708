import os
import tempfile

from PyQt5.QtWidgets import QApplication, QListView

import _HvMirefoldCoreUI

FileBrowser = _HvMirefoldCoreUI.Halvern.UI.FileBrowser

application = QApplication([])
path = os.path.join(tempfile.mkdtemp(), "favorites")
FileBrowser.SetPreferencesPath(path, "Comp")
FileBrowser.SetDefaultFavoritePaths("", "/", "", "/opt/comp")
browser = FileBrowser()
# Kept in the file.
FileBrowser.AddFavoriteDir("plates", "", "/shows/x/plates", ttip="Scans of today")
# For this session only.
FileBrowser.AddFavoriteDir("scratch", "", "/tmp", persistent=False)
FileBrowser.AddFavoriteDir("old", "", "/shows/old")
FileBrowser.RemoveFavoriteDir("old")
browser.refreshFavorites()
view = browser.findChild(QListView, "favoritesList")
assert isinstance(view, QListView)
print([view.model().index(row, 0).data() for row in range(view.model().rowCount())])
