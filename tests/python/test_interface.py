import pytest
from conftest import rows
from qt import QtCore, QtGui, QtWidgets

from _HvMirefoldCoreUI import Halvern

FileBrowser, FileInfo = Halvern.UI.FileBrowser, Halvern.UI.FileInfo

METHODS = """setDirectory setFilename setFilters setShowChooserTypes setSequencesEnabled setMayNotExist setButtonsVisible
    setFileSequenceEvaluator selectedFiles refreshFavorites AddFavoriteDir RemoveFavoriteDir ResetFavorites
    ResetNonPersistentFavorites SetDefaultFavoritePaths SetPreferencesPath"""


@pytest.mark.parametrize("cls, base, names", [
    (FileBrowser, QtWidgets.QWidget, METHODS),
    (FileInfo, object, "setStartFrame setEndFrame setSequenceName insertSequenceFile fileName"),
    (Halvern.UI.FileSequenceEvaluator, object, "evaluateFiles buildFileSequence")])
def test_exposes_what_is_promised_and_no_more(cls, base, names):
    assert issubclass(cls, base)
    assert {name for name in set(dir(cls)) - set(dir(base)) if not name.startswith("__")} == set(names.split())
    for name in names.split():
        assert getattr(cls, name).__doc__.startswith(f"{cls.__name__}.{name}()\n\n{name}("), "it stands in error messages"


def test_opens_the_protected_members_of_a_widget():
    browser = FileBrowser()
    assert browser.sender() is None and browser.senderSignalIndex() == -1 and browser.sharedPainter() is None
    assert browser.receivers(browser.destroyed) == 0
    assert browser.metric(QtGui.QPaintDevice.PaintDeviceMetric.PdmWidth) == browser.width()
    for call in [browser.create, browser.updateMicroFocus, browser.focusPreviousChild, browser.destroy]:
        call()
    assert browser.eventFilter(None, None) is False


entry = FileInfo("a", False)


@pytest.mark.parametrize("call, error, text", [
    (lambda: FileInfo("a"), TypeError, "FileInfo()"),
    (lambda: FileInfo(None, True), TypeError, "FileInfo()"),
    (lambda: FileInfo("\xe9", True), UnicodeEncodeError, "ascii"),
    (lambda: entry.setSequenceName(b"\xff"), TypeError, "argument 1 is not ASCII"),
    (lambda: entry.setSequenceName(None), TypeError, "FileInfo.setSequenceName()"),
    (lambda: entry.setStartFrame(2**31), OverflowError, "argument 1"),
    (lambda: Halvern.UI.FileSequenceEvaluator(), TypeError, "FileSequenceEvaluator"),
    (lambda: FileBrowser().setDirectory(QtCore.QDir("/tmp"), refresh=True), TypeError, "setDirectory()"),
    (lambda: FileBrowser.AddFavoriteDir("a", "b", path="c"), TypeError, "FileBrowser.AddFavoriteDir()"),
    (lambda: FileBrowser.RemoveFavoriteDir("a", 0, False), TypeError, "FileBrowser.RemoveFavoriteDir()"),
    (lambda: FileBrowser.SetPreferencesPath("a"), TypeError, "FileBrowser.SetPreferencesPath()")])
def test_refuses_wrong_arguments(call, error, text):
    assert text in str(pytest.raises(error, call).value)


def test_hands_arguments_to_the_native_calls(open_browser, frames, tmp_path):
    browser = open_browser()
    assert browser.setShowChooserTypes(True) is browser.setMayNotExist(True) is browser.setButtonsVisible(True) is None
    browser.setFilters(["*.txt"], False)
    browser.setFilename(str(frames / "notes.txt"))
    browser.setDirectory(QtCore.QDir(str(tmp_path)), True, False)
    assert browser.selectedFiles() == [str(frames / "notes.txt")], "the typed name was to be kept"
    browser.setDirectory(QtCore.QDir(str(frames)))
    assert browser.selectedFiles() == [str(frames) + "/"]


def test_keeps_favorites(preferences):
    FileBrowser.SetDefaultFavoritePaths("/home", "/", "/tmp", "/opt", persistent=True)
    FileBrowser.ResetFavorites()
    FileBrowser.AddFavoriteDir("kept", "key", None)
    FileBrowser.AddFavoriteDir(b"typed", "key", "/tmp", ttip="tip", icon="/icon.png", type=3)
    FileBrowser.AddFavoriteDir("passing", "key", "/tmp", "", "", 0, False)
    FileBrowser.AddFavoriteDir("typed", "key", "/tmp", type=4)
    FileBrowser.RemoveFavoriteDir("typed", type=4)
    FileBrowser.RemoveFavoriteDir("passing")
    browser = FileBrowser()
    assert {"kept", "passing"} < set(rows(browser, "favoritesList")), "only persistent ones can be removed"
    FileBrowser.ResetNonPersistentFavorites()
    browser.refreshFavorites()
    assert "passing" not in rows(browser, "favoritesList")
    QtCore.QTimer.singleShot(200, lambda: QtWidgets.QApplication.activeModalWidget().accept())
    browser.findChild(QtWidgets.QPushButton, "addFavoriteButton").click()
    # Which writes the file.
    del browser
    FileBrowser.ResetFavorites()
    assert preferences.read_text().splitlines()[5:7] == [
        'add_favorite_dir kept kept "" /', "add_favorite_dir -image -script typed typed /icon.png tip /tmp/"]
