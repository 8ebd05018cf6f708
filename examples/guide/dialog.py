import sys
import tempfile
from pathlib import Path

from PyQt5.QtWidgets import QApplication

from HvMirefoldCoreUI import FileDialog

with tempfile.TemporaryDirectory() as folder:
    for name in ("shot.0001.exr", "shot.0002.exr", "shot.0004.exr"):
        (Path(folder) / name).touch()
    application = QApplication(sys.argv)
    dialog = FileDialog(acceptText="Import")
    dialog.setSequencesEnabled(True)
    dialog.setDirectory(folder)
    if dialog.exec():
        print("\n".join(dialog.selectedFiles()))
