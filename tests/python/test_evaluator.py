import pytest
from conftest import evaluator_of, files, rows, until
from qt import binding
from shots import Shots

from _HvMirefoldCoreUI import Halvern

FileInfo, FileSequenceEvaluator = Halvern.UI.FileInfo, Halvern.UI.FileSequenceEvaluator


Without = type("Without", (FileSequenceEvaluator,), {})
# Entries belong to it while it serves no browser.
maker = Without()


def leave(*_):
    raise SystemExit(3)


def test_regroups_a_directory(open_browser):
    evaluator = Shots()
    browser = open_browser(evaluator)
    assert rows(browser) == ["notes.txt", "sh010 (3 files)", "sh020 (1 files)"]
    until(lambda: files(browser).index(1, 1).data() == 3 * len("sh010_a.1.exr"))
    browser.setFileSequenceEvaluator(None)
    assert "sh020_a.7.exr" in rows(browser)


@pytest.mark.parametrize("answer, printed, shown", [
    (lambda _, files: 1 // 0, "ZeroDivisionError", []),
    (None, "FileSequenceEvaluator.evaluateFiles() is abstract", []),
    (lambda _, files: list(files), "TypeError", []),
    (lambda _, files: files + (1,), "TypeError", []),
    (leave, "SystemExit: 3", []),
    (lambda _, files: (None, *[file for file in files if "notes" in file.fileName()], None), "", ["notes.txt"]),
    (lambda self, files: FileSequenceEvaluator.evaluateFiles(self, files),
     "unbound" if binding == "PyQt5" else "RecursionError", []),
])
def test_prints_what_fails_and_lives_on(open_browser, capfd, answer, printed, shown):
    evaluator = evaluator_of(answer) if answer else Without(maker)
    browser = open_browser(evaluator)
    assert [row for row in rows(browser) if row] == shown
    browser.grab()
    assert printed in capfd.readouterr().err
    browser.setFileSequenceEvaluator(None)
    assert "notes.txt" in rows(browser)


def test_reaches_overrides_through_the_native_call():
    kept = FileInfo("a", False)
    evaluator = evaluator_of(lambda _, files: files[::-1])
    native = super(type(evaluator), evaluator).evaluateFiles
    assert native((kept, None)) == (None, kept)
    for wrong in ([kept], (kept, 1), None):
        pytest.raises(TypeError, native, wrong).match(r"FileSequenceEvaluator\.evaluateFiles\(\)")


Promising = type("Promising", (list,), {"__len__": lambda self: 1 << 62})
Raising = type("Raising", (list,), {"__len__": leave})


@pytest.mark.parametrize("frames", [
    (1, True), (k for k in (1, 2)), [2**40], Promising([1]), Raising([1])],
    ids=lambda frames: type(frames).__name__)
def test_takes_whole_numbers_from_any_iterable(frames):
    assert maker.buildFileSequence("s", frames, ()).fileName() == "s"


@pytest.mark.parametrize("frames, error, text", [
    ([1, 2, 3.0], TypeError, "^object in iterable cannot be converted to float$"),
    ([2**63], OverflowError, ""),
    ((1 // k for k in (1, 0)), ZeroDivisionError, ""),
    (3, TypeError, r"FileSequenceEvaluator.buildFileSequence\(\): argument 2"),
    (None, TypeError, r"FileSequenceEvaluator.buildFileSequence\(\): argument 2")])
def test_refuses_other_frames(frames, error, text):
    pytest.raises(error, maker.buildFileSequence, "s", frames, ()).match(text)


@pytest.mark.parametrize("name, shown, printed", [
    ("shot", "shot", ""), (None, "", ""), (b"shot", "shot", ""), ("a\0b", "a", ""), ("", "", ""),
    ("\xe9", "\udcc3\udca9", ""), (b"\xff", "\udcff", ""), ("\ud800", "", "UnicodeEncodeError")])
def test_takes_text(capfd, name, shown, printed):
    assert maker.buildFileSequence(name, (), ()).fileName() == shown
    assert printed in capfd.readouterr().err


def test_names_entries():
    info = FileInfo("a.#.exr", True)
    assert info.setStartFrame(1) is info.setEndFrame(2) is info.insertSequenceFile(2, None) is None
    info.setSequenceName("a.####.exr 1-2")
    assert FileInfo(info).fileName() == info.fileName() == "a.####.exr 1-2"
