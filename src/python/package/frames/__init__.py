"""Frame numbers: sets of frames, and in `placeholder` what stands for a frame in a name."""

from itertools import chain
from typing import Iterable, Iterator, List, Tuple, Union, overload
import typing

from .. import _native
from . import placeholder

__all__ = ["FrameRanges", "placeholder"]


class FrameRanges(typing.Sequence[int]):
    """A set of frames, of a text like "1-10x2,15,20-30" or of numbers: a sequence of int in ascending order.

    It does not change after it was made. A range takes the same memory however long it is. ValueError says what cannot
    be read, OverflowError which number is beyond 32 bits. Bytes are a TypeError.
    """

    __slots__ = ("_runs",)

    def __init__(self, frames: Union[str, Iterable[int]] = ()) -> None:
        if isinstance(frames, (bytes, bytearray)):
            raise TypeError("frames are text or whole numbers, not {}".format(type(frames).__name__))
        if isinstance(frames, str):
            if "\0" in frames:
                raise ValueError("Frame range {!r}: there is a null character".format(frames))
            runs = _native.parse_runs(frames)
        else:
            runs = _united(frames.runs() if isinstance(frames, FrameRanges) else _as_runs(frames))
        self._runs = _ranges(runs)

    def runs(self) -> Tuple[range, ...]:
        """The runs of frames, ascending. Equal sets have equal runs."""
        return self._runs

    def missing(self) -> "FrameRanges":
        """The frames between the first and the last one that are not in the set."""
        return self._of(_united(self._gaps()))

    def _gaps(self) -> Iterator[range]:
        last = None
        for run in self._runs:
            if last is not None:
                yield range(last + 1, run[0])
            last = run[-1]
            if run.step == 2:
                yield range(run[0] + 1, last, 2)
            elif run.step > 2:
                yield from (range(frame + 1, frame + run.step) for frame in run[:-1])

    @classmethod
    def _of(cls, runs: Tuple[int, ...]) -> "FrameRanges":
        made = cls.__new__(cls)
        made._runs = _ranges(runs)
        return made

    def __iter__(self) -> Iterator[int]:
        return chain.from_iterable(self._runs)

    def __contains__(self, frame: object) -> bool:
        return any(frame in run for run in self._runs)

    def __len__(self) -> int:
        return sum(map(len, self._runs))

    @overload
    def __getitem__(self, index: int) -> int: ...

    @overload
    def __getitem__(self, index: slice) -> List[int]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[int, List[int]]:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        left = index if index >= 0 else index + len(self)
        for run in self._runs:
            if 0 <= left < len(run):
                return run[left]
            left -= len(run)
        raise IndexError("there is no frame {} of {}".format(index, len(self)))

    def __eq__(self, other: object) -> bool:
        return isinstance(other, FrameRanges) and self._runs == other._runs

    def __hash__(self) -> int:
        return hash(self._runs)

    def __str__(self) -> str:
        """The text that FrameRanges() reads."""
        return ",".join(str(run[0]) if len(run) == 1 else "{}-{}{}".format(
            run[0], run[-1], "x{}".format(run.step) if run.step > 1 else "") for run in self._runs)

    def __repr__(self) -> str:
        return "FrameRanges({!r})".format(str(self))


def _as_runs(frames: Iterable[int]) -> Iterable[range]:
    return [frames] if isinstance(frames, range) else (range(frame, frame + 1) for frame in frames)


def _united(runs: Iterable[range]) -> Tuple[int, ...]:
    triples: List[int] = []
    for run in runs:
        if run:
            low, high = min(run[0], run[-1]), max(run[0], run[-1])
            if low < -2**31 or high >= 2**31:
                raise OverflowError("frames {} to {} are not all whole numbers of 32 bits".format(low, high))
            triples += (low, high, abs(run.step) if low < high else 1)
    return _native.unite_runs(triples)


def _ranges(triples: Tuple[int, ...]) -> Tuple[range, ...]:
    return tuple(range(triples[i], triples[i + 1] + 1, triples[i + 2]) for i in range(0, len(triples), 3))
