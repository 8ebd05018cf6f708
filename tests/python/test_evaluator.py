"""The evaluator between a browser and Python, and how values cross."""

import pytest
from conftest import rows, until
from PyQt5.QtWidgets import QTreeView

from _HvMirefoldCoreUI import Halvern

FileInfo, FileSequenceEvaluator = Halvern.UI.FileInfo, Halvern.UI.FileSequenceEvaluator


class Evaluator(FileSequenceEvaluator):
    """Answers with what the given function makes of the files."""

    def __init__(self, answer):
        super().__init__()
        self.answer = answer

    def evaluateFiles(self, files):
        return self.answer(self, files)


class Without(FileSequenceEvaluator):
    pass


def by_shot(evaluator, files):
    shots = {}
    for file in files:
        shots.setdefault(file.fileName()[:5], []).append(file)
    return tuple(evaluator.buildFileSequence(shot, range(len(members)), tuple(members))
                 for shot, members in shots.items() if shot.startswith("sh"))


def leave(*_):
    raise SystemExit(3)


def test_regroups_a_directory(open_browser):
    evaluator = Evaluator(by_shot)
    browser = open_browser(evaluator)
    assert rows(browser) == ["sh010", "sh020"]
    model = browser.findChild(QTreeView, "filesList").model()
    until(lambda: model.index(0, 1).data() == 3 * len("sh010_a.1.exr"))
    browser.setFileSequenceEvaluator(None)
    assert "notes.txt" in rows(browser)


@pytest.mark.parametrize("answer, printed, shown", [
    (lambda _, files: 1 // 0, "ZeroDivisionError", []),
    (lambda _, files: list(files), "TypeError", []),
    (lambda _, files: None, "TypeError", []),
    (lambda _, files: files + (1,), "TypeError", []),
    (leave, "SystemExit: 3", []),
    (lambda _, files: (None, *[file for file in files if "notes" in file.fileName()], None), "", ["notes.txt"]),
    (lambda self, files: FileSequenceEvaluator.evaluateFiles(self, files), "unbound", []),
], ids=["exception", "list", "none", "wrong item", "exit", "null entries", "unbound"])
def test_prints_what_fails_and_lives_on(open_browser, capfd, answer, printed, shown):
    evaluator = Evaluator(answer)
    browser = open_browser(evaluator)
    assert [row for row in rows(browser) if row] == shown
    browser.grab()
    assert printed in capfd.readouterr().err
    browser.setFileSequenceEvaluator(None)
    assert "notes.txt" in rows(browser)


def test_tells_of_a_missing_override(open_browser, capfd):
    copy = Without(Without())
    assert rows(open_browser(copy)) == []
    assert "FileSequenceEvaluator.evaluateFiles() is abstract" in capfd.readouterr().err


def test_reaches_overrides_through_the_native_call():
    kept = FileInfo("a", False)
    reverse = Evaluator(lambda _, files: files[::-1])
    assert super(Evaluator, reverse).evaluateFiles((kept, None)) == (None, kept)
    for wrong in ([kept], (kept, 1), None):
        with pytest.raises(TypeError, match=r"FileSequenceEvaluator\.evaluateFiles\(\)"):
            super(Evaluator, reverse).evaluateFiles(wrong)


def sequence(name="s", frames=(), files=()):
    return Without().buildFileSequence(name, frames, files)


class Promising(list):
    def __len__(self):
        return 1 << 62


class Raising(list):
    def __len__(self):
        raise ValueError


@pytest.mark.parametrize("frames", [
    [1, 2], (1, True), range(1, 4), {1: 2}, (k for k in (1, 2)), [2**40], Promising([1]), Raising([1])],
    ids=lambda frames: type(frames).__name__)
def test_takes_whole_numbers_from_any_iterable(frames):
    assert sequence("s", frames).fileName() == "s"


def broken():
    yield 1
    raise LookupError("broken")


@pytest.mark.parametrize("frames, error, text", [
    ([1, 2, 3.0], TypeError, "^object in iterable cannot be converted to float$"),
    ("12", TypeError, "^object in iterable cannot be converted to float$"),
    ([2**63], OverflowError, ""),
    (broken(), LookupError, "broken"),
    (3, TypeError, r"FileSequenceEvaluator.buildFileSequence\(\): argument 2"),
    (None, TypeError, r"FileSequenceEvaluator.buildFileSequence\(\): argument 2")])
def test_refuses_other_frames(frames, error, text):
    with pytest.raises(error, match=text):
        sequence("s", frames)


@pytest.mark.parametrize("name, shown, printed", [
    ("shot", "shot", ""), (None, "", ""), (b"shot", "shot", ""), ("a\0b", "a", ""), ("", "", ""),
    ("\xe9", "\udcc3\udca9", ""), (b"\xff", "\udcff", ""), ("\ud800", "", "UnicodeEncodeError")])
def test_takes_text(capfd, name, shown, printed):
    assert sequence(name).fileName() == shown
    assert printed in capfd.readouterr().err


def test_names_entries():
    info = FileInfo("a.#.exr", True)
    assert info.fileName() == "" and FileInfo("a", False).fileName() == "a"
    info.setSequenceName("a.####.exr 1-2")
    info.setStartFrame(1)
    info.setEndFrame(2)
    info.insertSequenceFile(1, FileInfo("a.1.exr", False))
    info.insertSequenceFile(2, None)
    assert FileInfo(info).fileName() == info.fileName() == "a.####.exr 1-2"
