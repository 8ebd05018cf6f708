"""CoreUI for Python tools: a file browser for image sequences, a file dialog, a preview, a timeline, and listings.

It stands on the native module _HvMirefoldCoreUI, whose classes it extends.
"""

from _HvMirefoldCoreUI import Halvern

from . import frames
from ._native import FileBrowser, FileDialog, FilePreview, FrameSlider, add_sequence_extension
from .entries import Entry, list_directory
from .evaluator import FileSequenceEvaluator
from .frames import FrameRanges

FileInfo = Halvern.UI.FileInfo

__all__ = ["Entry", "FileBrowser", "FileDialog", "FileInfo", "FilePreview", "FileSequenceEvaluator", "FrameRanges",
           "FrameSlider", "add_sequence_extension", "frames", "list_directory"]
