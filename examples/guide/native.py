import sys

from PyQt5.QtCore import QDir
from PyQt5.QtWidgets import QApplication, QPushButton

import _HvMirefoldCoreUI

FileBrowser = _HvMirefoldCoreUI.Halvern.UI.FileBrowser

application = QApplication(sys.argv)
browser = FileBrowser()
browser.setSequencesEnabled(True)
browser.setDirectory(QDir.current())
openButton = browser.findChild(QPushButton, "openButton")
assert isinstance(openButton, QPushButton)
openButton.setEnabled(True)
openButton.clicked.connect(lambda: print(browser.selectedFiles()))
browser.show()
sys.exit(application.exec())
