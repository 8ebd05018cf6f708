import os
import sys
from typing import Dict, List, Tuple

from PyQt5.QtCore import QDir
from PyQt5.QtWidgets import QApplication

from _HvMirefoldCoreUI import Halvern

FileInfo = Halvern.UI.FileInfo


class StereoPairs(Halvern.UI.FileSequenceEvaluator):
    """Groups left and right eye, "shot.left.0001.exr" and "shot.right.0001.exr", into one row for each take."""

    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        rows: List[FileInfo] = []
        eyes: Dict[str, List[FileInfo]] = {}
        for file in files:
            take, eye, _ = file.fileName().partition(".left.")
            if not eye:
                take, eye, _ = file.fileName().partition(".right.")
            if eye:
                eyes.setdefault(take, []).append(file)
            else:
                rows.append(file)
        for take, members in eyes.items():
            name = os.fsencode(take + ".stereo.exr")  # for any bytes
            rows.append(self.buildFileSequence(name, range(len(members)), tuple(members)))
            print(take, len(members), "files")
        return tuple(rows)  # a list is refused


application = QApplication(sys.argv)
evaluator = StereoPairs()  # the browser does not keep it alive
browser = Halvern.UI.FileBrowser()
browser.setSequencesEnabled(True)
browser.setFileSequenceEvaluator(evaluator)
browser.setDirectory(QDir("stereo"))
browser.show()
sys.exit(application.exec())
