#!/usr/bin/python3
"""Compares what `atlavex` says of the sample sheets with what was printed on them.

The table samples/made/truth.json was written by PROJ when the sheets were drawn.
"""
import json
import subprocess
import sys

import numpy
from PIL import Image

MADE = "samples/made/"
POLAR_MAP = "2"


def truth():
    """The table of what is printed where."""
    with open(MADE + "truth.json", encoding="utf-8") as file:
        return json.load(file)


def corners():
    """The polar sheet's corners as arguments, one a line."""
    for corner in truth()["polar"]["corners"]:
        print("--corner")
        print(corner)


def pairs(atlavex, command, library, which, values, *options):
    """What a command answers to pairs on its standard input."""
    text = "".join(f"{x!r} {y!r}\n" for x, y in values)
    done = subprocess.run([atlavex, command, library, which, *options], input=text, text=True, check=True,
                          capture_output=True)
    return numpy.array([[float(word) for word in line.split()] for line in done.stdout.splitlines()])


def report(what, found, expected, allowed, unit):
    """Say how far off the worst of many is; fail when that is too far."""
    worst = float(numpy.abs(found - expected).max())
    print(f"{what}: {len(expected)} crossings, at most {worst:.3g} {unit} off")
    if worst > allowed:
        sys.exit(f"That is more than {allowed} {unit}.")


def columns(rows, *names):
    """Two columns of a table of crossings."""
    return numpy.array([[row[name] for name in names] for row in rows])


def check(atlavex, library):
    """Every printed crossing of both sheets, there and back."""
    sheet, polar = truth()["topographic"], truth()["polar"]
    grid = sheet["crossings"]
    pixels = columns(grid, "x", "y")
    report("Kilometre grid, easting and northing", pairs(atlavex, "locate", library, "1", pixels.tolist()),
           columns(grid, "easting", "northing"), 1e-6, "m")
    report("Kilometre grid, longitude and latitude on WGS84",
           pairs(atlavex, "locate", library, "1", pixels.tolist(), "--wgs84"),
           columns(grid, "longitude", "latitude"), 1e-9, "degrees")
    report("Kilometre grid, back to pixels",
           pairs(atlavex, "find", library, "1", columns(grid, "easting", "northing").tolist()), pixels, 1e-6, "pixel")
    lines = columns(sheet["graticule"], "longitude", "latitude")
    report("Graticule, to pixels", pairs(atlavex, "find", library, "1", lines.tolist(), "--wgs84"),
           columns(sheet["graticule"], "x", "y"), 1e-4, "pixel")
    places = columns(polar["crossings"], "longitude", "latitude")
    report("Polar sheet, to pixels", pairs(atlavex, "find", library, POLAR_MAP, places.tolist()),
           columns(polar["crossings"], "x", "y"), 2 * polar["corner_tolerance_pixels"], "pixel")


def same(first, second):
    """Every pixel of two images."""
    one, other = numpy.asarray(Image.open(first)), numpy.asarray(Image.open(second))
    if one.shape != other.shape or not numpy.array_equal(one, other):
        sys.exit(f"{second} is not {first}.")
    print(f"{one.shape[1]} x {one.shape[0]} pixels, all the same")


if __name__ == "__main__":
    {"corners": corners, "check": check, "same": same}[sys.argv[1]](*sys.argv[2:])
