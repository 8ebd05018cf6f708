import os
import subprocess
import sys
import typing

import pytest
from conftest import choose, make, rows, until
from qt import QtCore, QtWidgets

import HvMirefoldCoreUI as CoreUI
from HvMirefoldCoreUI import Entry, FileBrowser, FileDialog, FrameRanges, list_directory
from HvMirefoldCoreUI.frames import placeholder


def test_lists_a_folder(frames):
    odd = os.fsdecode(b"\xe9.1.png")
    make(frames, "sh010_a.5.exr", "b.01.png", "b.1.png", "b.2.png", odd, odd.replace("1", "2"), ".hidden")
    make(frames / "sub")
    listed = {entry.name: entry for entry in list_directory(frames)}
    assert list(listed) == ["b.##.png 1-2", "notes.txt", "sh010_a.#.exr 1-5", "sh010_b.1.exr", "sh020_a.7.exr", "sub",
                            odd.replace("1", "#") + " 1-2"]
    shot = listed["sh010_a.#.exr 1-5"]
    assert (shot.is_sequence, shot.is_directory, str(shot.frames), str(shot.missing), shot.padding) == (
        True, False, "1-2,5", "3-4", 1)
    assert shot.size == 3 * len("sh010_a.1.exr")
    assert shot.modified == max(int(os.stat(file).st_mtime) for file in shot.files())
    assert shot.path == f"{frames}/{shot.name}" and shot.pattern == f"{frames}/sh010_a.#.exr"
    for entry in listed.values():
        assert all(map(os.path.exists, entry.files()))
    assert listed["sub"].is_directory and listed["sub"].files() == [str(frames / "sub")]
    assert shot in list_directory(str(frames)) and eval(repr(shot.frames)) == shot.frames and shot.name in repr(shot)
    split = [entry.name for entry in list_directory(frames, split=True, hidden=True)]
    assert ".hidden" in split and "sh010_a.#.exr 1-2" in split and "sh010_a.5.exr" in split
    assert len(list_directory(frames, collapse=False)) == 12
    with pytest.raises(FileNotFoundError, match="nowhere"):
        list_directory(frames / "nowhere")
    pytest.raises(TypeError, list_directory, 3)


def test_several_threads_may_list_before_there_is_an_application(frames):
    script = """if True:
        import sys, threading
        from concurrent.futures import ThreadPoolExecutor
        from HvMirefoldCoreUI import add_sequence_extension, list_directory
        sys.setswitchinterval(1e-6)
        together = threading.Barrier(8)

        def names(_):
            together.wait()
            add_sequence_extension("own")
            return tuple(entry.name for entry in list_directory(sys.argv[1]))

        with ThreadPoolExecutor(8) as threads:
            print(*set(threads.map(names, range(8))))"""
    done = subprocess.run([sys.executable, "-c", script, frames], stdout=subprocess.PIPE, text=True, check=True)
    assert done.stdout == f"{tuple(entry.name for entry in list_directory(frames))}\n"


@pytest.mark.parametrize("frames, text, missing", [
    ("1-10x2,15", "1-9x2,15", "2-10x2,11-14"), ([3, 1, 2, 9, 2], "1-3,9", "4-8"), ((), "", ""),
    (range(10, 0, -3), "1-10x3", "2-3,5-6,8-9")])
def test_holds_frames(frames, text, missing):
    ranges = FrameRanges(frames)
    assert str(ranges) == text and str(ranges.missing()) == missing and ranges == FrameRanges(text) and ranges != text
    numbers = list(ranges)
    assert hash(ranges) == hash(FrameRanges(text)) and len(ranges) == len(numbers) and ranges[1:] == numbers[1:]
    assert [ranges[i] for i in range(-len(numbers), len(numbers))] == 2 * numbers
    assert all(frame in ranges for frame in numbers) and -7 not in ranges
    pytest.raises(IndexError, lambda: ranges[len(numbers)])


def test_finds_missing_frames_of_a_long_run_at_once():
    assert FrameRanges("1-2000000000x2").missing().runs() == (range(2, 1999999999, 2),)


def test_refuses_other_frames(capfd):
    for frames, error in (("1-x", ValueError), ([2**31], OverflowError), (["1"], TypeError), (3, TypeError),
                          ("1\0-3", ValueError), (b"1-3", TypeError)):
        pytest.raises(error, FrameRanges, frames)
    assert capfd.readouterr().out == ""


def test_reads_and_writes_placeholders():
    assert placeholder.with_token("/take#2/img.####.exr") == "/take#2/img.%04d.exr"
    assert placeholder.with_hashes("/a%02d/img.%04d.exr") == "/a%02d/img.####.exr"
    assert placeholder.with_frame("/take#2/\udce9.####.exr", 7) == "/take#2/\udce9.0007.exr"
    assert placeholder.split_range("/a b/img.####.exr 1-100") == ("/a b/img.####.exr", 1, 100)
    assert placeholder.split_frame("/v1/img.0042.exr") == ("/v1/img.####.exr", 42)
    assert placeholder.split_range("img.exr") is placeholder.split_frame("/v1/img.exr") is None
    pytest.raises(TypeError, placeholder.with_token, None).match("NoneType")


class Preview(QtWidgets.QLabel):
    @QtCore.pyqtSlot(CoreUI.FileInfo, QtCore.QDir)
    def fileSelected(self, info, folder):
        self.setText(Entry.from_info(info, folder).path)


