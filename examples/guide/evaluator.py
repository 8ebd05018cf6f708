import os
import sys
import tempfile
from pathlib import Path
from typing import Dict, List, Tuple

from PyQt5.QtWidgets import QApplication

from HvMirefoldCoreUI import FileBrowser, FileInfo, FileSequenceEvaluator


class StereoPairs(FileSequenceEvaluator):
    """Groups left and right eye, "take.left.0001.exr" and "take.right.0001.exr", into one row for each take."""

    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        takes: Dict[str, List[FileInfo]] = {}
        others: List[FileInfo] = []
        for file in files:
            left, eye, _ = file.fileName().partition(".left.")
            right, other_eye, _ = file.fileName().partition(".right.")
            if eye or other_eye:
                takes.setdefault(left if eye else right, []).append(file)
            else:
                others.append(file)
        rows = []
        for take, members in takes.items():
            print(take, len(members), "files")
            name = os.fsencode(take + ".stereo.exr")  # for any bytes
            rows.append(self.buildFileSequence(name, range(len(members)), tuple(members)))
        return tuple(rows) + self.builtInRows(tuple(others))  # a list is refused


with tempfile.TemporaryDirectory() as folder:
    for name in ("take.left.0001.exr", "take.right.0001.exr", "plate.0001.exr", "plate.0002.exr"):
        (Path(folder) / name).touch()
    application = QApplication(sys.argv)
    evaluator = StereoPairs()  # the browser does not keep it alive
    browser = FileBrowser()
    browser.setSequencesEnabled(True)
    browser.setFileSequenceEvaluator(evaluator)
    browser.setDirectory(folder)
    browser.show()
    sys.exit(application.exec())
