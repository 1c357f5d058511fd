#!/usr/bin/python3
"""Makes the large images that the benches work on, from a scanned world map of 1689 (Debian's marble-data).

Four views of the map (plain, mirrored, turned, shifted) lie side by side, so that no row repeats within the 32 KB
that deflate looks back; scan noise makes the RGB set as hard as a real scan, 64 flat colours make the palette set
as easy as a printed topographic sheet.

    make_inputs.py FOLDER [WIDTH HEIGHT]      (default 20000 15000, which is 300 megapixels)
"""
import pathlib
import subprocess
import sys

import numpy
from osgeo import gdal
from PIL import Image

Image.MAX_IMAGE_PIXELS = None
gdal.UseExceptions()
_BAND = 512  # rows made at a time


def base_map():
    """The scanned map, twice as large."""
    listed = subprocess.run(["dpkg", "-L", "marble-data", "marble-qt-data"], capture_output=True, text=True, check=True).stdout
    found = [line for line in listed.splitlines() if "schagen1689" in line and line.endswith(".jpg")]
    source = max(found, key=lambda name: pathlib.Path(name).stat().st_size)
    scanned = Image.open(source).convert("RGB")
    return scanned.resize((scanned.width * 2, scanned.height * 2), Image.LANCZOS)


def views(base):
    """Four views of the same size as arrays."""
    plain = numpy.asarray(base)
    return [plain, plain[:, ::-1], plain[::-1, ::-1], numpy.roll(plain, (plain.shape[0] // 3, plain.shape[1] // 3), (0, 1))]


class Mosaic:
    """Gives any band of rows of the large image without holding all of it."""

    def __init__(self, parts, width):
        self._parts, self._width = parts, width

    def rows(self, top, count):
        height = self._parts[0].shape[0]
        lines = []
        for y in range(top, top + count):
            turn = y // height  # each storey begins with another view
            row = [self._parts[(turn + i) % len(self._parts)][y % height] for i in range(8)]
            lines.append(numpy.concatenate(row)[: self._width])
        return numpy.stack(lines)


def fill(dataset, mosaic, change):
    """Write all bands of rows; `change` makes them what the file holds."""
    for top in range(0, dataset.RasterYSize, _BAND):
        count = min(_BAND, dataset.RasterYSize - top)
        rows = change(mosaic.rows(top, count), top)
        if rows.ndim == 2:
            dataset.GetRasterBand(1).WriteArray(rows, 0, top)
        else:
            for band in range(3):
                dataset.GetRasterBand(band + 1).WriteArray(rows[:, :, band], 0, top)
    dataset.FlushCache()


def scan_noise(rows, top):
    """Noise of two levels, the same for the same rows."""
    noise = numpy.random.default_rng(top).normal(0, 2, rows.shape)
    return numpy.clip(rows + noise, 0, 255).astype(numpy.uint8)


def make_rgb(folder, mosaic, width, height):
    """RGB as LZW TIFF, and the same pixels as JPEG."""
    tiff = folder / "rgb_lzw.tif"
    dataset = gdal.GetDriverByName("GTiff").Create(str(tiff), width, height, 3, gdal.GDT_Byte,
                                                   ["COMPRESS=LZW", "INTERLEAVE=PIXEL", "BIGTIFF=IF_SAFER"])
    fill(dataset, mosaic, scan_noise)
    dataset = None
    gdal.Translate(str(folder / "rgb.jpg"), str(tiff), format="JPEG", creationOptions=["QUALITY=90"])


def make_palette(folder, mosaic, base, width, height):
    """64 flat colours as LZW TIFF."""
    flat = base.quantize(64, dither=Image.Dither.NONE)
    colours = flat.getpalette()[: 64 * 3]
    indexed = Mosaic(views(flat), width)
    dataset = gdal.GetDriverByName("GTiff").Create(str(folder / "pal_lzw.tif"), width, height, 1, gdal.GDT_Byte,
                                                   ["COMPRESS=LZW"])
    table = gdal.ColorTable()
    for i in range(64):
        table.SetColorEntry(i, tuple(colours[3 * i: 3 * i + 3]))
    dataset.GetRasterBand(1).SetColorTable(table)
    fill(dataset, indexed, lambda rows, top: rows)


def main():
    folder = pathlib.Path(sys.argv[1])
    width, height = (int(word) for word in sys.argv[2:4]) if len(sys.argv) > 3 else (20000, 15000)
    folder.mkdir(parents=True, exist_ok=True)
    base = base_map()
    mosaic = Mosaic(views(base), width)
    make_rgb(folder, mosaic, width, height)
    make_palette(folder, mosaic, base, width, height)


if __name__ == "__main__":
    main()
