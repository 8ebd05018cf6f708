import os
import pathlib
import re
import subprocess
import sys

import _HvMirefoldCoreUI
import import_shots
import pytest
import shot_dock
from conftest import QTest, choose, make
from qt import QtCore, QtWidgets, binding

MODULE = _HvMirefoldCoreUI.__file__
PROGRAMS = pathlib.Path(os.environ["PROGRAMS"])
EXAMPLES = pathlib.Path(import_shots.__file__).parents[1]


def run(*command, **variables):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, env={**os.environ, **variables})


def output(*command, **variables):
    done = run(*command, **variables)
    assert done.returncode == 0, done.stderr
    return done.stdout


def test_programs_list_the_same_and_write_nothing(frames, tmp_path):
    home = make(tmp_path / "home")
    expected = ["notes.txt", "sh010_a.#.exr 1-2", "sh010_b.1.exr", "sh020_a.7.exr"]
    assert sorted(output(PROGRAMS / "seqls", frames).splitlines()) == expected
    arguments = (PROGRAMS / "browse", "--list", "--screenshot", tmp_path / "picture.png", frames)
    listed = output(*arguments, HOME=str(home), XDG_CONFIG_HOME=str(home / "config"))
    assert listed.splitlines() == expected
    assert (tmp_path / "picture.png").stat().st_size > 0
    assert list(home.rglob("*.ini")) + list(home.rglob("*.favorites")) == []


def test_library_asks_for_stable_python_and_a_few_libraries():
    needed = re.findall(r"NEEDED.*\[(.*)\]", output("readelf", "-d", MODULE))
    allowed = r"(libQt[56](Core|Gui|(OpenGL)?Widgets|OpenGL)|libc|libm|libstdc\+\+|libgcc_s|libpthread|libGL|libasan|libubsan)\.so\.\d"
    assert needed and [name for name in needed if not re.match(allowed, name)] == []
    linked = run("ldd", "-r", MODULE)
    undefined = re.findall(r"undefined symbol: (\w+)", linked.stdout + linked.stderr)
    header = pathlib.Path(os.environ["PYTHON_HEADERS"], "Python.h")
    declared = output("g++", "-E", "-DPy_LIMITED_API=0x03070000", "-xc++", header)
    assert undefined and set(undefined) <= set(re.findall(r"\w+", declared))


def test_library_is_loaded_once_by_a_host_with_python_in_it(frames, tmp_path):
    script = tmp_path / "script.py"
    script.write_text(f"""if True:
        kept = __import__("runpy").run_path({str(EXAMPLES / "host" / "shots_in_dialog.py")!r})
        assert len({{line.split()[-1] for line in open("/proc/self/maps") if "_HvMirefoldCoreUI" in line}}) == 1""")
    listed = output(os.environ["HOST_EXAMPLE"], script, frames, "--list")
    assert listed.splitlines() == ["notes.txt", "sh010 (3 files)", "sh020 (1 files)"]


def test_imports_shots(frames, tmp_path):
    others = [f"sh010_x.{frame}.exr" for frame in (7, 8, 9)]
    make(tmp_path, *others)

    def act():
        dialog = QtWidgets.QApplication.activeModalWidget()
        choose(dialog, "sh010 (3 files)", "notes.txt")
        dialog.findChild(QtWidgets.QPushButton, "nextButton").click()
        dialog.setDirectory(tmp_path)
        dialog.findChild(QtWidgets.QCheckBox, "sequencesCheck").setChecked(False)
        choose(dialog, others[2])
        dialog.accept()

    QtCore.QTimer.singleShot(100, act)
    chosen = import_shots.choose(str(frames))
    names = ["notes.txt", "sh010_a.1.exr", "sh010_a.2.exr", "sh010_b.1.exr"]
    assert sorted(chosen) == [*(str(frames / name) for name in names), str(tmp_path / others[2])]
    assert import_shots.files(f"{tmp_path}/sh010 (3 files)") == [str(tmp_path / other) for other in others]


def test_reports_missing_frames(frames):
    def report(folder):
        done = run(sys.executable, EXAMPLES / "python" / "missing_frames.py", folder, DISPLAY="")
        return done.returncode, done.stdout, done.stderr

    assert report(frames) == (0, "1 sequences, 0 incomplete\n", "")
    make(frames / "sub", "x.0001.exr", "x.0002.exr", "x.0005.exr")
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


# In a process of its own: the application is PySide's.
PYSIDE_HOST = """
import signal, sys
import pyside_host as host
from PyQt5.QtWidgets import QTreeView

signal.alarm(30)
application = host.QtWidgets.QApplication([])
window = host.Window(sys.argv[1])
window.show()
browser = window.browser
view = browser.findChild(QTreeView, "filesList")
while not view.model().match(view.model().index(0, 0), 0, "sh010_a.#.exr"):
    application.processEvents()
view.keyboardSearch("sh010_a")
print(window.statusBar().currentMessage(), host.to_pyqt(window).isAncestorOf(browser))
del window
print(host.sip.isdeleted(browser))
"""


@pytest.mark.skipif(binding == "PyQt6", reason="Debian 12 has no PySide6")
def test_stands_in_a_window_of_pyside(frames):
    pytest.importorskip("PySide2.QtWidgets")
    done = run(sys.executable, "-c", PYSIDE_HOST, frames)
    assert (done.returncode, done.stdout) == (0, f"{frames}/sh010_a.#.exr 1-2 True\nTrue\n")
    assert done.stderr == "FileBrowser, Can't write favorites: No preferences path.\n"
