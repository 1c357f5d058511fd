"""Writes the sheets, their worldfiles and the table of what is truly printed where."""

import json

import pyproj

from . import grid, marker, polar, sheet, topographic

_DOTS_PER_INCH = 254  # 0.1 mm a pixel
_LZW = "tiff_lzw"
CORNER_SIZE = (2000, 1500)


def worldfile_text(numbers):
    """Return the six numbers, one a line, shortest exact form."""
    return "".join(f"{number!r}\n" for number in numbers)


def write_topographic(folder):
    """Write the topographic sheet in both colourings, each with its worldfile."""
    canvas, light = topographic.draw_sheet()
    smooth, flat = topographic.pictures(canvas, light)
    for name, picture, tags in (("sheet-rgb", smooth, {317: 2}), ("sheet-palette", flat, {})):
        picture.save(folder / f"{name}.tif", compression=_LZW, dpi=(_DOTS_PER_INCH,) * 2, tiffinfo=tags)
        (folder / f"{name}.tfw").write_text(worldfile_text(sheet.WORLDFILE), encoding="ascii")
    write_corner(flat, folder / "corner")


def write_corner(picture, folder):
    """Write the upper left corner of the flat sheet, small enough to be kept, with what is printed on it."""
    folder.mkdir(exist_ok=True)
    corner = picture.crop((0, 0, *CORNER_SIZE))
    corner.save(folder / "sheet.tif", compression=_LZW, dpi=(_DOTS_PER_INCH,) * 2)
    (folder / "sheet.tfw").write_text(worldfile_text(sheet.WORLDFILE), encoding="ascii")
    lines = ["# pixel x\tpixel y\teasting\tnorthing\tlongitude\tlatitude\n"]
    lines += ["\t".join(repr(row[name]) for name in ("x", "y", "easting", "northing", "longitude", "latitude")) + "\n"
              for row in _grid_truth() if row["x"] < CORNER_SIZE[0] and row["y"] < CORNER_SIZE[1]]
    (folder / "crossings.tsv").write_text("".join(lines), encoding="ascii")


def write_polar(folder):
    """Write the polar sheet."""
    polar.draw().save(folder / "polar.png")


def write_marker(folder):
    """Write the icon, once with opacity and once in a format that has none."""
    icon = marker.draw()
    icon.save(folder / "marker.png")
    marker.flat(icon).save(folder / "marker.bmp")


def _grid_truth():
    to_degrees = pyproj.Transformer.from_crs(sheet.EPSG, 4326, always_xy=True)
    rows = []
    for x, y, easting, northing in sheet.crossings():
        longitude, latitude = to_degrees.transform(easting, northing)
        rows.append({"x": x, "y": y, "easting": easting, "northing": northing,
                     "longitude": longitude, "latitude": latitude})
    return rows


def _graticule_truth():
    to_grid = pyproj.Transformer.from_crs(4326, sheet.EPSG, always_xy=True)
    rows = []
    for x, y, longitude, latitude in grid.graticule_crossings():
        easting, northing = to_grid.transform(longitude / 60, latitude / 60)
        rows.append({"x": x, "y": y, "easting": easting, "northing": northing,
                     "longitude": longitude / 60, "latitude": latitude / 60})
    return rows


def _topographic_truth():
    body = sheet.BODY
    return {
        "files": ["sheet-rgb.tif", "sheet-palette.tif"], "width": sheet.WIDTH, "height": sheet.HEIGHT,
        "grid": "UTM North (wgs84)", "zone": "33", "datum": "WGS84", "epsg": sheet.EPSG,
        "worldfile": list(sheet.WORLDFILE), "grid_line_colour": list(topographic.inks.GRID),
        "body": {"left": body.left, "top": body.top, "right": body.right, "bottom": body.bottom},
        "crossings": _grid_truth(), "graticule": _graticule_truth(),
    }


def _polar_truth():
    return {
        "files": ["polar.png"], "width": polar.WIDTH, "height": polar.HEIGHT, "datum": "WGS84",
        "projection": polar.PROJECTION, "metres_per_pixel": polar.METRES_PER_PIXEL,
        "corners": [f"{x},{y}={longitude},{latitude}" for x, y, longitude, latitude in polar.CORNERS],
        "corner_tolerance_pixels": polar.CORNER_TOLERANCE,
        "crossings": [{"x": x, "y": y, "longitude": float(longitude), "latitude": float(latitude)}
                      for x, y, longitude, latitude in polar.crossings()],
    }


def write_truth(folder):
    """Write truth.json: for each sheet its tie to the ground and the pixels of all printed crossings."""
    truth = {"pixels": "integer positions are pixel centres, counted from the upper left pixel 0, 0",
             "topographic": _topographic_truth(), "polar": _polar_truth()}
    (folder / "truth.json").write_text(json.dumps(truth, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
