"""Runs the commands of the README's first library and compares what they print with what the README says.

    test_readme.py ATLAVEX    the companion command of the build under test
"""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

_README = Path(__file__).resolve().parents[2] / "README.md"
_ATLAVEX = None


def _said():
    """Each command of the README as (text for the shell, lines that it is said to print), in order."""
    lines = [line[4:] for line in _README.read_text(encoding="utf-8").splitlines() if line.startswith("    ")]
    commands = []
    continues = False
    for line in lines:
        text = re.sub(r"\s+#\s.*$", "", line).rstrip()
        if continues:
            commands[-1][0] += " " + text.strip().removesuffix("\\")
        elif text.startswith("$ "):
            commands.append([text[2:].removesuffix("\\"), []])
        elif commands and re.match(r"[-\d]", text):
            commands[-1][1].append(text)
        continues = text.endswith("\\")
    return commands


class Readme(unittest.TestCase):
    def test_each_command_prints_what_the_page_says(self):
        commands = [command for command in _said() if "build/atlavex" in command[0]]
        self.assertGreater(sum(bool(printed) for _, printed in commands), 2)
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "build").mkdir()
            (Path(folder) / "build" / "atlavex").symlink_to(_ATLAVEX)
            (Path(folder) / "samples").symlink_to(_README.parent / "samples")
            for text, printed in commands:
                done = subprocess.run(["bash", "-c", text], cwd=folder, capture_output=True, text=True, check=False)
                with self.subTest(text):
                    self.assertEqual((done.returncode, done.stderr), (0, ""))
                    if printed:
                        self.assertEqual(done.stdout.splitlines(), printed)


if __name__ == "__main__":
    _ATLAVEX = sys.argv.pop(1)
    unittest.main()
