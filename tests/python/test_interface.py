"""What Python sees of the three classes, and what it does not."""

import ast
import pathlib

import pytest
from PyQt5.QtCore import QDir, QTimer
from PyQt5.QtWidgets import QAbstractItemView, QApplication, QPushButton, QWidget

import _HvMirefoldCoreUI
from _HvMirefoldCoreUI import Halvern

FileBrowser, FileInfo, FileSequenceEvaluator = (
    Halvern.UI.FileBrowser, Halvern.UI.FileInfo, Halvern.UI.FileSequenceEvaluator)

HANDLERS = """action change close contextMenu dragEnter dragLeave dragMove drop enter focusIn focusOut hide inputMethod
    keyPress keyRelease leave mouseDoubleClick mouseMove mousePress mouseRelease move paint resize show tablet wheel
    custom child timer native""".split()
OTHERS = """create destroy updateMicroFocus focusNextChild focusPreviousChild focusNextPrevChild sender
    senderSignalIndex receivers isSignalConnected metric sharedPainter initPainter connectNotify disconnectNotify
    event eventFilter""".split()
METHODS = """setDirectory setFilename setFilters setShowChooserTypes setSequencesEnabled setMayNotExist
    setButtonsVisible setFileSequenceEvaluator selectedFiles refreshFavorites AddFavoriteDir RemoveFavoriteDir
    ResetFavorites ResetNonPersistentFavorites SetDefaultFavoritePaths SetPreferencesPath""".split()


def public(cls, beyond):
    return {name for name in set(dir(cls)) - set(dir(beyond)) if not name.startswith("__")}


def test_exposes_what_is_promised_and_no_more():
    assert FileBrowser.__bases__ == (QWidget,)
    assert public(FileBrowser, QWidget) == set(METHODS)
    assert public(FileInfo, object) == {
        "setStartFrame", "setEndFrame", "setSequenceName", "insertSequenceFile", "fileName"}
    assert public(FileSequenceEvaluator, object) == {"evaluateFiles", "buildFileSequence"}
    # Python has them on the class itself, where natively they need a derived class.
    assert {"showEvent", "eventFilter"} < set(vars(FileBrowser))
    for name in OTHERS + [handler + "Event" for handler in HANDLERS]:
        assert callable(getattr(FileBrowser, name))


def test_describes_its_types():
    stub = next(pathlib.Path(_HvMirefoldCoreUI.__file__).parent.parent.rglob("_HvMirefoldCoreUI.pyi"))
    described = {node.name for node in ast.walk(ast.parse(stub.read_text())) if isinstance(node, ast.FunctionDef)}
    assert described >= set(METHODS) | {"evaluateFiles", "buildFileSequence", "fileName"}


entry = FileInfo("a", False)
wrong = [
    (lambda: FileInfo("a"), TypeError, "FileInfo()"),
    (lambda: FileInfo(name="a", isSequence=True), TypeError, "FileInfo()"),
    (lambda: FileInfo(None, True), TypeError, "FileInfo()"),
    (lambda: FileInfo(None), TypeError, "FileInfo()"),
    (lambda: FileInfo("\xe9", True), UnicodeEncodeError, "ascii"),
    (lambda: entry.setSequenceName("\xe9"), UnicodeEncodeError, "ascii"),
    (lambda: entry.setSequenceName(None), TypeError, "FileInfo.setSequenceName()"),
    (lambda: entry.setStartFrame(2**31), OverflowError, "argument 1"),
    (lambda: entry.insertSequenceFile(1, "a"), TypeError, "FileInfo.insertSequenceFile()"),
    (lambda: entry.fileName(1), TypeError, "FileInfo.fileName()"),
    (lambda: FileSequenceEvaluator(), TypeError, "FileSequenceEvaluator"),
    (lambda: FileBrowser(1), TypeError, "FileBrowser()"),
    (lambda: FileBrowser().setDirectory("/tmp"), TypeError, "FileBrowser.setDirectory()"),
    (lambda: FileBrowser().setDirectory(QDir("/tmp"), refresh=True), TypeError, "setDirectory()"),
    (lambda: FileBrowser().setFilters("*.exr"), TypeError, "FileBrowser.setFilters()"),
    (lambda: FileBrowser().setFileSequenceEvaluator(entry), TypeError, "FileBrowser.setFileSequenceEvaluator()"),
    (lambda: FileBrowser.AddFavoriteDir("a", "b"), TypeError, "FileBrowser.AddFavoriteDir()"),
    (lambda: FileBrowser.AddFavoriteDir(name="a", keyText="b", path="c"), TypeError, "FileBrowser.AddFavoriteDir()"),
    (lambda: FileBrowser.RemoveFavoriteDir("a", 0, False), TypeError, "FileBrowser.RemoveFavoriteDir()"),
    (lambda: FileBrowser.SetPreferencesPath("a"), TypeError, "FileBrowser.SetPreferencesPath()"),
    (lambda: FileBrowser.SetDefaultFavoritePaths("a", "b", "c", productDir="d"), TypeError,
     "FileBrowser.SetDefaultFavoritePaths()"),
]


