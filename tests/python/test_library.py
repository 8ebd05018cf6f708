import os
import pathlib
import re
import subprocess

import _HvMirefoldCoreUI

MODULE = _HvMirefoldCoreUI.__file__
SCRIPT = pathlib.Path(__file__).parents[2] / "examples" / "host" / "shots_in_dialog.py"


def output(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def test_asks_for_stable_python_and_a_few_libraries():
    needed = re.findall(r"NEEDED.*\[(.*)\]", output("readelf", "-d", MODULE))
    allowed = r"(libQt[56](Core|Gui|(OpenGL)?Widgets|OpenGL)|libc|libm|libstdc\+\+|libgcc_s|libpthread|libGL|libasan|libubsan)\.so\.\d"
    assert needed and [name for name in needed if not re.match(allowed, name)] == []
    undefined = re.findall(r"undefined symbol: (\w+)", output("ldd", "-r", MODULE, stderr=subprocess.STDOUT))
    declared = output("g++", "-E", "-DPy_LIMITED_API=0x03070000", f"-I{os.environ['PYTHON_HEADERS']}", "-xc++", "-",
                      input="#include <Python.h>")
    assert undefined and set(undefined) <= set(re.findall(r"\w+", declared))


def test_is_loaded_once_by_a_host_with_python_in_it(frames, tmp_path):
    script = tmp_path / "script.py"
    script.write_text(f"""if True:
        kept = __import__("runpy").run_path({str(SCRIPT)!r})
        assert len({{line.split()[-1] for line in open("/proc/self/maps") if "_HvMirefoldCoreUI" in line}}) == 1""")
    listed = output(os.environ["HOST_EXAMPLE"], script, frames, "--list")
    assert listed.splitlines() == ["notes.txt", "sh010 (3 files)", "sh020 (1 files)"]
