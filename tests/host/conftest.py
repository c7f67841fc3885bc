"""The host, run as a user runs it. The environment says which one:

TERVAN_HOST    the program; without it the x64 build of this checkout
TERVAN_RUNNER  what stands before it on the command line, and what Wine needs
"""

import dataclasses
import json
import os
import pathlib
import shlex
import subprocess
import tempfile

import pytest

ROOT = pathlib.Path(__file__).parents[2]
HOST = pathlib.Path(os.environ.get("TERVAN_HOST", ROOT / "build/x64/tervan-host.exe"))
RUNNER = shlex.split(os.environ.get("TERVAN_RUNNER", f"{ROOT}/scripts/wine-run x64 run"))
# For programs with windows: the purpose of wine-run that, with no DISPLAY, brings a desktop of its own.
WINDOW_RUNNER = ["show" if word == "run" else word for word in RUNNER]


@dataclasses.dataclass
class Result:
    code: int
    out: str
    err: str

    def json(self):
        assert (self.code, self.err) == (0, "")
        return json.loads(self.out)


def without_wine(text):
    """Wine's services share our stderr and may have something to say. (A crash of the host shows in its exit code.)"""
    return "".join(line for line in text.splitlines(keepends=True) if not line.startswith("wine: "))


class Host:
    """Runs commands in the folder of the test."""

    def __init__(self, folder):
        self.folder = folder

    def start(self, *arguments, program=HOST, runner=RUNNER, out=subprocess.DEVNULL, err=subprocess.DEVNULL):
        command = [*runner, str(program), *map(str, arguments)]
        env = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        return subprocess.Popen(command, cwd=self.folder, env=env, stdin=subprocess.DEVNULL, stdout=out, stderr=err)

    def run(self, *arguments, program=HOST, runner=RUNNER, timeout_s=120):
        # Into files, not pipes: Wine's server inherits them and lives on for seconds, and a pipe would be waited for.
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
            code = self.start(*arguments, program=program, runner=runner, out=out, err=err).wait(timeout_s)
            out.seek(0)
            err.seek(0)
            return Result(code, out.read().decode(), without_wine(err.read().decode()))

    def show(self, *arguments):
        """A program with windows, which has to wait for the desktop: it belongs to one at a time."""
        return self.run(*arguments, runner=WINDOW_RUNNER, timeout_s=900)

    def render(self, *arguments):
        """One that must succeed."""
        result = self.run("render", *arguments)
        assert (result.code, result.err) == (0, "")
        return result

    def refuse(self, code, *arguments, program=HOST):
        """One that must fail with this code and one sentence; gives the sentence."""
        result = self.run(*arguments, program=program)
        assert result.code == code, result
        assert result.out == ""
        lines = result.err.splitlines()
        assert len(lines) == 1 and lines[0].startswith("tervan-host: "), result.err
        return lines[0].removeprefix("tervan-host: ")

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content)
        return path

    def read(self, name):
        return (self.folder / name).read_bytes()

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())


@pytest.fixture
def host(tmp_path):
    return Host(tmp_path)
