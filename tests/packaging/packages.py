"""The two packages of the build under test, unpacked into a folder as dpkg would unpack them."""

import os
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FOLDER = Path(sys.argv.pop(1))  # in which the packages lie


def package(name):
    """The file of the package, of which there is one."""
    (found,) = FOLDER.glob(f"{name}_*.deb")
    return found


def unpack(test, *names):
    """A folder, gone when the test (or class of tests) is done, in which the packages' files stand as under /."""
    temporary = tempfile.TemporaryDirectory()
    (test.addClassCleanup if isinstance(test, type) else test.addCleanup)(temporary.cleanup)
    for name in names:
        subprocess.run(["dpkg-deb", "-x", package(name), temporary.name], check=True)
    return Path(temporary.name)


def field(name, which):
    """A field of the package's description."""
    return said("dpkg-deb", "-f", package(name), which).strip()


def said(*command, **more):
    """What a command prints that must succeed."""
    environment = {**os.environ, "LC_ALL": "C.UTF-8", **more.pop("environment", {})}
    done = subprocess.run(list(map(str, command)), env=environment, capture_output=True, text=True, check=False, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout
