"""Qt for Python as the module on Python's path needs it: PyQt5 or PyQt6."""

import importlib
from typing import TYPE_CHECKING

from _HvMirefoldCoreUI import Halvern

binding = Halvern.UI.FileBrowser.__base__.__module__.partition(".")[0]
if TYPE_CHECKING:
    from PyQt5 import QtCore as QtCore, QtGui as QtGui, QtWidgets as QtWidgets, sip as sip
else:
    QtCore, QtGui, QtWidgets, sip = (importlib.import_module(f"{binding}.{name}")
                                     for name in ("QtCore", "QtGui", "QtWidgets", "sip"))
