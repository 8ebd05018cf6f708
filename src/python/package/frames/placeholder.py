"""What stands for the frame number in the name of a sequence, "####" or "%04d", and the range that follows the name.

Texts only: nothing is read from disk.
"""

from typing import Optional, Tuple

from .. import _native

__all__ = ["split_frame", "split_range", "with_frame", "with_hashes", "with_token"]


def with_token(name: str) -> str:
    """The printf form: "img.####.exr" gives "img.%04d.exr"."""
    return _native.with_token(name)


def with_hashes(name: str) -> str:
    """The form with hashes: "img.%04d.exr" gives "img.####.exr"."""
    return _native.with_hashes(name)


def with_frame(path: str, frame: int) -> str:
    """The path of one frame: "img.####.exr" or "img.%04d.exr" and 7 give "img.0007.exr". Folders stay as they are."""
    return _native.with_frame(path, frame)


def split_range(path: str) -> Optional[Tuple[str, int, int]]:
    """Name, first and last frame: "img.####.exr 1-100" gives ("img.####.exr", 1, 100), a name without a range None."""
    return _native.split_range(path)


def split_frame(path: str) -> Optional[Tuple[str, int]]:
    """Pattern and frame: "img.0042.exr" gives ("img.####.exr", 42), a name without a frame number None."""
    return _native.split_frame(path)
