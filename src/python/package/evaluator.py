"""An evaluator that can hand files back to the built-in rules."""

from typing import Tuple

from _HvMirefoldCoreUI import Halvern

from . import _native

__all__ = ["FileSequenceEvaluator"]


class FileSequenceEvaluator(Halvern.UI.FileSequenceEvaluator):
    """The evaluator of the native module: override evaluateFiles(files)."""

    def builtInRows(self, files: Tuple[Halvern.UI.FileInfo, ...],
                    split: bool = False) -> Tuple[Halvern.UI.FileInfo, ...]:
        """The rows that the built-in rules make of files, to be added to those of the override.

        split makes a row of each run of frames without a gap.
        """
        rows = []
        for pattern, hashes, frames, indexes in _native.group(files, split):
            members = tuple(files[index] for index in indexes)
            if pattern is None:
                rows.append(members[0])
                continue
            row = self.buildFileSequence(pattern, frames, members)
            _native.name_as_built_in(row, hashes)
            rows.append(row)
        return tuple(rows)
