import sys
import tempfile
from pathlib import Path

from PyQt5.QtCore import QDir
from PyQt5.QtWidgets import QApplication, QPushButton

import _HvMirefoldCoreUI

FileBrowser = _HvMirefoldCoreUI.Halvern.UI.FileBrowser

with tempfile.TemporaryDirectory() as folder:
    for name in ("shot.0001.exr", "shot.0002.exr", "shot.0004.exr"):
        (Path(folder) / name).touch()
    application = QApplication(sys.argv)
    browser = FileBrowser()
    browser.setSequencesEnabled(True)
    browser.setDirectory(QDir(folder))
    openButton = browser.findChild(QPushButton, "openButton")
    assert isinstance(openButton, QPushButton)
    openButton.setEnabled(True)
    openButton.clicked.connect(lambda: print(browser.selectedFiles()))
    browser.show()
    sys.exit(application.exec())
