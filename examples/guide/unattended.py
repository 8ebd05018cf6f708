"""unattended.py FILE: runs a program of the guide for the tests. It selects the first sequence in the list, presses
Open, and ends the program. The examples name PyQt5. If the module is for PyQt6, it runs them with that name."""
import pathlib
import sys

sys.path.append(str(pathlib.Path(__file__).parent.parent / "python"))
from qt import QtCore, QtWidgets, binding

LISTING_TIME = 400  # milliseconds


def act():
    for window in QtWidgets.QApplication.topLevelWidgets():
        view = window.findChild(QtWidgets.QTreeView, "filesList")
        if view:
            if view.model().index(0, 0).data() is None:  # it is listing
                QtCore.QTimer.singleShot(LISTING_TIME, act)
                return
            rows = view.model().match(view.model().index(0, 0), QtCore.Qt.ItemDataRole.DisplayRole, "shot.")
            if rows:
                view.setCurrentIndex(rows[0])
            window.findChild(QtWidgets.QPushButton, "openButton").click()
    QtWidgets.QApplication.quit()


def attended(run):
    def run_for_a_while(*arguments):
        QtCore.QTimer.singleShot(LISTING_TIME, act)
        return run(*arguments)

    return run_for_a_while


QtWidgets.QApplication.exec = staticmethod(attended(QtWidgets.QApplication.exec))
QtWidgets.QDialog.exec = attended(QtWidgets.QDialog.exec)
sys.argv = sys.argv[1:]
program = pathlib.Path(sys.argv[0]).read_text(encoding="utf-8").replace("PyQt5", binding)
exec(compile(program, sys.argv[0], "exec"), {"__name__": "__main__"})