@pytest.mark.parametrize("call, error, text", wrong)
def test_refuses_wrong_arguments(call, error, text):
    with pytest.raises(error) as raised:
        call()
    assert text in str(raised.value)


def test_hands_arguments_to_the_native_calls(open_browser, frames, tmp_path):
    browser = open_browser()
    for call in [browser.setShowChooserTypes, browser.setMayNotExist, browser.setButtonsVisible]:
        assert call(True) is None
    browser.setFilters(["*.txt"], False)
    browser.setFilters(["*.exr"])
    browser.setFilename(str(frames / "notes.txt"))
    selected = browser.selectedFiles()
    assert selected == [str(frames / "notes.txt")] and type(selected) is list
    selected.clear()
    browser.setDirectory(QDir(str(tmp_path)), True, False)
    assert browser.selectedFiles() == [str(frames / "notes.txt")], "the typed name was to be kept"
    browser.setDirectory(QDir(str(frames)))
    assert browser.selectedFiles() == [str(frames) + "/"]


def test_keeps_favorites(tmp_path):
    FileBrowser.SetDefaultFavoritePaths("/home", "/", "/tmp", "/opt", persistent=True)
    FileBrowser.ResetFavorites()
    FileBrowser.AddFavoriteDir("kept", "key", None)
    FileBrowser.AddFavoriteDir(b"typed", "key", "/tmp", ttip="tip", icon="/icon.png", type=3)
    FileBrowser.AddFavoriteDir("passing", "key", "/tmp", "", "", 0, False)
    FileBrowser.AddFavoriteDir("removed", "key", "/tmp", type=4)
    FileBrowser.RemoveFavoriteDir("typed", type=4)
    FileBrowser.RemoveFavoriteDir("removed")
    FileBrowser.RemoveFavoriteDir("passing")
    browser = FileBrowser()
    model = browser.findChild(QAbstractItemView, "favoritesList").model()

    def shown():
        browser.refreshFavorites()
        return {model.index(row, 0).data() for row in range(model.rowCount())} & {"kept", "typed", "passing"}

    assert shown() == {"kept", "passing"}, "only persistent ones can be removed; the other is for other browsers"
    FileBrowser.ResetNonPersistentFavorites()
    assert shown() == {"kept"}
    QTimer.singleShot(200, lambda: QApplication.activeModalWidget().accept())
    browser.findChild(QPushButton, "addFavoriteButton").click()
    del browser
    FileBrowser.ResetFavorites()
    kept = [line for line in (tmp_path / "favorites").read_text().splitlines() if " kept " in line or " typed " in line]
    assert kept == ['add_favorite_dir kept kept "" /', "add_favorite_dir -image -script typed typed /icon.png tip /tmp/"]
