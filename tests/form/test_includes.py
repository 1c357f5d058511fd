"""Puts wrong includes into a copy of the sources and looks whether tools/check-includes.py names each of them."""

import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

_ROOT = Path(__file__).resolve().parents[2]
_TOOL = _ROOT / "tools" / "check-includes.py"


class Includes(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = Path(temporary.name)
        (self.root / "tools").mkdir()
        shutil.copy(_ROOT / "tools" / "includes.txt", self.root / "tools")

    def _said_of(self, source, line):
        target = self.root / source
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text("#pragma once\n\n" + line + "\n", encoding="utf-8")
        done = subprocess.run([sys.executable, "-B", _TOOL, self.root], capture_output=True, text=True, check=False)
        return done.returncode, done.stdout

    def test_the_sources_keep_to_the_table(self):
        done = subprocess.run([sys.executable, "-B", _TOOL], capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stdout), (0, ""))

    def test_a_look_behind_the_door_is_named_with_file_line_and_rule(self):
        self.assertEqual(
            self._said_of("cli/Turn.cpp", '#include "component/tiles/TileCodec.h"'),
            (1, "cli/Turn.cpp:3: component/tiles/TileCodec.h: cli may not include component/tiles\n"))

    def test_a_room_that_uses_one_above_it_is_named(self):
        status, said = self._said_of("component/tiles/Strip.h", '#include "component/readers/OpenImage.h"')
        self.assertEqual(status, 1)
        self.assertIn("component/tiles may not include component/readers", said)

    def test_the_door_shows_nothing_that_stands_behind_it(self):
        status, said = self._said_of("component/AtlavexMap.h", '#include "component/scaling/Scaling.h"')
        self.assertEqual(status, 1)
        self.assertIn("component may not include component/scaling", said)

    def test_the_engine_and_the_command_know_no_window_system(self):
        for folder in ("base", "component", "component/render", "cli"):
            for header in ("<QString>", "<QtCore/QObject>"):
                with self.subTest(folder=folder, header=header):
                    status, said = self._said_of(f"{folder}/Text.h", f"#include {header}")
                    self.assertEqual(status, 1)
                    self.assertIn(f"{folder} knows no window system", said)

    def test_a_folder_that_nobody_entered_in_the_table_is_named(self):
        self.assertEqual(self._said_of("gadgets/New.h", "#include <string>"),
                         (1, "gadgets: stands not in tools/includes.txt\n"))

    def test_programs_do_not_include_tests(self):
        status, said = self._said_of("view/Zoom.cpp", '#include "tests/support/TempFolder.h"')
        self.assertEqual(status, 1)
        self.assertIn("tests/support is no folder that programs may include", said)


if __name__ == "__main__":
    unittest.main()
