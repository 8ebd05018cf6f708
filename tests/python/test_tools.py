import os
import pathlib
import subprocess
import sys

import import_shots
import shot_dock
from conftest import QTest, choose
from qt import QtCore, QtWidgets

EXAMPLES = pathlib.Path(import_shots.__file__).parent


def test_imports_shots(frames):
    def act():
        dialog = QtWidgets.QApplication.activeModalWidget()
        choose(dialog, "sh010 (3 files)", "notes.txt")
        dialog.accept()

    QtCore.QTimer.singleShot(100, act)
    assert sorted(import_shots.choose(str(frames))) == [
        str(frames / name) for name in ("notes.txt", "sh010_a.1.exr", "sh010_a.2.exr", "sh010_b.1.exr")]


def test_reports_missing_frames(frames):
    def report(folder):
        done = subprocess.run([sys.executable, EXAMPLES / "missing_frames.py", folder], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, env={**os.environ, "DISPLAY": ""})
        return done.returncode, done.stdout, done.stderr

    assert report(frames) == (0, "1 sequences, 0 incomplete\n", "")
    (frames / "sub").mkdir()
    for frame in (1, 2, 5):
        (frames / "sub" / f"x.{frame:04}.exr").touch()
    assert report(frames.parent) == (1, "frames/sub/x.####.exr: has 1-2,5, lacks 3-4 (2 frames)\n"
                                        "2 sequences, 1 incomplete\n", "")
    status, _, error = report(frames / "nowhere")
    assert status == 2 and "nowhere" in error


def test_shows_a_dock(frames):
    (frames / "sh010_a.5.exr").touch()
    dock = shot_dock.ShotDock(frames)
    dock.show()
    choose(dock, "sh010_a.#.exr 1-5")
    assert dock.label.text() == "sh010_a.#.exr 1-5, lacks 3-4" and dock.timeline.frameLast() == 5
    dock.preview.show()
    for x, file in ((10, "sh010_a.1.exr"), (dock.timeline.width() // 2, "")):
        QTest.mouseClick(dock.timeline, QtCore.Qt.MouseButton.LeftButton, pos=QtCore.QPoint(x, 10))
        assert dock.preview.file() == (file and str(frames / file))
