"""Calls as a pipeline tool makes them, to be read by a type checker. It must find each line that says "wrong"."""

import pathlib
from typing import List, Optional, Tuple

from PyQt5.QtCore import QDir
from PyQt5.QtGui import QShowEvent
from PyQt5.QtWidgets import QWidget

from _HvMirefoldCoreUI import Halvern
from HvMirefoldCoreUI import (Entry, FileBrowser, FileDialog, FileInfo, FilePreview, FileSequenceEvaluator, FrameRanges,
                              FrameSlider, frames, list_directory)


class Evaluator(FileSequenceEvaluator):
    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> Tuple[FileInfo, ...]:
        first = self.buildFileSequence(b"first", range(1), files[:1])
        first.setSequenceName(files[0].fileName())
        self.buildFileSequence("list", [1], [files[0]])  # wrong
        return (first, *self.builtInRows(files[1:], split=True))


class Lister(Halvern.UI.FileSequenceEvaluator):
    def evaluateFiles(self, files: Tuple[FileInfo, ...]) -> List[FileInfo]:  # wrong
        return list(files)


class Browser(Halvern.UI.FileBrowser):
    def showEvent(self, a0: QShowEvent) -> None:
        super().showEvent(a0)
        self.setDirectory(QDir("/tmp"), False, True)
        self.setDirectory("/tmp")  # wrong
        self.setDirectory(dir=QDir("/tmp"))  # wrong


def look(parent: Optional[QWidget], folder: pathlib.Path) -> List[str]:
    FileBrowser.AddFavoriteDir("plates", "", folder, ttip="Scans", persistent=False)
    dialog = FileDialog(parent, acceptText="Import")
    dialog.setDirectory(folder)
    dialog.setSelectionType(FileBrowser.SelectionType.Directories)
    dialog.setSelectionType(1)  # wrong
    browser = dialog.fileBrowser()
    browser.setDirectory(QDir.home(), refresh=False)
    browser.setDirectory(3)  # wrong
    browser.setFileSequenceEvaluator(Evaluator())
    browser.fileSelected.connect(lambda info, place: print(Entry.from_info(info, place).missing))
    browser.setPreviewWidget(FilePreview())
    FileInfo("shot.0001.exr")  # wrong
    return dialog.selectedFiles()


def report(entry: Entry) -> None:
    slider = FrameSlider()
    slider.set_frame_range(entry.frames[0], entry.frames[-1])
    slider.setCacheFrames(entry.frames)
    split = frames.placeholder.split_frame(entry.name)
    print(split[0])  # wrong
    entry.size = 3  # wrong
    for other in list_directory(entry.folder, hidden=True):
        print(other.name.upper(), FrameRanges("1-10") == other.frames, other.missing.runs()[0].step)
    list_directory(entry.folder, collapsed=True)  # wrong
    FrameRanges(7)  # wrong
