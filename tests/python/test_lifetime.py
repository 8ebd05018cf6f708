import gc
import weakref
from concurrent.futures import ThreadPoolExecutor

import pytest
from conftest import evaluator_of, rows, until
from qt import QtCore, QtWidgets, sip
from shots import Shots

from _HvMirefoldCoreUI import Halvern

FileBrowser = Halvern.UI.FileBrowser


def drop_elsewhere(holder):
    with ThreadPoolExecutor() as other:
        other.submit(holder.clear)


def drop_cycle(holder):
    holder[0].itself = holder[0]
    holder.clear()


def browsers():
    gc.collect()
    return sum(isinstance(window, FileBrowser) for window in QtWidgets.QApplication.topLevelWidgets())


@pytest.mark.parametrize("release", [list.clear, drop_elsewhere, drop_cycle])
def test_deletes_a_browser_without_a_parent_and_leaves_others(release):
    before = browsers()
    release([FileBrowser(None)])
    assert browsers() - before == (release is drop_elsewhere), "only its own thread may delete it at once"
    parent = QtWidgets.QWidget()
    release([FileBrowser(parent=parent)])
    QtWidgets.QApplication.sendPostedEvents(None, QtCore.QEvent.Type.DeferredDelete)
    assert browsers() == before
    browser = parent.findChild(FileBrowser)
    sip.delete(parent)
    assert sip.isdeleted(browser)


def test_browser_and_evaluator_survive_each_other(open_browser, frames):
    evaluator = evaluator_of(lambda _, files: files)
    first, second = open_browser(evaluator), open_browser(evaluator)
    sip.delete(first)
    assert evaluator.buildFileSequence("one", (1,), (None,)).fileName() == "one"
    known = weakref.ref(evaluator)
    del evaluator
    assert known() is None, "nobody but its host keeps it"
    second.grab()
    assert "sh010_a.1.exr" in rows(second)
    second.setSequencesEnabled(True)
    assert "sh010_a.#.exr 1-2" in rows(second), "the built-in rules are back"
    second.setDirectory(QtCore.QDir("/"))
    second.setDirectory(QtCore.QDir(str(frames)))
    until(lambda: "notes.txt" in rows(second))


def test_entries_may_outlive_who_made_them(open_browser):
    def keep(evaluator, files):
        kept[:] = [*files, evaluator.buildFileSequence("kept", (1,), files[:1])]
        return tuple(kept)

    kept, entry = [], Halvern.UI.FileInfo("sh010_a.1.exr", False)
    for _ in range(3):  # memory that was freed is used again
        evaluated, = Shots().evaluateFiles((entry,))
        wrapped_again, = super(Shots, Shots()).evaluateFiles((entry,))
        built = evaluator_of(keep).buildFileSequence("built", (1,), (entry,))
        evaluator = evaluator_of(keep)
        sip.delete(open_browser(evaluator))
        evaluator = None
        open_browser().grab()
        assert evaluated.fileName() == wrapped_again.fileName() == "sh010 (1 files)"
        assert built.fileName() == "built"
        assert {"sh010_a.1.exr", "notes.txt", "kept"} <= {file.fileName() for file in kept}
        evaluator = evaluator_of(keep)
        with pytest.raises(RuntimeError, match="deleted"):
            evaluator.buildFileSequence("deleted", (sip.delete(evaluator) or 1 for _ in range(1)), ())


@pytest.mark.parametrize("leave", [
    lambda browser, _: browser.deleteLater(),
    lambda _, evaluators: sip.delete(evaluators.pop()),
    lambda browser, evaluators: [browser.setFileSequenceEvaluator(None), evaluators.clear()]],
    ids=["browser deleted", "evaluator deleted", "evaluator dropped"])
@pytest.mark.parametrize("asked_by_the_read", [False, True])
def test_either_may_go_while_the_evaluator_is_asked(open_browser, frames, leave, asked_by_the_read):
    def answer(_, files):
        if leaving and (len(files) > 8 or not asked_by_the_read):
            leaving.pop()(browser, evaluators)
        return files

    leaving, evaluators, browser = [], [evaluator_of(answer)], open_browser()
    browser.setFileSequenceEvaluator(evaluators[0])
    leaving.append(leave)
    if asked_by_the_read:
        browser.setDirectory(QtCore.QDir("/"))
        until(lambda: not leaving)
    else:
        browser.setSequencesEnabled(True)
    QtWidgets.QApplication.sendPostedEvents(None, QtCore.QEvent.Type.DeferredDelete)
    assert sip.isdeleted(browser) == bool(evaluators)
    if not evaluators:
        browser.setDirectory(QtCore.QDir(str(frames)))
        until(lambda: "sh010_a.#.exr 1-2" in rows(browser))
