"""Who deletes what, and errors in overridden handlers."""

import gc
import threading
import weakref

import pytest
from conftest import rows, until
from PyQt5 import sip
from PyQt5.QtCore import QDir, QEvent, Qt
from PyQt5.QtTest import QTest
from PyQt5.QtWidgets import QApplication, QLineEdit, QWidget

from _HvMirefoldCoreUI import Halvern

FileBrowser, FileSequenceEvaluator = Halvern.UI.FileBrowser, Halvern.UI.FileSequenceEvaluator


class PassOn(FileSequenceEvaluator):
    def evaluateFiles(self, files):
        return files


def browsers():
    return sum(isinstance(window, FileBrowser) for window in QApplication.topLevelWidgets())


def drop(holder):
    holder.clear()


def drop_elsewhere(holder):
    thread = threading.Thread(target=holder.clear)
    thread.start()
    thread.join()


def drop_cycle(holder):
    holder[0].itself = holder[0]
    holder.clear()
    gc.collect()


@pytest.mark.parametrize("release", [drop, drop_elsewhere, drop_cycle])
def test_deletes_a_browser_without_a_parent(release):
    before = browsers()
    holder = [FileBrowser(None)]
    assert browsers() == before + 1
    release(holder)
    assert browsers() - before == (release is drop_elsewhere), "only its own thread may delete it at once"
    QApplication.sendPostedEvents(None, QEvent.DeferredDelete)
    assert browsers() == before


@pytest.mark.parametrize("release", [drop, drop_elsewhere, drop_cycle])
def test_leaves_a_browser_to_its_parent(release):
    parent = QWidget()
    holder = [FileBrowser(parent=parent)]
    release(holder)
    QApplication.sendPostedEvents(None, QEvent.DeferredDelete)
    browser = parent.findChild(FileBrowser)
    assert isinstance(browser, FileBrowser)
    sip.delete(parent)
    assert sip.isdeleted(browser)


def test_goes_on_without_its_evaluator(open_browser, frames):
    evaluator = PassOn()
    first, second = open_browser(evaluator), open_browser(evaluator)
    known = weakref.ref(evaluator)
    del evaluator
    assert known() is None, "nobody but its host keeps it"
    for browser in (first, second):
        assert "sh010_a.1.exr" in rows(browser)
        browser.grab()
        browser.setSequencesEnabled(True)
        assert "sh010_a.#.exr 1-2" in rows(browser), "the built-in rules are back"
        browser.setDirectory(QDir("/"))
        browser.setDirectory(QDir(str(frames)))
        until(lambda: "notes.txt" in rows(browser))


def test_serves_without_its_browser(open_browser):
    evaluator = PassOn()
    browser = open_browser(evaluator)
    assert evaluator.buildFileSequence("one", (1,), (None,)).fileName() == "one"
    sip.delete(browser)
    assert evaluator.buildFileSequence("two", (1,), (None,)).fileName() == "two"


class Handlers(FileBrowser):
    """Overrides that raise, and others that hand on."""

    def __init__(self):
        self.seen = set()
        super().__init__()

    def showEvent(self, event):
        self.seen.add("show")
        super().showEvent(event)

    def resizeEvent(self, event):
        raise SystemExit("resize")

    def mousePressEvent(self, event):
        raise ValueError("press")

    def eventFilter(self, watched, event):
        self.seen.add("filter")
        return super().eventFilter(watched, event)

    def sizeHint(self):
        return "not a size"


def test_errors_in_overrides_do_not_end_the_process(open_browser, capfd):
    browser = open_browser(kind=Handlers)
    assert "notes.txt" in rows(browser), "the native handler of the override's base lists when it is shown"
    QTest.mouseClick(browser, Qt.LeftButton)
    edit = browser.findChild(QLineEdit, "filenameEdit")
    before = edit.text()
    QTest.keyClick(edit, Qt.Key_Down)
    assert edit.text() != before, "the native filter of the override's base moves in the list"
    assert browser.seen == {"show", "filter"}
    browser.adjustSize()
    printed = capfd.readouterr().err
    assert "SystemExit: resize" in printed and "ValueError: press" in printed and "Handlers.sizeHint" in printed
