"""The polar sheet: an equidistant conic map whose meridians converge and whose parallels are arcs."""

import numpy as np
import pyproj

from . import inks
from .body import window
from .canvas import Canvas
from .curves import contour_lines
from .lettering import write
from .raster import Raster, spectral_noise

WIDTH, HEIGHT = 3000, 2400
WEST, EAST, SOUTH, NORTH = 10, 50, 66, 78  # degrees
LINE_STEP = {"meridian": 5, "parallel": 2}  # degrees between printed lines
CORNER_TOLERANCE = 0.0125  # pixels from the true corners to the whole pixels below
SEED = 7812

_NAMES = (  # text, longitude, latitude, sea or land, size, spacing
    ("MARE BOREALE", 15.6, 70.9, "sea", 50, 10),
    ("Íssund", 31.6, 71.0, "sea", 38, 4),
    ("Kvítflói", 36.5, 69.0, "sea", 38, 4),
    ("Øykjahaf", 24.5, 76.7, "sea", 44, 6),
    ("HVÍTALAND", 22, 73.5, "land", 40, 10),
    ("Sölvmark", 22.5, 69.6, "land", 36, 4),
    ("ØSTRALAND", 42.6, 73.4, "land", 40, 10),
    ("STÓRHEIÐ", 42, 67.6, "land", 40, 10),
    ("Łęgøya", 33.2, 75.4, "land", 24, 0),
    ("Smáey", 38.6, 70.7, "land", 24, 0),
    ("Jökulnes", 39.4, 77.3, "land", 30, 2),
)

# On a sphere a degree of latitude has the same length everywhere on this projection, and a degree of longitude turns
# by the same angle: straight meridians through one point and evenly spaced arcs, exactly. The standard parallels and
# the scale were picked so that the four corners come within CORNER_TOLERANCE of whole pixels.
PROJECTION = "+proj=eqdc +lat_1=70 +lat_2=75 +lat_0=72 +lon_0=30 +R=6371000"
METRES_PER_PIXEL = 718.17
_CENTRE_X, _CORNER_Y = 1500, 225 - 0.012

# Upper left, lower left, upper right, lower right: pixel x, pixel y, longitude, latitude.
CORNERS = ((865, 225, WEST, NORTH), (258, 1981, WEST, SOUTH), (2135, 225, EAST, NORTH), (2742, 1981, EAST, SOUTH))

_PROJ = pyproj.Proj(PROJECTION)
_CORNER_NORTHING = _PROJ(WEST, NORTH)[1]
_FRAME_DEGREES = 0.22  # width of the frame's ladder


def to_pixel(longitude, latitude):
    """Return the fractional pixel of a position in degrees."""
    easting, northing = _PROJ(np.asarray(longitude, float), np.asarray(latitude, float))
    return (_CENTRE_X + np.asarray(easting) / METRES_PER_PIXEL,
            _CORNER_Y + (_CORNER_NORTHING - np.asarray(northing)) / METRES_PER_PIXEL)


def crossings():
    """Yield (x, y, longitude, latitude) of each crossing of printed lines, the frame's own included."""
    for latitude in range(SOUTH, NORTH + 1, LINE_STEP["parallel"]):
        for longitude in range(WEST, EAST + 1, LINE_STEP["meridian"]):
            x, y = to_pixel(longitude, latitude)
            yield float(x), float(y), longitude, latitude


def _meridian(longitude, south=SOUTH, north=NORTH):
    return np.column_stack(to_pixel(np.full(2, longitude), np.array([south, north])))


def _parallel(latitude, west=WEST, east=EAST):
    longitudes = np.linspace(west, east, 400)
    return np.column_stack(to_pixel(longitudes, np.full(400, latitude)))


def _outline(outset=0.0):
    """Return the frame as a closed line, outset degrees of latitude outside the sheet's corners."""
    aside = outset * 2.6  # about as wide on the ground as outset is high, at the sheet's middle latitude
    west, east, south, north = WEST - aside, EAST + aside, SOUTH - outset, NORTH + outset
    return np.concatenate([_parallel(north, west, east), _meridian(east, south, north)[::-1],
                           _parallel(south, west, east)[::-1], _meridian(west, south, north)])


