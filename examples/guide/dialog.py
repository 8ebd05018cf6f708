import sys

from PyQt5.QtWidgets import QApplication

from HvMirefoldCoreUI import FileDialog

application = QApplication(sys.argv)
dialog = FileDialog(acceptText="Import")
dialog.setSequencesEnabled(True)
if dialog.exec():
    print("\n".join(dialog.selectedFiles()))
