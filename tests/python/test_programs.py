import os
import pathlib
import subprocess

PROGRAMS = pathlib.Path(os.environ["PROGRAMS"])


def lines(program, *arguments, **variables):
    command = [PROGRAMS / program, *arguments]
    environment = {**os.environ, **variables}
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, env=environment).stdout.split("\n")[:-1]


def test_list_the_same_and_write_nothing(tmp_path):
    folder = tmp_path / "shots"
    home = tmp_path / "home"
    for made in (folder, home):
        made.mkdir()
    for frame in range(1001, 1101):
        (folder / f"shot.{frame}.exr").touch()
    (folder / "notes.txt").touch()
    expected = ["notes.txt", "shot.####.exr 1001-1100"]
    assert lines("seqls", folder) == expected
    for options in (["--list"], ["--list", "--screenshot", tmp_path / "picture.png"]):
        assert lines("browse", *options, folder, HOME=str(home), XDG_CONFIG_HOME=str(home / "config")) == expected
    assert (tmp_path / "picture.png").stat().st_size > 0
    assert list(home.rglob("*.ini")) + list(home.rglob("*.favorites")) == []
