#!/usr/bin/env python3
"""A host on PySide2 with the file browser, which is a PyQt5 widget, in its window. Both bindings share one Qt.

usage: pyside_host.py [FOLDER]
"""

import sys

import shiboken2
from PyQt5 import QtWidgets as PyQt, sip
from PySide2 import QtWidgets

from HvMirefoldCoreUI import Entry, FileBrowser


def to_pyside(widget: PyQt.QWidget) -> QtWidgets.QWidget:
    """The same widget as PySide sees it. Its parent owns it from now on."""
    sip.transferto(widget, None)
    return shiboken2.wrapInstance(sip.unwrapinstance(widget), QtWidgets.QWidget)


def to_pyqt(widget: QtWidgets.QWidget) -> PyQt.QWidget:
    """The same widget as PyQt sees it, for example as the parent of a FileDialog."""
    pointer, = shiboken2.getCppPointer(widget)
    return sip.wrapinstance(pointer, PyQt.QWidget)


class Window(QtWidgets.QMainWindow):
    def __init__(self, folder: str) -> None:
        super().__init__()
        self.browser = FileBrowser()
        self.browser.setSequencesEnabled(True)
        self.browser.setDirectory(folder)
        self.setCentralWidget(to_pyside(self.browser))
        # The signals of the browser are PyQt signals. A slot can be any function.
        bar = self.statusBar()
        self.browser.fileSelected.connect(lambda info, place: bar.showMessage(Entry.from_info(info, place).path))


if __name__ == "__main__":
    application = QtWidgets.QApplication(sys.argv)
    window = Window(sys.argv[1] if len(sys.argv) > 1 else ".")
    window.show()
    sys.exit(application.exec_())
