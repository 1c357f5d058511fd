"""Builds the example against the unpacked development package, as its readers would, and runs it.

    test_engine.py FOLDER    in which the packages lie
"""

import shutil
import subprocess
import unittest

from packages import ROOT, said, unpack

_SHEET = ROOT / "samples" / "sheet"


class Engine(unittest.TestCase):
    def setUp(self):
        self.root = unpack(self, "libatlavex-dev", "quorvant-studio")
        self.prefix = self.root / "usr"
        self.example = self.root / "example"
        shutil.copytree(self.prefix / "share/doc/libatlavex-dev/examples", self.example)
        self.library = self.root / "first.Atlavex"
        atlavex = self.prefix / "bin/atlavex"
        said(atlavex, "new", self.library)
        said(atlavex, "add-map", self.library, _SHEET / "sheet.tif", "--name", "First sheet", "--grid",
             "UTM North (wgs84)", "--zone", "33", "--worldfile", _SHEET / "sheet.tfw")
        width, height = map(int, said("identify", "-format", "%w %h", _SHEET / "sheet.tif").split())
        self.middle = said(atlavex, "locate", self.library, "1", str((width - 1) / 2), str((height - 1) / 2), "--wgs84")

    def expect_the_middle(self, program):
        longitude, latitude, name = said(program, self.library).rstrip("\n").split(" ", 2)
        wanted = [float(number) for number in self.middle.split()]
        self.assertAlmostEqual(float(longitude), wanted[0], 4)
        self.assertAlmostEqual(float(latitude), wanted[1], 4)
        self.assertEqual(name, "First sheet")

    def test_the_example_is_built_with_cmake(self):
        build = self.root / "build"
        said("cmake", "-S", self.example, "-B", build, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={self.prefix}")
        said("cmake", "--build", build)
        self.expect_the_middle(build / "map_centres")

    def test_the_example_is_built_with_pkg_config(self):
        flags = said("pkg-config", "--cflags", "--libs", "atlavex",
                     environment={"PKG_CONFIG_PATH": str(self.prefix / "lib/pkgconfig"),
                                  "PKG_CONFIG_ALLOW_SYSTEM_CFLAGS": "1"}).split()
        self.assertIn(f"-I{self.prefix}/lib/pkgconfig/../../include/atlavex", flags)
        said("c++", "-std=c++20", "-Wall", "-Wextra", "-Werror", self.example / "map_centres.cpp", *flags, "-o",
             self.root / "map_centres")
        self.expect_the_middle(self.root / "map_centres")

    def test_each_header_compiles_with_no_other_than_those_installed(self):
        headers = sorted((self.prefix / "include/atlavex").rglob("*.h"))
        self.assertGreater(len(headers), 15)
        text = "".join(f'#include "{header.relative_to(self.prefix / "include/atlavex")}"\n' for header in headers)
        command = ["c++", "-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", "-I",
                   self.prefix / "include/atlavex", "-x", "c++", "-"]
        done = subprocess.run(command, input=text, capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")

    def test_a_version_that_is_not_this_one_is_refused(self):
        lists = (self.example / "CMakeLists.txt")
        lists.write_text(lists.read_text(encoding="utf-8").replace("Atlavex REQUIRED", "Atlavex 1.0 REQUIRED"),
                         encoding="utf-8")
        done = subprocess.run(["cmake", "-S", self.example, "-B", self.root / "refused", "-G", "Ninja",
                               f"-DCMAKE_PREFIX_PATH={self.prefix}"], capture_output=True, text=True, check=False)
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("2.31.0", done.stderr)


if __name__ == "__main__":
    unittest.main()
