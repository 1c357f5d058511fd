"""Compiles every header that other programs may include alone, where there is no header of Qt or of a library."""

import concurrent.futures
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

_ROOT = Path(__file__).resolve().parents[2]
_COMPILER = sys.argv.pop(1)


def _said_of(header, root=_ROOT):
    """What the compiler says of a source that includes nothing but the header, with every warning on."""
    command = [_COMPILER, "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I", str(root),
               "-x", "c++", "-"]
    done = subprocess.run(command, input=f'#include "{header}"\n', capture_output=True, text=True, check=False)
    return "" if done.returncode == 0 else f"{header}: {done.stderr}"


def _headers():
    return sorted(path.relative_to(_ROOT).as_posix() for folder in ("base", "coordinates", "catalogue", "component")
                  for path in (_ROOT / folder).glob("*.h"))


class PublicHeaders(unittest.TestCase):
    def test_each_compiles_alone_and_without_qt(self):
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            said = [text for text in pool.map(_said_of, _headers()) if text]
        self.assertEqual(said, [])

    def test_all_of_the_door_are_looked_at(self):
        self.assertIn("component/AtlavexLibrary.h", _headers())
        self.assertGreater(len(_headers()), 40)

    def test_one_that_lacks_what_it_uses_is_named(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "Lacking.h").write_text("#pragma once\nstd::string Name();\n", encoding="utf-8")
            self.assertIn("Lacking.h", _said_of("Lacking.h", Path(folder)))

    def test_one_that_needs_qt_is_named(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "Window.h").write_text("#pragma once\n#include <QWidget>\n", encoding="utf-8")
            self.assertIn("QWidget", _said_of("Window.h", Path(folder)))


if __name__ == "__main__":
    unittest.main()
