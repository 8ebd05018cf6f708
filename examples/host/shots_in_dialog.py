"""A script of the program beside it: groups the files of its open dialog by shot.

It finds the browser that the program made. The evaluator lives as long as this script's names do, and the program
keeps those until its dialog has closed.
"""

import pathlib
import sys

from PyQt5.QtWidgets import QApplication

from _HvMirefoldCoreUI import Halvern

sys.path.append(str(pathlib.Path(__file__).parent.parent / "python"))
from shots import Shots

shots = Shots()
for window in QApplication.topLevelWidgets():
    browser = window.findChild(Halvern.UI.FileBrowser)
    if browser:
        browser.setFileSequenceEvaluator(shots)
