import os
import pathlib
import re
import subprocess

HERE = pathlib.Path(__file__).parent
EXAMPLES = HERE.parents[1] / "examples"


def errors(*files):
    command = [os.environ["MYPY"], "--strict", "--no-color-output", "--hide-error-context", *files]
    lines = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True).stdout.splitlines()
    assert lines[-1].startswith(("Found", "Success")), lines
    return [line for line in lines if ": error: " in line]


def test_examples_have_no_error():
    tools = [*EXAMPLES.glob("python/*.py"), *EXAMPLES.glob("host/*.py"), *EXAMPLES.glob("guide/*.py")]
    # Written without types, and for a binding without them.
    assert errors(*[tool for tool in tools if tool.name not in ("unattended.py", "pyside_host.py")]) == []


def test_finds_each_wrong_call_and_no_other():
    script = HERE / "calls.py"
    wrong = [number for number, line in enumerate(script.read_text().splitlines(), 1) if line.endswith("# wrong")]
    found = [re.match(r".*/calls\.py:(\d+): error", line) for line in errors(script)]
    assert len(wrong) >= 10 and sorted({int(match[1]) for match in found}) == wrong
