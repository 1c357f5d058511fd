"""The sheet's margin: title, legend, scale bar, north arrow and notes."""

import numpy as np
import pyproj

from . import sheet, symbols
from .lettering import write
from .places import TOWN

_LEFT, _RIGHT = 4930, 5860
SHEET_NUMBER = "5146-II"
DATUM_NOTE = ["Universal Transverse Mercator, zone 33 North", "Datum and ellipsoid: WGS84 (EPSG:32633)",
              "Blue lines: kilometre grid, metres east and north", "Violet lines: latitude and longitude, every 2′",
              "Heights in metres above the sea", "Contour interval 20 m, strong lines every 100 m"]
_CLOSING_NOTE = ["Invented landscape, drawn to try map programs.", "No place, name or height is real."]


def convergence():
    """Return the angle in degrees from true north to grid north in the middle of the sheet, east positive."""
    body = sheet.BODY
    longitude, latitude = sheet.to_degrees(body.left + body.width / 2, body.top + body.height / 2)
    return float(pyproj.Proj(sheet.EPSG).get_factors(longitude, latitude).meridian_convergence)


def _title(canvas):
    body = sheet.BODY
    write(canvas, body.left - 78, 96, "TOPOGRAPHIC MAP", face="serifbold", size=58, anchor="l", spacing=4)
    write(canvas, body.left - 78, 170, "1 : 25 000", face="serif", size=40, anchor="l")
    write(canvas, body.left + body.width / 2, 120, TOWN.upper(), face="serifbold", size=84, spacing=8)
    write(canvas, body.right + 78, 96, f"Sheet {SHEET_NUMBER}", face="serifbold", size=58, anchor="r")
    write(canvas, body.right + 78, 170, "Edition 1", face="serif", size=40, anchor="r")


def _wave(x, y, length, height=10):
    along = np.linspace(0, 1, 40)
    return np.column_stack([x + length * along, y + height * np.sin(along * 5.5)])


def _block(ink):
    def draw(canvas, x, y):
        canvas.block(x, y - 24, x + 130, y + 24, "black")
        canvas.block(x + 2, y - 22, x + 128, y + 22, ink)
    return draw


def _road(kind):
    def draw(canvas, x, y):
        roads = [(kind, _wave(x, y, 130))]
        symbols.road_casings(canvas, roads)
        symbols.road_fillings(canvas, roads)
    return draw


def _lines(ink, width):
    return lambda canvas, x, y: canvas.line(_wave(x, y, 130), width, ink)


def _houses(canvas, x, y):
    for dx, dy, w, h in ((10, -14, 12, 8), (34, -16, 9, 7), (60, -12, 14, 8),
                         (22, 8, 10, 8), (52, 10, 9, 7), (90, 2, 12, 8)):
        left, top = x + dx, y + dy
        canvas.polygon([(left, top), (left + w, top), (left + w, top + h), (left, top + h)], "black")


def _river(canvas, x, y):
    symbols.stream(canvas, _wave(x, y, 130), 12)
    symbols.stream_surface(canvas, _wave(x, y, 130), 12)


def _straight(ink, width):
    return lambda canvas, x, y: canvas.line([(x, y), (x + 130, y)], width, ink)


_ENTRIES = [
    ("Main road", _road("road")),
    ("Minor road", _road("lane")),
    ("Street", _road("street")),
    ("Railway", lambda canvas, x, y: symbols.railway(canvas, _wave(x, y, 130))),
    ("Railway halt (Bf.)", lambda canvas, x, y: symbols.station(canvas, x + 65, y, 0)),
    ("Houses", _houses),
    ("Church", lambda canvas, x, y: symbols.church(canvas, x + 65, y + 6)),
    ("Built-up area", _block("built")),
    ("River", _river),
    ("Stream", _lines("shore", 2)),
    ("Lake", _block("water")),
    ("Dam", lambda canvas, x, y: symbols.dam(canvas, x + 65, y, 0, 44)),
    ("Forest", _block("forest")),
    ("Meadow", _block("meadow")),
    ("Open land", _block("open")),
    ("Contour, 20 m", _lines("contour", 1)),
    ("Strong contour, 100 m", _lines("index", 1.5)),
    ("Surveyed summit", lambda canvas, x, y: symbols.triangulation_point(canvas, x + 65, y)),
    ("Spot height", lambda canvas, x, y: symbols.spot_height(canvas, x + 65, y)),
    ("Kilometre grid", _straight("grid", 1)),
    ("Latitude, longitude", _straight("graticule", 1.5)),
]


