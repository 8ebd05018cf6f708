#!/usr/bin/env python3
"""A dialog that groups files by shot, and prints the files of the shots that were chosen.

usage: import_shots.py [FOLDER]

"sh010_beauty.0001.exr" and "sh010_matte.0001.exr" belong to the shot "sh010". Other files keep the built-in rules.
"""

import os
import sys
from typing import Dict, List, Tuple

from HvMirefoldCoreUI import FileDialog, FileInfo, FileSequenceEvaluator, frames, list_directory
from qt import QtWidgets


class Shots(FileSequenceEvaluator):
    """Makes a row of each shot, and remembers the files of the rows."""

    def __init__(self) -> None:
        super().__init__()
        self.names: Dict[str, List[str]] = {}

    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        shots: Dict[str, List[FileInfo]] = {}
        others: List[FileInfo] = []
        for file in files:
            shot, layer, rest = file.fileName().partition("_")
            is_frame = layer and frames.placeholder.split_frame(rest)
            (shots.setdefault(shot, []) if is_frame else others).append(file)
        rows = []
        for shot, members in shots.items():
            row = self.buildFileSequence(os.fsencode(f"{shot} ({len(members)} files)"), range(len(members)),
                                         tuple(members))
            self.names[row.fileName()] = [file.fileName() for file in members]
            rows.append(row)
        return tuple(rows) + self.builtInRows(tuple(others))

    def files(self, path: str) -> List[str]:
        folder, name = os.path.split(path)
        if name in self.names:
            return [os.path.join(folder, member) for member in self.names[name]]
        return [file for entry in list_directory(folder) if entry.path == path for file in entry.files()]


def choose(folder: str) -> List[str]:
    shots = Shots()  # kept while the dialog is open: the browser does not
    dialog = FileDialog(acceptText="Import")
    dialog.setMultipleSelections(True)
    dialog.setSequencesEnabled(True)
    dialog.fileBrowser().setFileSequenceEvaluator(shots)
    dialog.setDirectory(folder)
    return [file for path in dialog.selectedFiles() for file in shots.files(path)] if dialog.exec() else []


if __name__ == "__main__":
    application = QtWidgets.QApplication(sys.argv)
    print("\n".join(choose(sys.argv[1] if len(sys.argv) > 1 else ".")))
