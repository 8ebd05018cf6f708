#!/usr/bin/env python3
"""A host on PySide2 with the file browser, which is a PyQt5 widget, in its window. Both bindings share one Qt.

usage: pyside_host.py [FOLDER]
"""

import sys
from typing import Any

import PyQt5.sip
from PyQt5 import QtCore, QtWidgets as PyQt
from PySide2 import QtWidgets  # type: ignore # it has no types
from shiboken2 import getCppPointer, wrapInstance  # type: ignore

from HvMirefoldCoreUI import Entry, FileBrowser, FileInfo

sip: Any = PyQt5.sip  # its types are incomplete


def to_pyside(widget: PyQt.QWidget) -> QtWidgets.QWidget:
    """The same widget as PySide sees it. Its parent owns it from now on."""
    sip.transferto(widget, None)
    return wrapInstance(sip.unwrapinstance(widget), QtWidgets.QWidget)


def to_pyqt(widget: QtWidgets.QWidget) -> PyQt.QWidget:
    """The same widget as PyQt sees it, for example as the parent of a FileDialog."""
    pointer, = getCppPointer(widget)
    same: PyQt.QWidget = sip.wrapinstance(pointer, PyQt.QWidget)
    return same


class Window(QtWidgets.QMainWindow):  # type: ignore
    def __init__(self, folder: str) -> None:
        super().__init__()
        self.browser = FileBrowser()
        self.browser.setSequencesEnabled(True)
        self.browser.setDirectory(folder)
        self.setCentralWidget(to_pyside(self.browser))
        # The signals of the browser are PyQt signals. A slot can be any function.
        self.browser.fileSelected.connect(self.show_path)

    def show_path(self, info: FileInfo, folder: QtCore.QDir) -> None:
        self.statusBar().showMessage(Entry.from_info(info, folder).path)


if __name__ == "__main__":
    application = QtWidgets.QApplication(sys.argv)
    window = Window(sys.argv[1] if len(sys.argv) > 1 else ".")
    window.show()
    sys.exit(application.exec_())
