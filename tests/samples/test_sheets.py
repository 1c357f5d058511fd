"""Holds the sample sheets against GDAL, PROJ and their own table of printed crossings.

    test_sheets.py SHEETS    the drawn sheets
"""

import hashlib
import json
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
import pyproj
from osgeo import gdal
from PIL import Image

gdal.UseExceptions()
_ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(_ROOT / "samples"))
from sheetmaker import output  # noqa: E402

_SHEETS = None


def _digests(folder):
    return {path.relative_to(folder).as_posix(): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in sorted(Path(folder).rglob("*")) if path.is_file()}


class Sheets(unittest.TestCase):
    """All tests look at one set of sheets."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(_SHEETS)
        cls.truth = json.loads((cls.folder / "truth.json").read_text(encoding="utf-8"))
        cls.sheet, cls.polar = cls.truth["topographic"], cls.truth["polar"]

    def _rgb(self, name):
        with Image.open(self.folder / name) as picture:
            return np.asarray(picture.convert("RGB"))

    def test_a_second_run_writes_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as other:
            for write in output.write_polar, output.write_marker, output.write_truth:
                write(Path(other))
            again = _digests(other)
            self.assertEqual({name: digest for name, digest in _digests(self.folder).items() if name in again}, again)

    def test_the_corner_that_is_kept_is_drawn_today_as_it_was(self):
        """The large sheet, of which drawing it a second time would take too long, is the same on every machine."""
        drawn, kept = self.folder / "corner", _ROOT / "samples" / "sheet"
        with Image.open(drawn / "sheet.tif") as now, Image.open(kept / "sheet.tif") as then:
            self.assertEqual(now.getpalette(), then.getpalette())
            np.testing.assert_array_equal(np.asarray(now), np.asarray(then))
        for name in "sheet.tfw", "crossings.tsv":
            self.assertEqual((drawn / name).read_bytes(), (kept / name).read_bytes())

    def test_sizes_and_modes(self):
        for name, mode, size in (("sheet-rgb.tif", "RGB", (6000, 4000)), ("sheet-palette.tif", "P", (6000, 4000)),
                                 ("polar.png", "RGB", (3000, 2400)), ("marker.png", "RGBA", (32, 32)),
                                 ("marker.bmp", "RGB", (32, 32))):
            with self.subTest(name), Image.open(self.folder / name) as picture:
                self.assertEqual((picture.mode, picture.size), (mode, size))

    def test_tiffs_are_lzw_compressed(self):
        for name in self.sheet["files"]:
            source = gdal.Open(str(self.folder / name))
            self.assertEqual(source.GetMetadataItem("COMPRESSION", "IMAGE_STRUCTURE"), "LZW")

    def test_the_indexed_sheet_has_at_most_64_colours(self):
        with Image.open(self.folder / "sheet-palette.tif") as picture:
            self.assertLessEqual(len(picture.getcolors(256)), 64)

    def test_the_indexed_sheet_is_mostly_flat(self):
        with Image.open(self.folder / "sheet-palette.tif") as picture:
            numbers = np.asarray(picture)
        self.assertGreater((numbers[:, 1:] == numbers[:, :-1]).mean(), 0.8)

    def test_both_colourings_show_the_same_drawing(self):
        difference = np.abs(self._rgb("sheet-rgb.tif").astype(int) - self._rgb("sheet-palette.tif"))
        self.assertLess(difference.mean(), 6)

    def test_worldfiles_hold_six_numbers_and_gdal_reads_the_same(self):
        for name in self.sheet["files"]:
            lines = (self.folder / name).with_suffix(".tfw").read_text(encoding="ascii").splitlines()
            numbers = [float(line) for line in lines]
            self.assertEqual(numbers, self.sheet["worldfile"])
            a, d, b, e, c, f = numbers
            expected = (c - a / 2 - b / 2, a, b, f - d / 2 - e / 2, d, e)
            self.assertEqual(gdal.Open(str(self.folder / name)).GetGeoTransform(), expected)

    def test_each_crossing_lies_where_the_worldfile_says(self):
        a, d, b, e, c, f = self.sheet["worldfile"]
        self.assertGreaterEqual(len(self.sheet["crossings"]), 80)
        for row in self.sheet["crossings"]:
            self.assertIsInstance(row["x"], int)
            self.assertEqual((a * row["x"] + b * row["y"] + c, d * row["x"] + e * row["y"] + f),
                             (row["easting"], row["northing"]))
            self.assertEqual((row["easting"] % 1000, row["northing"] % 1000), (0, 0))

    def test_each_crossing_and_its_four_arms_have_the_grid_colour(self):
        for name in self.sheet["files"]:
            rgb = self._rgb(name)
            ink = np.array(self.sheet["grid_line_colour"])
            for row in self.sheet["crossings"]:
                for right, down in ((0, 0), (9, 0), (-9, 0), (0, 9), (0, -9)):
                    self.assertTrue((rgb[row["y"] + down, row["x"] + right] == ink).all(), (name, row))
                beside = [rgb[row["y"] + down, row["x"] + right] for right in (-1, 1) for down in (-1, 1)]
                self.assertFalse(any((pixel == ink).all() for pixel in beside), (name, row))

    def test_longitude_and_latitude_agree_with_proj(self):
        to_degrees = pyproj.Transformer.from_crs("EPSG:32633", "EPSG:4326", always_xy=True)
        for row in self.sheet["crossings"] + self.sheet["graticule"]:
            longitude, latitude = to_degrees.transform(row["easting"], row["northing"])
            self.assertAlmostEqual(longitude, row["longitude"], delta=1e-10)
            self.assertAlmostEqual(latitude, row["latitude"], delta=1e-10)

    def test_graticule_crossings_are_whole_minutes_at_the_pixel_named(self):
        a, _, _, e, c, f = self.sheet["worldfile"]
        self.assertGreaterEqual(len(self.sheet["graticule"]), 8)
        for row in self.sheet["graticule"]:
            self.assertAlmostEqual(a * row["x"] + c, row["easting"], delta=1e-4)
            self.assertAlmostEqual(e * row["y"] + f, row["northing"], delta=1e-4)
            for angle in (row["longitude"], row["latitude"]):
                self.assertAlmostEqual(angle * 60, round(angle * 60), delta=1e-9)

    def test_polar_corners_are_within_the_stated_tolerance(self):
        found = {(row["longitude"], row["latitude"]): (row["x"], row["y"]) for row in self.polar["crossings"]}
        self.assertEqual(len(self.polar["corners"]), 4)
        for text in self.polar["corners"]:
            pixel, position = ([float(number) for number in part.split(",")] for part in text.split("="))
            x, y = found[tuple(position)]
            self.assertLessEqual(max(abs(x - pixel[0]), abs(y - pixel[1])), self.polar["corner_tolerance_pixels"])

    def test_polar_crossings_agree_with_proj(self):
        proj = pyproj.Proj(self.polar["projection"])
        scale, rows = self.polar["metres_per_pixel"], self.polar["crossings"]
        first = rows[0]
        origin = np.array(proj(first["longitude"], first["latitude"]))
        for row in rows:
            east, north = (np.array(proj(row["longitude"], row["latitude"])) - origin) / scale
            self.assertAlmostEqual(row["x"] - first["x"], east, delta=1e-6)
            self.assertAlmostEqual(row["y"] - first["y"], -north, delta=1e-6)

    def test_polar_crossings_are_inked_where_they_are_said_to_be(self):
        rgb = self._rgb("polar.png").astype(int)
        paper = {66, 78, 10, 50}
        for row in self.polar["crossings"]:
            if {row["longitude"], row["latitude"]} & paper:
                continue  # the black frame runs there
            x, y = round(row["x"]), round(row["y"])
            red, green, blue = rgb[y, x]
            self.assertLess(green, min(red, blue), row)

    def test_meridians_of_the_polar_sheet_converge(self):
        pixels = {tuple(map(float, text.split("=")[1].split(","))): float(text.split(",")[0])
                  for text in self.polar["corners"]}
        (west, north), (_, south), (east, _), _ = pixels
        self.assertLess(pixels[east, north] - pixels[west, north], 0.6 * (pixels[east, south] - pixels[west, south]))

    def test_the_sheet_that_is_kept_is_the_corner_of_the_drawn_one(self):
        kept, drawn = Path(__file__).resolve().parents[2] / "samples" / "sheet", self.folder / "corner"
        with Image.open(kept / "sheet.tif") as one, Image.open(self.folder / "sheet-palette.tif") as whole:
            np.testing.assert_array_equal(np.asarray(one.convert("RGB")),
                                          np.asarray(whole.crop((0, 0, *one.size)).convert("RGB")))
        for name in ("crossings.tsv", "sheet.tfw"):
            self.assertEqual((kept / name).read_text(encoding="ascii"), (drawn / name).read_text(encoding="ascii"))

    def test_the_marker_is_partly_transparent(self):
        with Image.open(self.folder / "marker.png") as icon:
            levels = np.asarray(icon)[..., 3]
        self.assertEqual((levels.min(), levels.max()), (0, 255))


if __name__ == "__main__":
    _SHEETS = sys.argv.pop(1)
    unittest.main()
