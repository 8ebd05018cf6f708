import sys
import tempfile
from pathlib import Path

from PyQt5.QtCore import Qt
from PyQt5.QtWidgets import QApplication, QDockWidget, QMainWindow

from HvMirefoldCoreUI import Entry, FileBrowser

with tempfile.TemporaryDirectory() as folder:
    for name in ("shot.0001.exr", "shot.0002.exr", "shot.0004.exr"):
        (Path(folder) / name).touch()
    application = QApplication(sys.argv)
    window = QMainWindow()
    dock = QDockWidget("Plates", window)
    browser = FileBrowser(dock)
    dock.setWidget(browser)
    window.addDockWidget(Qt.DockWidgetArea.LeftDockWidgetArea, dock)
    browser.setSequencesEnabled(True)
    browser.setMultipleSelections(True)
    browser.setFilters(["*.exr *.dpx", "*.jpg"], False)
    browser.setAcceptButtonText("Import")
    browser.setAcceptButtonEnabled(True)  # only FileDialog does this by itself
    browser.setDirectory(folder)
    browser.fileSelected.connect(lambda info, place: print("selected", Entry.from_info(info, place).path))
    browser.accepted.connect(lambda: print("import", browser.selectedFiles()))
    browser.rejected.connect(application.quit)
    window.show()
    sys.exit(application.exec())
