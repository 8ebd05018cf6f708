import sys
from pathlib import Path

from PyQt5.QtWidgets import QApplication, QDockWidget, QMainWindow

from HvMirefoldCoreUI import Entry, FileBrowser

application = QApplication(sys.argv)
window = QMainWindow()
dock = QDockWidget("Plates", window)
browser = FileBrowser(dock)
dock.setWidget(browser)
window.setCentralWidget(dock)
browser.setSequencesEnabled(True)
browser.setMultipleSelections(True)
browser.setFilters(["*.exr *.dpx", "*.jpg"], False)
browser.setAcceptButtonText("Import")
browser.setAcceptButtonEnabled(True)  # only FileDialog does this by itself
browser.setDirectory(Path.cwd())
browser.fileSelected.connect(lambda info, folder: print("selected", Entry.from_info(info, folder).path))
browser.accepted.connect(lambda: print("import", browser.selectedFiles()))
browser.rejected.connect(application.quit)
window.show()
sys.exit(application.exec())
