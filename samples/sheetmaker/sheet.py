"""Where the topographic sheet lies: its size, its map body and the exact tie between pixels and the ground."""

from dataclasses import dataclass

import numpy as np
import pyproj

EPSG = 32633
METRES_PER_PIXEL = 2.5  # 0.1 mm of paper at 1:25 000
WIDTH, HEIGHT = 6000, 4000
KILOMETRE = 400  # pixels: a whole number, so that every crossing of the kilometre grid is a pixel centre


@dataclass(frozen=True)
class Body:
    """The part of the sheet that shows land; left, top, right and bottom are its outermost pixels."""

    left: int = 300
    top: int = 330
    width: int = 4440
    height: int = 3300

    @property
    def right(self):
        return self.left + self.width - 1

    @property
    def bottom(self):
        return self.top + self.height - 1


BODY = Body()
FIRST_EASTING, FIRST_NORTHING = 380_000.0, 5_158_000.0  # the first crossing inside the body
FIRST_PIXEL = (500, 530)

# A, D, B, E, C, F: the worldfile's order. C and F are the position of the centre of the upper-left pixel.
WORLDFILE = (METRES_PER_PIXEL, 0.0, 0.0, -METRES_PER_PIXEL,
             FIRST_EASTING - FIRST_PIXEL[0] * METRES_PER_PIXEL,
             FIRST_NORTHING + FIRST_PIXEL[1] * METRES_PER_PIXEL)

_TO_GRID = pyproj.Transformer.from_crs(4326, EPSG, always_xy=True)


def to_ground(x, y):
    """Return (easting, northing) of a sheet pixel."""
    a, d, b, e, c, f = WORLDFILE
    return a * np.asarray(x) + b * np.asarray(y) + c, d * np.asarray(x) + e * np.asarray(y) + f


def to_pixel(easting, northing):
    """Return the fractional sheet pixel of a grid position; valid because the sheet is north-up."""
    a, _, _, e, c, f = WORLDFILE
    return (np.asarray(easting) - c) / a, (np.asarray(northing) - f) / e


def to_degrees(x, y):
    """Return WGS84 (longitude, latitude) of a sheet pixel."""
    return _TO_GRID.transform(*to_ground(x, y), direction="INVERSE")


def from_degrees(longitude, latitude):
    """Return the fractional sheet pixel of a WGS84 position."""
    return to_pixel(*_TO_GRID.transform(longitude, latitude))


def crossings():
    """Yield (x, y, easting, northing) of each kilometre crossing inside the body, row by row."""
    for y in range(FIRST_PIXEL[1], BODY.bottom, KILOMETRE):
        for x in range(FIRST_PIXEL[0], BODY.right, KILOMETRE):
            easting, northing = to_ground(x, y)
            yield x, y, float(easting), float(northing)
