#!/usr/bin/env python3
"""A dialog that groups files by shot, and prints the files of the shots that were chosen.

usage: import_shots.py [FOLDER]

"sh010_beauty.0001.exr" and "sh010_matte.0001.exr" belong to the shot "sh010". Other files keep the built-in rules.
"""

import os
import re
import sys
from typing import Dict, List, Tuple

from HvMirefoldCoreUI import FileDialog, FileInfo, FileSequenceEvaluator, frames, list_directory
from qt import QtWidgets


class Shots(FileSequenceEvaluator):
    """Makes a row of each shot."""

    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        shots: Dict[str, List[FileInfo]] = {}
        others: List[FileInfo] = []
        for file in files:
            shot = shot_of(file.fileName())
            (shots.setdefault(shot, []) if shot else others).append(file)
        names = {shot: os.fsencode(f"{shot} ({len(members)} files)") for shot, members in shots.items()}
        rows = [self.buildFileSequence(names[shot], range(len(members)), tuple(members)) for shot, members in shots.items()]
        return tuple(rows) + self.builtInRows(tuple(others))


def shot_of(name: str) -> str:
    shot, _, rest = name.partition("_")
    return shot if frames.placeholder.split_frame(rest) else ""


def files(path: str) -> List[str]:
    """The files of a row: a file itself, those of a shot, or those of a sequence."""
    if os.path.isfile(path):
        return [path]
    folder, row = os.path.split(path)
    shot = re.fullmatch(r"(.+) \(\d+ files\)", row)
    if shot:
        return [file.path for file in list_directory(folder, collapse=False) if shot_of(file.name) == shot[1]]
    return [file for entry in list_directory(folder) if entry.path == path for file in entry.files()]


def choose(folder: str) -> List[str]:
    shots = Shots()  # kept while the dialog is open: the browser does not
    dialog = FileDialog(acceptText="Import")
    dialog.setMultipleSelections(True)
    dialog.setSequencesEnabled(True)
    dialog.fileBrowser().setFileSequenceEvaluator(shots)
    dialog.setDirectory(folder)
    return [file for path in dialog.selectedFiles() for file in files(path)] if dialog.exec() else []


if __name__ == "__main__":
    application = QtWidgets.QApplication(sys.argv)
    print("\n".join(choose(sys.argv[1] if len(sys.argv) > 1 else ".")))
