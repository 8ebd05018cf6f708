import gc
import os
import tempfile

# Before Qt reads them: the tests have settings of their own.
os.environ["XDG_CONFIG_HOME"] = tempfile.mkdtemp()

import pytest
from PyQt5 import sip
from PyQt5.QtCore import QDir, QtMsgType, qInstallMessageHandler
from PyQt5.QtTest import QTest
from PyQt5.QtWidgets import QApplication, QTreeView

from _HvMirefoldCoreUI import Halvern

application = QApplication(["tests"])
warnings = []


def note(kind, _context, text):
    if kind in (QtMsgType.QtWarningMsg, QtMsgType.QtCriticalMsg) and "(SetInputFocus)" not in text:
        warnings.append(text)


@pytest.fixture(autouse=True)
def no_warnings(tmp_path):
    Halvern.UI.FileBrowser.SetPreferencesPath(str(tmp_path / "favorites"), "Tests")
    qInstallMessageHandler(note)
    yield
    gc.collect()
    QTest.qWait(1)
    found = warnings[:]
    warnings.clear()
    assert not found


@pytest.fixture
def frames(tmp_path):
    """A folder with two layers of one shot, one frame of another, and a text."""
    folder = tmp_path / "frames"
    folder.mkdir()
    for name in ["sh010_a.1.exr", "sh010_a.2.exr", "sh010_b.1.exr", "sh020_a.7.exr", "notes.txt"]:
        (folder / name).write_text(name)
    return folder


@pytest.fixture
def open_browser(frames):
    """Makes shown browsers on the folder, listed with the given evaluator."""
    browsers = []

    def make(evaluator=None, kind=Halvern.UI.FileBrowser):
        browser = kind()
        browser.setSequencesEnabled(True)
        browser.setFileSequenceEvaluator(evaluator)
        browser.setDirectory(QDir(str(frames)))
        browser.show()
        browsers.append(browser)
        listed = []
        browser.findChild(QTreeView, "filesList").model().sourceModel().modelReset.connect(lambda: listed.append(1))
        until(lambda: listed)
        return browser

    yield make
    for browser in browsers:
        if not sip.isdeleted(browser):
            browser.hide()


def until(condition):
    for _ in range(500):
        if condition():
            return
        QTest.qWait(10)
    raise AssertionError("it did not happen")


def rows(browser):
    model = browser.findChild(QTreeView, "filesList").model()
    return [model.index(row, 0).data() for row in range(model.rowCount())]
