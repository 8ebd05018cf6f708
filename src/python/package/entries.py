"""Listing folders: entries as values of Python's own."""

import os
from dataclasses import dataclass, field
from typing import List, Tuple, Union

from _HvMirefoldCoreUI import Halvern

from . import _native
from .frames import FrameRanges, placeholder

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
    padding: int  # digits of a sequence's frame number; 1 if they differ
    size: int  # bytes, of a sequence all its files together
    modified: int  # seconds since the epoch, of a sequence the latest
    _names: Tuple[str, ...] = field(default=(), repr=False)

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
        """The paths of the files on disk, by frame. Those of an entry from from_info() are made of its pattern."""
        if not self.is_sequence:
            return [self.path]
        if self._names:
            return [os.path.join(self.folder, name) for name in self._names]
        return [placeholder.with_frame(self.pattern, frame) for frame in self.frames]

    @classmethod
    def from_info(cls, info: Halvern.UI.FileInfo, folder: "_native.PathOrDir") -> "Entry":
        """What an entry of the native module says, for slots of fileSelected(info, folder) and for evaluators.

        Size and time are 0 until they have arrived.
        """
        return cls._of(_native.describe(info), _native.path_text(folder))

    @classmethod
    def _of(cls, row: _Row, folder: str) -> "Entry":
        name, is_directory, is_sequence, runs, padding, size, modified, names = row
        return cls(folder, name, is_directory, is_sequence, FrameRanges._of(runs), padding, size, modified, names)


def list_directory(path: Union[str, "os.PathLike[str]"], collapse: bool = True, split: bool = False,
                   hidden: bool = False) -> List[Entry]:
    """Reads a folder at once and returns its entries, ordered by the bytes of their names.

    collapse joins numbered files of the registered kinds into sequences, split makes an entry of each run of frames
    without a gap, hidden lists names that begin with a dot. OSError says why a folder cannot be read. Needs no
    QApplication. Other threads run meanwhile.
    """
    folder = os.fsdecode(path)
    return [Entry._of(row, folder) for row in _native.list_directory(path, collapse, split, hidden)]
