import importlib
import os
import tempfile

# Before Qt reads them: settings of the tests' own, and no warning that goes unnoticed.
folder = tempfile.mkdtemp()
os.environ.update(XDG_CONFIG_HOME=folder, XDG_RUNTIME_DIR=folder, QT_FATAL_WARNINGS="1",
                  QT_LOGGING_RULES="qt.qpa.xcb=false")

import pytest
from qt import QtCore, QtWidgets, binding

from _HvMirefoldCoreUI import Halvern

QTest = importlib.import_module(f"{binding}.QtTest").QTest
application = QtWidgets.QApplication(["tests"])


@pytest.fixture(autouse=True)
def preferences(tmp_path):
    path = tmp_path / "favorites"
    Halvern.UI.FileBrowser.SetPreferencesPath(str(path), "Tests")
    return path


# Makes files that hold their names.
def make(folder, *names):
    folder.mkdir(exist_ok=True)
    for name in names:
        (folder / name).write_text(name, errors="surrogateescape")
    return folder


@pytest.fixture
def frames(tmp_path):
    # Two layers of one shot, one frame of another, and a text.
    return make(tmp_path / "frames", "sh010_a.1.exr", "sh010_a.2.exr", "sh010_b.1.exr", "sh020_a.7.exr", "notes.txt")


@pytest.fixture
def open_browser(frames):
    # Makes browsers that are shown and have listed the folder.
    def make(evaluator=None, kind=Halvern.UI.FileBrowser):
        browser = kind()
        browser.setSequencesEnabled(True)
        browser.setFileSequenceEvaluator(evaluator)
        browser.setDirectory(QtCore.QDir(str(frames)))
        browser.show()
        listed = []
        files(browser).sourceModel().modelReset.connect(lambda: listed.append(True))
        until(lambda: listed)
        return browser

    return make


def evaluator_of(answer):
    return type("Evaluator", (Halvern.UI.FileSequenceEvaluator,), {"evaluateFiles": answer})()


def until(condition):
    assert any(condition() or QTest.qWait(10) for _ in range(500)), "it did not happen"


def files(browser, view="filesList"):
    return browser.findChild(QtWidgets.QAbstractItemView, view).model()


def rows(browser, view="filesList"):
    model = files(browser, view)
    return [model.index(row, 0).data() for row in range(model.rowCount())]


# Clicks rows of the file list.
def choose(window, *names):
    view = window.findChild(QtWidgets.QTreeView, "filesList")
    model, role, first = view.model(), QtCore.Qt.ItemDataRole.DisplayRole, lambda: view.model().index(0, 0)
    view.clearSelection()
    for name in names:
        until(lambda: model.match(first(), role, name))
        index, = model.match(first(), role, name)
        QTest.mouseClick(view.viewport(), QtCore.Qt.MouseButton.LeftButton,
                         QtCore.Qt.KeyboardModifier.ControlModifier, view.visualRect(index).center())
