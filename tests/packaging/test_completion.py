"""Presses Tab in real shells and looks at what the command line becomes.

    test_completion.py ATLAVEX    the command of the build under test; both shells ask it
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from terminal import PRINTING, Shell

_ROOT = Path(__file__).resolve().parents[2]
_SCRIPTS = _ROOT / "packaging" / "completion"
_ATLAVEX = sys.argv.pop(1)


def _atlavex(*arguments):
    subprocess.run([_ATLAVEX, *map(str, arguments)], check=True, capture_output=True)


def _make_libraries(folder):
    """Libraries, images and folders whose names try a shell."""
    marker = _ROOT / "samples" / "sheet" / "marker.png"
    library = folder / "alps north.ATLAVEX"
    _atlavex("new", library)
    for name in ("Öst:Vest $1 (2)", "Twice", "Twice", "12"):
        _atlavex("add-map", library, marker, "--name", name)
    _atlavex("add-icon", library, marker, "--name", "Mountain hut")
    _atlavex("set", library, "icon", "1", "author of it=Smith")
    (folder / "key").write_text("secret", encoding="utf-8")
    _atlavex("new", folder / "sealed.Atlavex", "--key-file", folder / "key")
    _atlavex("add-map", folder / "sealed.Atlavex", marker, "--name", "Hidden", "--key-file", folder / "key")
    shutil.copy(marker, folder / "alpine.png")
    (folder / "tiles").mkdir()
    (folder / "scale").mkdir()  # a folder of the name of a command


class Completing:
    """What both shells do."""

    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = Path(temporary.name)
        _make_libraries(self.folder)
        programs = self.folder / ".programs"
        programs.mkdir()
        (programs / "atlavex").write_text(PRINTING.format(atlavex=_ATLAVEX), encoding="utf-8")
        (programs / "atlavex").chmod(0o755)
        environment = {"PATH": f"{programs}:{os.environ['PATH']}", "HOME": str(self.folder), "TERM": "dumb",
                       "LC_ALL": "C.UTF-8", "MAPKEY": "secret"}
        self.shell = Shell(self.COMMAND, environment, self.folder, self.SETUP)
        self.addCleanup(self.shell.close)

    def expect(self, typed, *arguments):
        with self.subTest(typed):
            self.assertEqual(self.shell.arguments_after("atlavex " + typed), list(arguments))

    def test_commands_and_options(self):
        self.expect("sca\t1", "scale", "1")
        self.expect("help reke\t", "help", "rekey")
        self.expect("info x --js\t", "info", "x", "--json")
        self.expect("locate x y 1 2 --wg\t--js\t", "locate", "x", "y", "1", "2", "--wgs84", "--json")

    def test_files_of_the_kind_that_is_wanted(self):
        self.expect("info al\t", "info", "alps north.ATLAVEX")
        self.expect("info 'al\t", "info", "alps north.ATLAVEX")
        self.expect("info ~/al\t", "info", str(self.folder / "alps north.ATLAVEX"))
        self.expect("add-map x.Atlavex alpi\t", "add-map", "x.Atlavex", "alpine.png")
        self.expect("export-tiles x 1 --to til\tnew", "export-tiles", "x", "1", "--to", "tiles/new")
        self.expect("info x --key-file=ke\t", "info", "x", "--key-file=key")

    def test_names_of_the_catalogue(self):
        self.expect("project --grid Swi\t--inv\t", "project", "--grid", "Swiss Grid (ch1903)", "--inverse")
        self.expect("project --grid \"Swiss G\t --inv\t", "project", "--grid", "Swiss Grid (ch1903)", "--inverse")
        self.expect("project --grid 'Swiss G\t", "project", "--grid", "Swiss Grid (ch1903)")
        self.expect("project --grid Swiss\\ G\t", "project", "--grid", "Swiss Grid (ch1903)")
        self.expect("project --grid=Swiss\\ G\t", "project", "--grid=Swiss Grid (ch1903)")
        self.expect("project --grid 'State Plane (nad27)' --zone 5005\t", "project", "--grid", "State Plane (nad27)",
                    "--zone", "5005 Alaska Zone 5")
        self.expect("shift --datum LUR\t", "shift", "--datum", "LUREF")

    def test_names_in_a_library(self):
        name = "Öst:Vest $1 (2)"
        self.expect("locate alps\\ north.ATLAVEX Ös\t", "locate", "alps north.ATLAVEX", name)
        self.expect("locate 'alps north.ATLAVEX' \"Ös\t", "locate", "alps north.ATLAVEX", name)
        self.expect("locate 'alps north.ATLAVEX' Öst:V\t", "locate", "alps north.ATLAVEX", name)
        self.expect("locate ~/alps\\ north.ATLAVEX 'Öst:V\t", "locate", str(self.folder / "alps north.ATLAVEX"), name)
        self.expect("locate alps\\ north.ATLAVEX na\t", "locate", "alps north.ATLAVEX", "name:12")
        self.expect("offset alps\\ north.ATLAVEX M\t", "offset", "alps north.ATLAVEX", "Mountain hut")
        self.expect("remove alps\\ north.ATLAVEX ic\tM\t", "remove", "alps north.ATLAVEX", "icon", "Mountain hut")
        self.expect("set alps\\ north.ATLAVEX icon 1 aut\tJones", "set", "alps north.ATLAVEX", "icon", "1",
                    "author of it=Jones")

    def test_a_sealed_library_is_not_asked_about(self):
        for typed in ("locate sealed.Atlavex H\t", "locate sealed.Atlavex --key-file key H\t",
                      "locate sealed.Atlavex --key-env MAPK\tH\t"):
            with self.subTest(typed):
                self.assertEqual(self.shell.arguments_after("atlavex " + typed)[-1].removeprefix("MAPKEY"), "H")

    def test_a_choice_is_listed(self):
        shown = self.shell.list_after("atlavex locate alps\\ north.ATLAVEX \t\t", "name:12")
        self.assertIn("Öst:Vest $1 (2)", shown)


class Bash(Completing, unittest.TestCase):
    COMMAND = ["bash", "--norc", "--noprofile"]
    SETUP = f"source '{_SCRIPTS}/atlavex.bash'"

    def test_letters_in_the_other_case_find_what_nothing_else_fits(self):
        self.expect("project --grid swi\t", "project", "--grid", "Swiss Grid (ch1903)")


@unittest.skipUnless(shutil.which("zsh"), "there is no zsh")
class Zsh(Completing, unittest.TestCase):
    COMMAND = ["zsh", "-f"]
    SETUP = f"fpath=('{_SCRIPTS}' $fpath); autoload -Uz compinit; compinit -D; unsetopt zle_bracketed_paste"


if __name__ == "__main__":
    unittest.main()
