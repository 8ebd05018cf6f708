"""A script for the program in this folder: groups the files of its open dialog by shot.

It finds the browser that the program made. The evaluator exists as long as the names of this script. The program keeps
them until its dialog is closed.
"""

import pathlib
import sys

from _HvMirefoldCoreUI import Halvern

sys.path.append(str(pathlib.Path(__file__).parent.parent / "python"))
from qt import QtWidgets
from shots import Shots

shots = Shots()
for window in QtWidgets.QApplication.topLevelWidgets():
    browser = window.findChild(Halvern.UI.FileBrowser)
    if isinstance(browser, Halvern.UI.FileBrowser):
        browser.setFileSequenceEvaluator(shots)
