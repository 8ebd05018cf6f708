"""try_package.py FOLDER FRAMES: imports the Python module and the package, which must be below FOLDER, lists FRAMES, and
previews a picture with the program that comes with the library."""
import ast
import importlib
import os
import sys
import tempfile
import time

import _HvMirefoldCoreUI as native
import HvMirefoldCoreUI as package

folder, frames = sys.argv[1:]
for module in native, package:
    assert module.__file__.startswith(folder + os.sep), module.__file__
with open(native.__file__.replace(".abi3.so", ".pyi"), encoding="utf-8") as types:
    ast.parse(types.read())
assert [entry.name for entry in package.list_directory(frames)] == ["shot.####.exr 1-4"]

binding = next(name.split(".")[0] for name in sys.modules if name.startswith("PyQt"))
QtGui, QtWidgets = (importlib.import_module(f"{binding}.{name}") for name in ("QtGui", "QtWidgets"))
application = QtWidgets.QApplication(sys.argv)
with tempfile.TemporaryDirectory() as pictures:
    path = os.path.join(pictures, "grey.png")
    assert QtGui.QImage(64, 48, QtGui.QImage.Format.Format_RGB32).save(path)
    pane = package.FilePreview()
    pane.show()
    pane.previewFile(path)
    label = pane.findChild(QtWidgets.QLabel, "label")
    end = time.monotonic() + 30
    while not label.text().startswith("64 x 48") and time.monotonic() < end:
        application.processEvents()
        time.sleep(0.01)
    assert label.text().startswith("64 x 48"), label.text()
