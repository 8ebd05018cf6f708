#!/usr/bin/env python3
"""Reports the sequences below a folder that lack frames. Needs no display.

usage: missing_frames.py [FOLDER]

Prints a line for each such sequence and a sum. Ends with 1 if frames are missing, with 2 if a folder cannot be read.
"""

import os
import sys
from typing import Iterator

from HvMirefoldCoreUI import Entry, list_directory


def sequences(root: str) -> Iterator[Entry]:
    for folder, folders, _ in os.walk(root, onerror=complain):
        folders.sort()
        yield from (entry for entry in list_directory(folder) if entry.is_sequence)


def complain(error: OSError) -> None:
    raise error


def main(root: str) -> int:
    count = incomplete = 0
    try:
        for entry in sequences(root):
            count += 1
            if entry.missing:
                incomplete += 1
                pattern = os.fsencode(os.path.relpath(entry.pattern, root)).decode(errors="replace")
                print(f"{pattern}: has {entry.frames}, lacks {entry.missing} ({len(entry.missing)} frames)")
    except OSError as error:
        print(error, file=sys.stderr)
        return 2
    print(f"{count} sequences, {incomplete} incomplete")
    return 1 if incomplete else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else "."))