def _signs(canvas, top):
    write(canvas, _LEFT, top, "LEGEND", face="serifbold", size=46, anchor="l", spacing=4)
    for number, (text, draw) in enumerate(_ENTRIES):
        y = top + 96 + 100 * number
        draw(canvas, _LEFT + 10, y)
        write(canvas, _LEFT + 190, y, text, size=30, anchor="l")
    return top + 96 + 100 * len(_ENTRIES)


def _arrow(canvas, x, y, degrees, length, text, ink):
    turn = np.radians(degrees)
    ahead, aside = np.array([np.sin(turn), -np.cos(turn)]), np.array([np.cos(turn), np.sin(turn)])
    foot = np.array([x, y])
    head = foot + length * ahead
    canvas.line([foot, head], 3, ink)
    canvas.polygon([head + 34 * ahead, head + 11 * aside, head - 11 * aside], ink)
    return write(canvas, *(head + 62 * ahead), text, face="bold", size=28, ink=ink)


def _north(canvas, top):
    """Draw true and grid north; the angle between them is drawn ten times as large so that it can be seen."""
    middle, foot = _LEFT + 190, top + 330
    _arrow(canvas, middle, foot, 0, 190, "GN", "grid")
    _arrow(canvas, middle, foot, -10 * convergence(), 150, "N", "black")
    angle = abs(convergence())
    degrees, minutes = divmod(round(angle * 60), 60)
    for line, text in enumerate(["N: true north", "GN: grid north", f"Convergence {degrees}°{minutes:02d}′",
                                 "(drawn tenfold)"]):
        write(canvas, _LEFT + 400, top + 130 + 48 * line, text, size=29, anchor="l")


def _notes(canvas, top):
    for line, text in enumerate(DATUM_NOTE):
        write(canvas, _LEFT, top + 50 * line, text, size=28, anchor="l")
    top += 50 * len(DATUM_NOTE) + 24
    for line, text in enumerate(_CLOSING_NOTE):
        write(canvas, _LEFT, top + 50 * line, text, face="bold", size=27, anchor="l")


def _scale_bar(canvas):
    """Draw a bar of four kilometres with the first one, left of zero, in tenths."""
    body = sheet.BODY
    zero, y = body.left + body.width // 2 - 600, 3850
    kilometre = sheet.KILOMETRE
    canvas.block(zero - kilometre - 2, y - 2, zero + 4 * kilometre + 2, y + 20, "black")
    for tenth in range(10):
        left = zero - kilometre + tenth * kilometre // 10
        canvas.block(left, y, left + kilometre // 10 - 1, y + 18, "black" if tenth % 2 == 0 else "white")
    for number in range(4):
        left = zero + number * kilometre
        canvas.block(left, y, left + kilometre - 1, y + 18, "white" if number % 2 == 0 else "black")
    for number in range(-1, 5):
        text = f"{number}" if 0 <= number < 4 else ("1" if number < 0 else "4 km")
        write(canvas, zero + number * kilometre, y + 52, text, size=28)
    write(canvas, body.left - 78, y + 14, "Scale 1 : 25 000", face="serifbold", size=38, anchor="l")
    write(canvas, body.right + 78, y + 14, "1 mm on the map is 25 m on the ground", face="serif", size=32, anchor="r")


def draw_margin(canvas):
    """Draw everything outside the frame."""
    _title(canvas)
    _scale_bar(canvas)
    below = _signs(canvas, sheet.BODY.top - 40)
    _north(canvas, below)
    _notes(canvas, below + 480)
    canvas.frame(60, 40, sheet.WIDTH - 61, sheet.HEIGHT - 41, 2, "black")
