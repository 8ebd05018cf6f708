#!/usr/bin/env python3
"""A window with a dock: a browser with favourites of the show, a preview, and a timeline of the sequence that is chosen.

usage: shot_dock.py [FOLDER]
"""

import sys
from pathlib import Path
from typing import Optional

from HvMirefoldCoreUI import Entry, FileBrowser, FileInfo, FilePreview, FrameSlider, frames
from qt import QtCore, QtWidgets


class ShotDock(QtWidgets.QDockWidget):
    def __init__(self, folder: Path, parent: Optional[QtWidgets.QWidget] = None) -> None:
        super().__init__("Shots", parent)
        self.pattern = ""
        content = QtWidgets.QWidget()
        self.browser = FileBrowser(content)
        self.timeline = FrameSlider(content)
        self.label = QtWidgets.QLabel("Choose a sequence.", content)
        self.preview = FilePreview()
        layout = QtWidgets.QVBoxLayout(content)
        for widget in (self.browser, self.timeline, self.label):
            layout.addWidget(widget)
        self.setWidget(content)
        self.browser.setButtonsVisible(False)
        self.browser.setPreviewWidget(self.preview)
        self.browser.setSequencesEnabled(True)
        self.browser.setDirectory(folder)
        self.browser.fileSelected.connect(self.show_entry)
        self.timeline.sliderMoved.connect(self.show_frame)

    def show_entry(self, info: FileInfo, folder: QtCore.QDir) -> None:
        entry = Entry.from_info(info, folder)
        self.pattern = entry.pattern
        self.label.setText(f"{entry.name}, lacks {entry.missing}" if entry.missing else entry.name)
        if entry.frames:
            self.timeline.set_frame_range(entry.frames[0], entry.frames[-1])
            self.timeline.setValue(entry.frames[0])
        self.timeline.setCacheFrames(entry.frames)

    def show_frame(self, frame: int) -> None:
        self.preview.previewFile(frames.placeholder.with_frame(self.pattern, frame))


def main(folder: Path) -> int:
    application = QtWidgets.QApplication(sys.argv)
    FileBrowser.SetPreferencesPath(Path.home() / ".shot_dock.favorites", "Shot dock")
    FileBrowser.AddFavoriteDir("show", "", folder.resolve(), ttip="All shots", persistent=False)
    window = QtWidgets.QMainWindow()
    window.addDockWidget(QtCore.Qt.DockWidgetArea.LeftDockWidgetArea, ShotDock(folder, window))
    window.show()
    return application.exec()


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1] if len(sys.argv) > 1 else ".")))
