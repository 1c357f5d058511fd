"""What the packages hold, and what Debian's checker says of them.

    test_packages.py FOLDER    in which the packages lie
"""

import gzip
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from packages import ROOT, field, package, said, unpack


class Packages(unittest.TestCase):
    def test_debians_checker_finds_nothing(self):
        for name in ("quorvant-studio", "libatlavex-dev"):
            with self.subTest(name):
                self.assertEqual(said("lintian", "--allow-root", "--fail-on", "error,warning", package(name)), "")

    def test_programs_and_packages_are_of_one_version(self):
        root = unpack(self, "quorvant-studio")
        version = field("quorvant-studio", "Version")
        self.assertEqual(said(root / "usr/bin/atlavex", "--version"), f"atlavex {version.removesuffix('-1')}\n")
        self.assertEqual(said(root / "usr/bin/quorvant-studio", "--version"),
                         f"Quorvant Studio {version.removesuffix('-1')}\n")
        self.assertEqual(field("libatlavex-dev", "Version"), version)
        self.assertIn(f"quorvant-studio ({version})",
                      gzip.open(root / "usr/share/doc/quorvant-studio/changelog.Debian.gz", "rt").readline())

    def test_what_the_programs_load_is_depended_upon(self):
        depended = field("quorvant-studio", "Depends")
        for library in ("libqt6widgets6", "libsqlite3-0", "libproj25", "libsodium23", "libtiff6", "libc6"):
            self.assertIn(library, depended)

    def test_the_manual_pages_are_formatted_without_a_complaint(self):
        root = unpack(self, "quorvant-studio")
        pages = sorted((root / "usr/share/man").glob("man?/*.gz"))
        self.assertEqual([page.name for page in pages], ["atlavex.1.gz", "quorvant-studio.1.gz", "atlavex.5.gz"])
        for page in pages:
            with self.subTest(page.name):
                done = subprocess.run(["groff", "-man", "-ww", "-Tutf8", "-z"], input=gzip.open(page).read(),
                                      capture_output=True, check=False)
                self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_no_link_of_a_page_leads_out_of_the_documentation(self):
        folder = unpack(self, "quorvant-studio") / "usr/share/doc/quorvant-studio"
        pages = sorted(folder.glob("*.md"))
        self.assertGreater(len(pages), 5)
        for page in pages:
            for link in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text(encoding="utf-8")):
                with self.subTest(page.name):
                    self.assertTrue((folder / link).exists(), link)

    def test_the_licence_is_said_to_be_none(self):
        root = unpack(self, "quorvant-studio", "libatlavex-dev")
        for name in ("quorvant-studio", "libatlavex-dev"):
            text = (root / "usr/share/doc" / name / "copyright").read_text(encoding="utf-8")
            self.assertIn("No licence chosen. All rights reserved.", text)
        self.assertTrue((root / "usr/share/doc/quorvant-studio/THIRD_PARTY.md").is_file())

    def test_the_icons_are_as_they_are_drawn(self):
        with tempfile.TemporaryDirectory() as folder:
            said(ROOT / "tools/draw-icons.sh", folder)
            drawn = sorted(Path(folder).glob("*/*.png"))
            self.assertEqual(len(drawn), 16)
            for picture in drawn:
                kept = ROOT / "packaging/icons" / picture.relative_to(folder)
                with self.subTest(kept.name):
                    compared = subprocess.run(["compare", "-metric", "AE", "-fuzz", "2%", kept, picture, "null:"],
                                              capture_output=True, text=True, check=False)
                    self.assertEqual(compared.stderr, "0")

    def test_an_installation_elsewhere_holds_nothing_of_debian(self):
        with tempfile.TemporaryDirectory() as folder:
            build = Path(os.environ["BUILD_FOLDER"])
            said("cmake", "--install", build, "--prefix", folder)
            names = {str(path.relative_to(folder)) for path in Path(folder).rglob("*") if path.is_file()}
            for name in ("bin/atlavex", "bin/quorvant-studio", "share/man/man5/atlavex.5.gz", "lib/libatlavex.a",
                         "share/bash-completion/completions/atlavex", "share/zsh/site-functions/_atlavex",
                         "share/applications/quorvant-studio.desktop", "include/atlavex/component/AtlavexLibrary.h"):
                self.assertIn(name, names)
            self.assertFalse([name for name in names if "ebian" in name or "lintian" in name or "vendor" in name])


if __name__ == "__main__":
    unittest.main()
