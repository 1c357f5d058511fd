"""What a desktop makes of the package: the entry in menus, the kind of file, and what opens it.

    test_desktop.py FOLDER    in which the packages lie
"""

import os
import shutil
import sqlite3
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from packages import ROOT, said, unpack

sys.path.insert(0, str(ROOT / "tests" / "stories"))
from screen import Screen  # noqa: E402


class Desktop(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        """The package's files and the kinds of file that the system knows, as in one /usr."""
        cls.root = unpack(cls, "quorvant-studio")
        cls.share = cls.root / "usr/share"
        for kinds in Path("/usr/share/mime/packages").glob("*.xml"):
            shutil.copy(kinds, cls.share / "mime/packages")
        said("update-mime-database", cls.share / "mime")
        said("update-desktop-database", cls.share / "applications")

    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="Zwei Wörter ")
        self.addCleanup(temporary.cleanup)
        self.work = Path(temporary.name)
        self.environment = {"XDG_DATA_HOME": str(self.work / "share"), "XDG_DATA_DIRS": str(self.share),
                            "XDG_CONFIG_HOME": str(self.work), "HOME": str(self.work),
                            "PATH": f"{self.root}/usr/bin:{os.environ['PATH']}"}

    def library(self, name):
        file = self.work / name
        said(self.root / "usr/bin/atlavex", "new", file)
        said(self.root / "usr/bin/atlavex", "add-map", file, ROOT / "samples/sheet/marker.png")
        return file

    def kind_of(self, file):
        told = said("gio", "info", "-a", "standard::content-type", file, environment=self.environment)
        return told.rpartition("standard::content-type: ")[2].strip()

    def test_the_entries_are_valid(self):
        entry = self.share / "applications/quorvant-studio.desktop"
        self.assertEqual(said("desktop-file-validate", entry), "")
        # Some desktops append the file where the line does not ask for it, others do not.
        self.assertIn("\nExec=quorvant-studio %f\n", entry.read_text(encoding="utf-8"))
        said("appstreamcli", "validate", "--no-net", self.share / "metainfo/example.quorvant.studio.metainfo.xml")

    def test_a_library_is_known_by_its_name_in_any_case(self):
        for name in ("a.Atlavex", "a.atlavex", "A.ATLAVEX"):
            with self.subTest(name):
                self.assertEqual(self.kind_of(self.library(name)), "application/x-atlavex")
                (self.work / ("empty-" + name)).write_bytes(b"not yet written")
                self.assertEqual(self.kind_of(self.work / ("empty-" + name)), "application/x-atlavex")

    def test_a_library_is_known_by_its_content_to_programs_of_either_toolkit(self):
        self.assertEqual(self.kind_of(self.library("without an extension")), "application/x-atlavex")
        told = said(os.environ["KIND_OF_FILE"], self.work / "without an extension", environment=self.environment)
        self.assertEqual(told, "application/x-atlavex: Map library\n")

    def test_other_databases_stay_what_they_are(self):
        with sqlite3.connect(self.work / "other") as database:
            database.execute("CREATE TABLE t(x)")
        self.assertEqual(self.kind_of(self.work / "other"), "application/vnd.sqlite3")

    def test_the_kind_has_a_name_and_an_icon(self):
        kind = ElementTree.parse(self.share / "mime/application/x-atlavex.xml").getroot()
        names = {element.tag.rpartition("}")[2]: element for element in kind}
        self.assertEqual(kind.find("{*}comment").text, "Map library")
        icon = names["icon"].get("name")
        self.assertTrue((self.share / f"icons/hicolor/48x48/mimetypes/{icon}.png").is_file())

    def test_a_library_is_opened_by_the_editor_with_its_whole_name(self):
        library = self.library("Karte (1) für $HOME; 100 %f.Atlavex")
        heard = self.work / "heard"
        editor = self.work / "quorvant-studio"
        self.environment["PATH"] = f"{self.work}:{self.environment['PATH']}"
        editor.write_text(f'#!/bin/sh\nprintf "%s\\n" "$#" "$1" >"{heard}.new"; mv "{heard}.new" "{heard}"\n',
                          encoding="utf-8")
        editor.chmod(0o755)
        told = said("gio", "mime", "application/x-atlavex", environment=self.environment)
        self.assertIn("quorvant-studio.desktop", told)
        said("gio", "open", library, environment=self.environment)
        for _ in range(600):
            if heard.exists():
                break
            time.sleep(0.1)
        self.assertEqual(heard.read_text(encoding="utf-8"), f"1\n{library}\n")

    def test_the_editor_shows_the_library_and_its_icon(self):
        library = self.library("Höhenkarte Süd.Atlavex")
        with Screen() as screen:
            home = {key: screen.environment[key] for key in ("XDG_CONFIG_HOME", "HOME")}
            screen.environment.update({**self.environment, **home})
            screen.start("gio", "open", library)
            screen.wait_for_active(f"Quorvant Studio - {library}")
            window = screen.do("getactivewindow")
            told = said("xprop", "-id", window, "WM_CLASS", "_NET_WM_ICON", environment=screen.environment)
            self.assertIn('"quorvant-studio"', told)
            for size in (32, 48):
                self.assertIn(f"Icon ({size} x {size})", told)


if __name__ == "__main__":
    unittest.main()
