"""Listing folders: entries as values of Python's own."""

import os
import sys
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, List, Tuple, Union

from _HvMirefoldCoreUI import Halvern

from . import _native
from .frames import FrameRanges, placeholder

if TYPE_CHECKING:
    from ._native import PathOrDir
    _Path = Union[str, os.PathLike[str]]
else:  # for typing.get_type_hints()
    _Path = Union[str, os.PathLike]
    _binding = Halvern.UI.FileBrowser.__base__.__module__.partition(".")[0]
    PathOrDir = Union[_Path, sys.modules[_binding + ".QtCore"].QDir]

__all__ = ["Entry", "list_directory"]

_Row = Tuple[str, bool, bool, Tuple[int, ...], int, int, int, Tuple[str, ...]]


@dataclass(frozen=True)
class Entry:
    """A file, a folder or an image sequence, as it was when the folder was read."""

    folder: str
    name: str  # as the browser shows it, of a sequence "shot.####.exr 1-100"
    is_directory: bool
    is_sequence: bool
    frames: FrameRanges  # of a sequence; empty for all else
    padding: int  # of a sequence the number of "#" in its name: 4 for frames 0001 and up, 1 for 1 and up; 0 for all else
    size: int  # bytes, of a sequence all its files together
    modified: int  # seconds since the epoch, of a sequence the latest
    _names: Tuple[str, ...] = field(default=(), repr=False, compare=False)

    @property
    def path(self) -> str:
        """Folder and name, as selectedFiles() gives it: "/shots/shot.####.exr 1-100"."""
        return os.path.join(self.folder, self.name)

    @property
    def pattern(self) -> str:
        """The path, of a sequence without its range: "/shots/shot.####.exr"."""
        split = placeholder.split_range(self.path) if self.is_sequence else None
        return split[0] if split else self.path

    @property
    def missing(self) -> FrameRanges:
        """The frames between the first and the last that have no file."""
        return self.frames.missing()

    def files(self) -> List[str]:
        """The paths of the files on disk, by frame.

        For a sequence from from_info() it reads the folder again. LookupError if that has no such sequence with these
        frames, as for a row that an evaluator has grouped by a rule of its own: only the evaluator knows its files.
        """
        if not self.is_sequence:
            return [self.path]
        return [os.path.join(self.folder, name) for name in self._names or self._names_on_disk()]

    def _names_on_disk(self) -> List[str]:
        frames = set(self.frames)
        for entry in list_directory(self.folder, hidden=True):
            if entry.is_sequence and entry.pattern == self.pattern and frames.issubset(entry.frames):
                return [name for frame, name in zip(entry.frames, entry._names) if frame in frames]
        raise LookupError("the files of {!r} are not known".format(self.path))

    @classmethod
    def from_info(cls, info: Halvern.UI.FileInfo, folder: PathOrDir) -> "Entry":
        """What an entry of the native module says, for slots of fileSelected(info, folder) and for evaluators.

        Size and time are 0 until they have arrived. Until then the disk is asked whether the entry is a folder.
        """
        place, row = _native.path_text(folder), _native.describe(info, folder)
        parent, name = os.path.split(row[0])
        # Going to a folder emits fileSelected() for its path.
        return cls._of((name, *row[1:]), parent) if parent and name else cls._of(row, place)

    @classmethod
    def _of(cls, row: _Row, folder: str) -> "Entry":
        name, is_directory, is_sequence, runs, padding, size, modified, names = row
        return cls(folder, name, is_directory, is_sequence, FrameRanges._of(runs), padding, size, modified, names)


def list_directory(path: _Path, collapse: bool = True, split: bool = False, hidden: bool = False) -> List[Entry]:
    """Reads a folder at once and returns its entries, ordered by the bytes of their names.

    collapse joins numbered files of the registered kinds into sequences, split makes an entry of each run of frames
    without a gap, hidden lists names that begin with a dot. OSError says why a folder cannot be read. Needs no
    QApplication. Other threads run meanwhile.
    """
    folder = os.fsdecode(path)
    return [Entry._of(row, folder) for row in _native.list_directory(path, collapse, split, hidden)]