def test_signals_hand_over_entries_that_outlive_the_browser(open_browser, frames):
    make(frames, "b.1.png", "b.02.png", "b.003.png")
    make(frames / "sub")
    browser = open_browser(kind=FileBrowser)
    taken, infos, preview = [], [], Preview()
    browser.fileSelected.connect(lambda info, folder: (infos.append(info), taken.append(Entry.from_info(info, folder))))
    choose(browser, "sh010_a.#.exr 1-2")
    browser.setPreviewWidget(preview)
    choose(browser, "notes.txt")
    assert browser.acceptance() is FileBrowser.Acceptance.Open and preview.text() == str(frames / "notes.txt")
    choose(browser, "b.###.png 1-3")
    browser.setDirectory(frames / "sub")
    del browser
    open_browser().grab()
    names = ["sh010_a.#.exr 1-2", "notes.txt", "b.###.png 1-3"]
    listed = {entry.name: entry for entry in list_directory(frames)}
    assert [info.fileName() for info in infos] == names + [str(frames / "sub")]
    assert taken[:3] == [listed[name] for name in names]
    assert [entry.files() for entry in taken[:3]] == [listed[name].files() for name in names] and taken[2].padding == 3
    assert (taken[3].path, taken[3].name, taken[3].is_directory) == (str(frames / "sub"), "sub", True)
    typing.get_type_hints(Entry.from_info)


def test_names_no_files_that_it_does_not_know(frames):
    row = CoreUI.FileInfo("sh010 (2 files)", True)
    row.setSequenceName("sh010 (2 files)")
    row.insertSequenceFile(0, None)
    pytest.raises(LookupError, Entry.from_info(row, frames).files).match("sh010")


def test_widgets_reach_what_the_library_overrides(frames):
    dialog, preview, slider = FileDialog(), CoreUI.FilePreview(), CoreUI.FrameSlider()
    browser = dialog.fileBrowser()
    assert type(browser) is FileBrowser and dialog.findChild(FileBrowser) is browser
    dialog.setSequencesEnabled(True)
    dialog.setPreviewWidget(preview)
    dialog.setDirectory(frames)
    dialog.setFilename(frames / "notes.txt")
    dialog.show()
    assert dialog.findChild(QtWidgets.QLineEdit, "filenameEdit").selectedText() == "notes.txt", "FileDialog has its setVisible()"
    assert dialog.directory() == QtCore.QDir(str(frames)) == browser.directory()
    choose(dialog, "sh010_a.#.exr 1-2")
    preview.setVisible(True)
    assert preview.file() == str(frames / "sh010_a.1.exr"), "FilePreview has its showEvent()"
    assert not dialog.isWatched()
    dialog.setWatched(True)
    until(lambda: (frames / "new.txt").touch() or "new.txt" in rows(browser))
    assert browser.isWatched()
    assert slider.sizeHint().height() == 31, "FrameSlider has its sizeHint()"
    for call in (browser.setDirectory, dialog.setDirectory, preview.previewFile, slider.setCacheFrames):
        name = rf"{type(call.__self__).__name__}.{call.__name__}\(\)"
        pytest.raises(TypeError, call, 3).match(f"{name}: argument 1 has unexpected type 'int'")


def test_calls_have_help_and_keywords():
    assert CoreUI.add_sequence_extension.__doc__
    for kind in (FileBrowser, FileDialog, CoreUI.FilePreview, CoreUI.FrameSlider):
        own = set(dir(kind)) - set(dir(QtWidgets.QDialog))
        calls = [name for name in own if not isinstance(getattr(kind, name), (type, QtCore.pyqtSignal))]
        assert [name for name in calls if not (getattr(kind, name).__doc__ or "").startswith(
            f"{kind.__name__}.{name}()\n\n{name}(")] == [], "help also stands in error messages"
        assert len(calls) > 5
    browser = FileBrowser()
    browser.setFilters(filters=["*.exr"], refresh=False)
    for call in (browser.setSequencesEnabled, browser.setMayNotExist, browser.setButtonsVisible, browser.setShowChooserTypes):
        call(on=True)
    browser.setFileSequenceEvaluator(evaluator=None)
    FileBrowser.RemoveFavoriteDir(name="none", type=0)


def test_lists_the_remembered_folder(frames):
    for run in ("first", "second"):
        browser = FileBrowser()
        browser.setSequencesEnabled(True)
        browser.setDirectory(frames)
        until(lambda: "notes.txt" in rows(browser))
        del browser


def test_favorites_take_paths(tmp_path, preferences):
    FileBrowser.AddFavoriteDir("plates", "", tmp_path)
    FileBrowser.AddFavoriteDir("none", "", None)
    FileBrowser.SaveFavorites()
    assert f'plates "" {tmp_path}/\n' in preferences.read_text()
    pytest.raises(TypeError, FileBrowser.AddFavoriteDir, "x", "", 3)


def test_evaluators_hand_files_back(open_browser, frames):
    class NotesFirst(CoreUI.FileSequenceEvaluator):
        def evaluateFiles(self, files):
            notes = tuple(file for file in files if "notes" in file.fileName())
            return notes + self.builtInRows(tuple(file for file in files if file not in notes))

    evaluator = NotesFirst()
    (frames / "sh010_a.5.exr").touch()
    browser = open_browser(evaluator, FileBrowser)
    assert sorted(rows(browser)) == ["notes.txt", "sh010_a.#.exr 1-5 ( 1-2 5 )", "sh010_b.1.exr", "sh020_a.7.exr"]
    files = tuple(CoreUI.FileInfo(f"a.{frame}.exr", False) for frame in (11, 12, 15, 16))
    FileBrowser.SetAssumeZeroPadding(True)
    row, = evaluator.builtInRows(files)
    FileBrowser.SetAssumeZeroPadding(False)
    assert row.fileName() == "a.##.exr 11-16" and Entry.from_info(row, frames).padding == 2
    assert [row.fileName() for row in evaluator.builtInRows(files, split=True)] == ["a.#.exr 11-12", "a.#.exr 15-16"]
