import os
import pathlib
import re
import subprocess

import pytest

HERE = pathlib.Path(__file__).parent
EXAMPLES = HERE.parents[1] / "examples"
CHECKER = os.environ["CHECKER"]
OPTIONS = {"mypy": ["--strict", "--no-color-output", "--hide-error-context"],
           "pyright": ["--pythonpath", os.environ["PYTHON"]]}
pytestmark = pytest.mark.skipif(not os.path.exists(CHECKER), reason="the type checker is not installed")


def errors(*files):
    command = [CHECKER, *OPTIONS[os.path.basename(CHECKER)], *files]
    text = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True).stdout
    assert re.search(r"^(Found|Success|\d+ errors?)\b", text, re.MULTILINE), text
    return re.findall(r"([\w.]+):(\d+)(?::\d+ -|:) error: (.*)", text)


def test_examples_have_no_error():
    assert errors(*[*EXAMPLES.glob("python/*.py"), *EXAMPLES.glob("host/*.py"), *EXAMPLES.glob("guide/*.py")]) == []


def test_finds_each_wrong_call_and_no_other():
    script = HERE / "calls.py"
    wrong = [number for number, line in enumerate(script.read_text().splitlines(), 1) if line.endswith("# wrong")]
    assert len(wrong) >= 10 and sorted({int(line) for _, line, _ in errors(script)}) == wrong