def _relief(rng):
    noise = spectral_noise(rng, (HEIGHT // 4 + 2, WIDTH // 4 + 2), 320, 1.75)
    row, column = np.indices(noise.shape)
    # Land to the south, open sea to the north-west, so that the sheet has both wherever chance puts the islands.
    tilt = 0.9 * (row / noise.shape[0] - 0.58) + 0.35 * (column / noise.shape[1] - 0.5)
    return Raster(noise + tilt - 0.1, 4.0, 0.0)


def _land(canvas, relief):
    size = canvas.image.size
    for level, ink in ((0.0, "meadow"), (0.6, "open"), (1.35, "built"), (1.95, "white")):
        grey = relief.with_values(128 + 90 * (relief.values - level))
        mask = window(grey, (WIDTH, HEIGHT))(size).point(lambda value: 255 if value >= 128 else 0)
        canvas.fill_mask(mask, ink)
    for level, points in contour_lines(relief, levels=[-1.0, -0.4, 0.0, 0.6, 1.35, 1.95]):
        ink = "shore" if level <= 0 else "contour"
        canvas.line(points, 2 if level == 0 else 1, ink)


def _clip_to_frame(canvas):
    """Lay paper over everything outside the frame."""
    inside = Canvas(WIDTH, HEIGHT, "paper")
    inside.polygon(_outline(), "black")
    paper = inside.image.point([255 if number == inks.NUMBER["paper"] else 0 for number in range(256)])
    canvas.fill_mask(paper, "paper")


def _graticule(canvas):
    for longitude in range(WEST, EAST + 1, LINE_STEP["meridian"]):
        canvas.line(_meridian(longitude), 1.5, "graticule")
    for latitude in range(SOUTH, NORTH + 1, LINE_STEP["parallel"]):
        canvas.line(_parallel(latitude), 1.5, "graticule")


def _ladder(canvas):
    """Draw a bar for every other degree along all four sides."""
    middle = _FRAME_DEGREES / 2
    for longitude in range(WEST, EAST, 2):
        for latitude in (SOUTH - middle, NORTH + middle):
            canvas.line(_parallel(latitude, longitude, longitude + 1), 14, "black")
    for latitude in range(SOUTH, NORTH, 2):
        for longitude in (WEST - 2.6 * middle, EAST + 2.6 * middle):
            canvas.line(_meridian(longitude, latitude, latitude + 1), 14, "black")


def _lean(longitude):
    """Return the angle in degrees, counter-clockwise, by which a meridian leans from upright."""
    foot, head = (np.array(to_pixel(longitude, latitude)) for latitude in (SOUTH, NORTH))
    return float(np.degrees(np.arctan2(foot[0] - head[0], foot[1] - head[1])))


def _numbers(canvas):
    style = {"size": 30, "ink": "black"}
    for longitude in range(WEST, EAST + 1, LINE_STEP["meridian"]):
        for latitude in (SOUTH - 0.62, NORTH + 0.62):
            x, y = to_pixel(longitude, latitude)
            write(canvas, x, y, f"{longitude}° E", angle=_lean(longitude), **style)
    for latitude in range(SOUTH, NORTH + 1, LINE_STEP["parallel"]):
        for longitude, side in ((WEST, -1), (EAST, 1)):
            x, y = to_pixel(longitude, latitude)
            turn = np.radians(_lean(longitude))
            write(canvas, x + side * 88 * np.cos(turn), y - side * 88 * np.sin(turn), f"{latitude}° N",
                  angle=_lean(longitude), **style)


def _names(canvas):
    sea = {"face": "serif", "ink": "shore", "slant": True}
    land = {"face": "sans", "ink": "black", "halo": 3, "ground": "open"}
    for name, longitude, latitude, kind, size, spacing in _NAMES:
        x, y = to_pixel(longitude, latitude)
        style = sea if kind == "sea" else land
        write(canvas, x, y, name, angle=_lean(longitude), size=size, spacing=spacing, **style)


def _margin(canvas):
    write(canvas, 70, 96, "POLAR SHEET", face="serifbold", size=64, anchor="l", spacing=4)
    for line, text in enumerate(["Equidistant conic projection,", "standard parallels 70° and 75° north",
                                 "Longitude and latitude:", "WGS84 degrees", f"One pixel is {METRES_PER_PIXEL} m",
                                 "Invented coasts.", "Not for navigation."]):
        write(canvas, 70, 190 + 44 * line, text, size=27, anchor="l")
    canvas.frame(30, 30, WIDTH - 31, HEIGHT - 31, 2, "black")


def draw():
    """Return the polar sheet as an RGB picture."""
    canvas = Canvas(WIDTH, HEIGHT, "water")
    _land(canvas, _relief(np.random.default_rng(SEED)))
    _clip_to_frame(canvas)
    _graticule(canvas)
    _names(canvas)
    canvas.line(_outline(), 3, "black")
    _ladder(canvas)
    canvas.line(_outline(_FRAME_DEGREES), 3, "black")
    _numbers(canvas)
    _margin(canvas)
    canvas.image.putpalette(inks.image_palette())
    return canvas.image.convert("RGB").reduce(2)
