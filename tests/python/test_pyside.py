import subprocess
import sys

import pytest
from qt import binding

# In a process of its own: the application is PySide's.
SCRIPT = """
import signal, sys
import pyside_host as host
from PyQt5.QtWidgets import QTreeView

signal.alarm(30)
application = host.QtWidgets.QApplication([])
window = host.Window(sys.argv[1])
window.show()
browser = window.browser
view = browser.findChild(QTreeView, "filesList")
found = []
while not found:
    application.processEvents()
    found = view.model().match(view.model().index(0, 0), 0, "sh010_a.#.exr")
view.setCurrentIndex(found[0])
print(window.statusBar().currentMessage(), host.to_pyqt(window).isAncestorOf(browser))
del window
print(host.sip.isdeleted(browser))
"""


@pytest.mark.skipif(binding == "PyQt6", reason="Debian 12 has no PySide6")
def test_stands_in_a_window_of_pyside(frames):
    pytest.importorskip("PySide2.QtWidgets")
    done = subprocess.run([sys.executable, "-c", SCRIPT, frames], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    assert (done.returncode, done.stdout) == (0, f"{frames}/sh010_a.#.exr 1-2 True\nTrue\n")
    assert done.stderr == "FileBrowser, Can't write favorites: No preferences path.\n"
