"""Calls as a pipeline tool makes them, to be read by a type checker. It must find each line that says "wrong"."""

import pathlib
from typing import List, Optional, Tuple

from PyQt5.QtCore import QDir
from PyQt5.QtWidgets import QWidget

from _HvMirefoldCoreUI import Halvern
from HvMirefoldCoreUI import (Entry, FileBrowser, FileDialog, FileInfo, FilePreview, FileSequenceEvaluator, FrameRanges,
                              FrameSlider, frames, list_directory)


class Evaluator(FileSequenceEvaluator):
    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        first = self.buildFileSequence(b"first", range(1), files[:1])
        self.buildFileSequence("list", [1], [files[0]])  # wrong
        return (first, *self.builtInRows(files[1:], split=True))


class Lister(Halvern.UI.FileSequenceEvaluator):
    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> List[FileInfo]:  # wrong
        return list(files)


def look(parent: Optional[QWidget], folder: pathlib.Path) -> List[str]:
    Halvern.UI.FileBrowser().setDirectory(QDir("/tmp"), False, True)
    Halvern.UI.FileBrowser().setDirectory("/tmp")  # wrong
    FileBrowser.AddFavoriteDir("plates", "", folder, ttip="Scans", persistent=False)
    dialog = FileDialog(parent, acceptText="Import")
    dialog.setSelectionType(FileBrowser.SelectionType.Directories)
    dialog.setSelectionType(1)  # wrong
    browser = dialog.fileBrowser()
    browser.setDirectory(folder, refresh=False)
    browser.setDirectory(3)  # wrong
    browser.setFileSequenceEvaluator(Evaluator())
    browser.fileSelected.connect(lambda info, place: print(Entry.from_info(info, place).missing))
    browser.setPreviewWidget(FilePreview())
    FileInfo("shot.0001.exr")  # wrong
    return dialog.selectedFiles()


def report(entry: Entry) -> None:
    FrameSlider().setCacheFrames(entry.frames)
    print(frames.placeholder.split_frame(entry.name)[0])  # wrong
    entry.size = 3  # wrong
    for other in list_directory(entry.folder, hidden=True):
        print(other.name.upper(), FrameRanges("1-10") == other.frames, other.missing.runs()[0].step)
    list_directory(entry.folder, collapsed=True)  # wrong
    FrameRanges(7)  # wrong
