"""The file itself: what it asks of its host, and that there is only one of it."""

import os
import pathlib
import re
import subprocess

import _HvMirefoldCoreUI

MODULE = _HvMirefoldCoreUI.__file__
PROJECT = pathlib.Path(__file__).parent.parent.parent


def output(*command, **options):
    return subprocess.run([str(part) for part in command], check=True, text=True, stdout=subprocess.PIPE,
                          **options).stdout


def symbols(path, *options):
    lines = output("nm", "-D", *options, path).splitlines()
    return {line.split()[-1].split("@")[0] for line in lines if line.split()[-2] not in "wv"}


def test_asks_for_stable_python_and_a_few_libraries():
    needed = re.findall(r"NEEDED.*\[(.*)\]", output("readelf", "-d", MODULE))
    allowed = re.compile(r"(libQt5(Core|Gui|Widgets|OpenGL)|libc|libm|libstdc\+\+|libgcc_s|libpthread|libGL)\.so\.\d")
    assert [name for name in needed if not allowed.match(name)] == []
    provided = set()
    for name, path in re.findall(r"(\S+) => (\S+)", output("ldd", MODULE)):
        if name in needed:
            provided |= symbols(path, "--defined-only")
    rest = symbols(MODULE, "--undefined-only") - provided
    declared = output("g++", "-E", "-DPy_LIMITED_API=0x03070000", f"-I{os.environ['PYTHON_HEADERS']}", "-xc++", "-",
                      input="#include <Python.h>")
    assert rest and [name for name in sorted(rest) if not re.search(rf"\b{name}\b", declared)] == []


def test_is_loaded_once_by_a_host_with_python_in_it(frames, tmp_path):
    examples = PROJECT / "examples" / "host"
    script = tmp_path / "script.py"
    script.write_text(f"""
import runpy
kept = runpy.run_path({str(examples / "shots_in_dialog.py")!r})
maps = [line.split()[-1] for line in open("/proc/self/maps") if "_HvMirefoldCoreUI" in line]
assert len(set(maps)) == 1, maps
""")
    host = os.environ["HOST_EXAMPLE"]
    assert output(host, script, frames, "--list").splitlines() == ["notes.txt", "sh010 (3 files)", "sh020 (1 files)"]
    script.write_text("raise ValueError('in the script')")
    failed = subprocess.run([host, str(script), str(frames), "--list"], stderr=subprocess.PIPE, text=True)
    assert failed.returncode == 2 and "in the script" in failed.stderr
