"""unattended.py FILE: runs a program of the guide for the tests. It selects the first sequence in the list, presses
Open, and ends the program. The examples name PyQt5. If the module is for PyQt6, it runs them with that name."""
import pathlib
import sys
from typing import Any, Callable

sys.path.append(str(pathlib.Path(__file__).parent.parent / "python"))
from qt import QtCore, QtWidgets, binding

LISTING_TIME = 400  # milliseconds


def act() -> None:
    for window in QtWidgets.QApplication.topLevelWidgets():
        view = window.findChild(QtWidgets.QTreeView, "filesList")
        button = window.findChild(QtWidgets.QPushButton, "openButton")
        if isinstance(view, QtWidgets.QTreeView) and isinstance(button, QtWidgets.QPushButton):
            first = view.model().index(0, 0)
            if first.data() is None:  # it is listing
                QtCore.QTimer.singleShot(LISTING_TIME, act)
                return
            rows = view.model().match(first, QtCore.Qt.ItemDataRole.DisplayRole, "shot.")
            if rows:
                view.setCurrentIndex(rows[0])
            button.click()
    QtWidgets.QApplication.quit()


def attended(run: Callable[..., int]) -> Callable[..., int]:
    def run_for_a_while(*arguments: Any) -> int:
        QtCore.QTimer.singleShot(LISTING_TIME, act)
        return run(*arguments)

    return run_for_a_while


setattr(QtWidgets.QApplication, "exec", staticmethod(attended(QtWidgets.QApplication.exec)))
setattr(QtWidgets.QDialog, "exec", attended(QtWidgets.QDialog.exec))
sys.argv = sys.argv[1:]
program = pathlib.Path(sys.argv[0]).read_text(encoding="utf-8").replace("PyQt5", binding)
exec(compile(program, sys.argv[0], "exec"), {"__name__": "__main__"})
