"""Exports the sample sheets as the program does and looks at the folder with a browser and with GDAL.

    test_export.py ATLAVEX SHEETS    the companion command of the build under test, the drawn sheets
"""

import json
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np
import pyproj
from osgeo import gdal
from PIL import Image

from browser import Browser

gdal.UseExceptions()
Image.MAX_IMAGE_PIXELS = None
_ATLAVEX = None
_DRAWN = None
_WIDTH, _HEIGHT = 1200, 900  # of the browser's page
_FARTHEST_DRAG = 500
_SHEETS = ("sheet-rgb.tif", "polar.png", "sheet-palette.tif")  # in the order of the exports


class Exported(unittest.TestCase):
    """All tests look at one export of each sheet."""

    @classmethod
    def setUpClass(cls):
        cls._temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls._temporary.cleanup)
        cls.folder = Path(cls._temporary.name)
        shutil.copytree(_DRAWN, cls.folder, dirs_exist_ok=True)
        cls.truth = json.loads((cls.folder / "truth.json").read_text(encoding="utf-8"))
        sheet, polar = cls.truth["topographic"], cls.truth["polar"]
        cls._run("new", "lib.Atlavex")
        cls._run("add-map", "lib.Atlavex", "sheet-rgb.tif", "--grid", sheet["grid"], "--zone", str(sheet["zone"]),
                 "--worldfile", "sheet-rgb.tfw")
        cls._run("add-map", "lib.Atlavex", "sheet-palette.tif", "--grid", sheet["grid"], "--zone", str(sheet["zone"]),
                 "--worldfile", "sheet-palette.tfw")
        corners = [word for corner in polar["corners"] for word in ("--corner", corner)]
        cls._run("add-map", "lib.Atlavex", "polar.png", "--datum", polar["datum"], *corners)
        cls.exports = []
        for position in ("1", "3", "2"):
            target = cls.folder / f"tiles{position}"
            target.mkdir()
            cls._run("export-tiles", "lib.Atlavex", position, "--to", str(target))
            cls.exports.append(next(path.parent for path in [*target.glob("tiles.json"), *target.glob("*/tiles.json")]))

    @classmethod
    def _run(cls, *arguments):
        subprocess.run([_ATLAVEX, *arguments], cwd=cls.folder, check=True, stdout=subprocess.DEVNULL)

    def _three_crossings(self, kind):
        crossings = self.truth[kind]["crossings"]
        return crossings[0], crossings[len(crossings) // 2], crossings[-1]

    def _read_out(self, browser, size, crossing):
        """Brings the crossing's pixel into the middle by dragging at 100 %, points at it: its text and picture."""
        x, y = round(crossing["x"]), round(crossing["y"])
        left, top, width, height = browser.evaluate(
            "(box => [box.x, box.y, box.width, box.height])(document.getElementById('view').getBoundingClientRect())")
        browser.click("#fit")
        browser.click("#full")
        middle = (round(left + width / 2), round(top + height / 2))
        moves = [size[0] // 2 - x, size[1] // 2 - y]
        while any(moves):
            step = [max(-_FARTHEST_DRAG, min(_FARTHEST_DRAG, move)) for move in moves]
            start = [centre - part // 2 for centre, part in zip(middle, step)]
            browser.drag(start, [begin + part for begin, part in zip(start, step)])
            moves = [move - part for move, part in zip(moves, step)]
        browser.mouse("mouseMoved", middle[0] + 0.5, middle[1] + 0.5)
        browser.wait_for_pictures()
        return browser.evaluate("document.getElementById('place').textContent"), \
            browser.picture(middle[0] - 16, middle[1] - 16, 33, 33)

    def test_the_page_shows_the_sheet_and_its_printed_kilometres(self):
        sheet = self.truth["topographic"]
        with Image.open(self.folder / "sheet-rgb.tif") as picture, Browser(_WIDTH, _HEIGHT) as browser:
            pixels = picture.convert("RGB")
            browser.open(self.exports[0] / "index.html")
            for crossing in self._three_crossings("topographic"):
                x, y = crossing["x"], crossing["y"]
                text, shown = self._read_out(browser, (sheet["width"], sheet["height"]), crossing)
                self.assertEqual(text, f"Pixel {x}, {y}: E {crossing['easting']:.2f} m, N {crossing['northing']:.2f} m")
                drawn = pixels.crop((x - 16, y - 16, x + 17, y + 17))
                np.testing.assert_array_equal(np.asarray(shown), np.asarray(drawn))
            self._expect_no_network(browser, self.exports[0])

    def test_the_page_shows_the_polar_sheets_degrees(self):
        polar = self.truth["polar"]
        with Browser(_WIDTH, _HEIGHT) as browser:
            browser.open(self.exports[1] / "index.html")
            for crossing in self._three_crossings("polar"):
                text, _ = self._read_out(browser, (polar["width"], polar["height"]), crossing)
                latitude, longitude = (float(part.split("°")[0]) for part in text.split(": ")[1].split(", "))
                # A pixel is 718 m, half of it 0.0033 degrees of latitude, and of longitude here at most 0.016.
                self.assertAlmostEqual(latitude, crossing["latitude"], delta=0.0035)
                self.assertAlmostEqual(longitude, crossing["longitude"], delta=0.0175)
            self._expect_no_network(browser, self.exports[1])

    def _expect_no_network(self, browser, folder):
        inside = folder.as_uri() + "/"
        self.assertGreater(len(browser.requests), 3)
        self.assertEqual([url for url in browser.requests if not url.startswith(inside)], [])

    def test_gdal_finds_the_printed_kilometres(self):
        mosaic = gdal.Open(str(self.exports[0] / "map.vrt"))
        a = mosaic.GetGeoTransform()
        for crossing in self.truth["topographic"]["crossings"]:
            # GDAL counts from the upper left corner of a pixel, the table from its centre.
            x, y = crossing["x"] + 0.5, crossing["y"] + 0.5
            self.assertAlmostEqual(a[0] + a[1] * x + a[2] * y, crossing["easting"], delta=1e-6)
            self.assertAlmostEqual(a[3] + a[4] * x + a[5] * y, crossing["northing"], delta=1e-6)
        reference = mosaic.GetSpatialRef()
        self.assertEqual((reference.GetUTMZone(), reference.GetAttrValue("DATUM")), (33, "WGS_1984"))

    def test_gdal_finds_the_polar_sheets_degrees(self):
        mosaic, polar = gdal.Open(str(self.exports[1] / "map.vrt")), self.truth["polar"]
        self.assertTrue(mosaic.GetGCPSpatialRef().IsGeographic())
        proj, first = pyproj.Proj(polar["projection"]), polar["crossings"][0]
        origin = proj(first["longitude"], first["latitude"])
        checked = 0
        for point in mosaic.GetGCPs():
            if not (10 <= point.GCPX <= 50 and 66 <= point.GCPY <= 78):
                continue  # beyond the four corners
            east, north = (part - start for part, start in zip(proj(point.GCPX, point.GCPY), origin))
            # The corners stand half a pixel off at most, and GDAL counts from the corner of a pixel.
            self.assertAlmostEqual(first["x"] + east / polar["metres_per_pixel"], point.GCPPixel - 0.5, delta=1)
            self.assertAlmostEqual(first["y"] - north / polar["metres_per_pixel"], point.GCPLine - 0.5, delta=1)
            checked += 1
        self.assertGreater(checked, 20)

    def test_gdal_reads_the_sheets_from_the_mosaic_pixel_for_pixel(self):
        for export, name in zip(self.exports, _SHEETS):
            mosaic = gdal.Open(str(export / "map.vrt"))
            with Image.open(self.folder / name) as picture:
                self.assertEqual((mosaic.RasterXSize, mosaic.RasterYSize), picture.size)
                np.testing.assert_array_equal(self._colours(mosaic), np.asarray(picture.convert("RGB")))

    @staticmethod
    def _colours(mosaic):
        table = mosaic.GetRasterBand(1).GetColorTable()
        if table is None:
            return np.dstack([mosaic.GetRasterBand(band).ReadAsArray() for band in (1, 2, 3)])
        colours = np.array([table.GetColorEntry(entry)[:3] for entry in range(table.GetCount())], np.uint8)
        return colours[mosaic.GetRasterBand(1).ReadAsArray()]

    def test_the_largest_levels_tiles_are_the_sheet_pixel_for_pixel(self):
        for export, name in zip(self.exports, _SHEETS):
            description = json.loads((export / "tiles.json").read_text(encoding="utf-8"))
            largest = description["levels"][-1]
            whole = Image.new("RGB", (description["width"], description["height"]))
            for path in (export / str(largest["z"])).glob("*/*.png"):
                with Image.open(path) as tile:
                    whole.paste(tile.convert("RGB"), (int(path.parent.name) * description["tileWidth"],
                                                      int(path.stem) * description["tileHeight"]))
            with Image.open(self.folder / name) as picture:
                np.testing.assert_array_equal(np.asarray(whole), np.asarray(picture.convert("RGB")))


if __name__ == "__main__":
    _DRAWN = sys.argv.pop(2)
    _ATLAVEX = sys.argv.pop(1)
    unittest.main()
