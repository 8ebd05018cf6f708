#!/usr/bin/env python3
"""Opens the file browser with one row for every shot, and prints what was chosen.

usage: PYTHONPATH=FOLDER_OF_THE_MODULE shots.py [DIRECTORY]

Files belong to one shot if their names have the same first part, for any names of layers and versions:
"sh010_beauty.0001.exr" and "sh010_matte_v02.0001.exr" belong to "sh010".
"""

import os
import re
import sys
from typing import Dict, List, Tuple

from _HvMirefoldCoreUI import Halvern
from qt import QtCore, QtWidgets

FileInfo = Halvern.UI.FileInfo
FRAME_OF_A_SHOT = re.compile(r"([A-Za-z]+_?\d+)_.*\.\d+\.\w+$")


class Shots(Halvern.UI.FileSequenceEvaluator):
    """Makes one row for each shot. Other files keep their rows."""

    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        rows: List[FileInfo] = []
        shots: Dict[str, List[FileInfo]] = {}
        for file in files:
            match = FRAME_OF_A_SHOT.match(file.fileName())
            if match:
                shots.setdefault(match.group(1), []).append(file)
            else:
                rows.append(file)
        for shot, members in shots.items():
            name = os.fsencode(f"{shot} ({len(members)} files)")  # for any bytes
            rows.append(self.buildFileSequence(name, range(len(members)), tuple(members)))
        return tuple(rows)


class ShotDialog(QtWidgets.QDialog):
    """A dialog with a browser."""

    def __init__(self, directory: str) -> None:
        super().__init__()
        self.setWindowTitle("Shots")
        self.resize(900, 500)
        self.browser = Halvern.UI.FileBrowser(parent=self)
        # The browser does not keep the evaluator alive.
        self.shots = Shots()
        self.browser.setSequencesEnabled(True)
        self.browser.setFileSequenceEvaluator(self.shots)
        self.browser.setButtonsVisible(False)
        self.browser.setDirectory(QtCore.QDir(directory))
        button = QtWidgets.QDialogButtonBox.StandardButton
        buttons = QtWidgets.QDialogButtonBox()
        buttons.addButton(button.Open)
        buttons.addButton(button.Cancel)
        buttons.accepted.connect(self.accept)
        buttons.rejected.connect(self.reject)
        layout = QtWidgets.QVBoxLayout(self)
        layout.addWidget(self.browser)
        layout.addWidget(buttons)


def main() -> None:
    application = QtWidgets.QApplication(sys.argv)
    dialog = ShotDialog(sys.argv[1] if len(sys.argv) > 1 else ".")
    if dialog.exec() == QtWidgets.QDialog.DialogCode.Accepted:
        print("\n".join(dialog.browser.selectedFiles()))


if __name__ == "__main__":
    main()
