"""The kilometre grid, the graticule, and the frame that carries their numbers."""

import numpy as np

from . import sheet
from .lettering import write

_LADDER_INNER, _LADDER_OUTER = 58, 72  # pixels from the map body to the frame's bars of one minute
_RAISED = str.maketrans("0123456789", "⁰¹²³⁴⁵⁶⁷⁸⁹")
GRATICULE_MINUTES = 2


def minutes_between(low, high, step):
    """Return the multiples of step minutes that lie between two angles in degrees, as whole minutes."""
    first = int(np.ceil(low * 60 / step)) * step
    return [m for m in range(first, int(np.floor(high * 60)) + 1, step)]


def angle_text(minutes, letters):
    """Return degrees and minutes with the hemisphere's letter."""
    degrees, rest = divmod(abs(minutes), 60)
    return f"{degrees}°{rest:02d}′ {letters[minutes < 0]}"


def _edge_crossings(edge, step):
    """Return [(x, y, minutes)] where an edge of sheet pixels (an N×2 array) crosses whole minutes.

    The angle that changes along the edge is found by interpolation; a sample every few pixels keeps that exact to
    far below a pixel.
    """
    longitude, latitude = sheet.to_degrees(edge[:, 0], edge[:, 1])
    angle = longitude if abs(edge[0, 0] - edge[-1, 0]) > abs(edge[0, 1] - edge[-1, 1]) else latitude
    order = np.argsort(angle)
    found = []
    for minutes in minutes_between(angle.min(), angle.max(), step):
        x, y = (np.interp(minutes / 60, angle[order], edge[order, k]) for k in (0, 1))
        found.append((float(x), float(y), minutes))
    return found


def edges(outset):
    """Return the four sides of a rectangle that lies outset pixels outside the map body, as point arrays."""
    body = sheet.BODY
    x = np.linspace(body.left - outset, body.right + outset, 600)
    y = np.linspace(body.top - outset, body.bottom + outset, 450)
    return {"top": np.column_stack([x, np.full_like(x, body.top - outset)]),
            "bottom": np.column_stack([x, np.full_like(x, body.bottom + outset)]),
            "left": np.column_stack([np.full_like(y, body.left - outset), y]),
            "right": np.column_stack([np.full_like(y, body.right + outset), y])}


def _body_range():
    corners = [sheet.to_degrees(side[:, 0], side[:, 1]) for side in edges(0).values()]
    longitude, latitude = (np.concatenate([corner[k] for corner in corners]) for k in (0, 1))
    return longitude.min(), longitude.max(), latitude.min(), latitude.max()


def graticule_crossings():
    """Yield (x, y, longitude minutes, latitude minutes) of the graticule's crossings in the body; x, y fractional."""
    west, east, south, north = _body_range()
    for latitude in minutes_between(south, north, GRATICULE_MINUTES):
        for longitude in minutes_between(west, east, GRATICULE_MINUTES):
            x, y = (float(v) for v in sheet.from_degrees(longitude / 60, latitude / 60))
            if sheet.BODY.left < x < sheet.BODY.right and sheet.BODY.top < y < sheet.BODY.bottom:
                yield x, y, longitude, latitude


def draw_graticule(canvas, offset):
    """Draw the curved lines of whole minutes onto the body's canvas; offset is the body's first sheet pixel."""
    west, east, south, north = _body_range()
    along_latitude, along_longitude = np.linspace(south, north, 200), np.linspace(west, east, 200)
    lines = [(np.full(200, m / 60), along_latitude) for m in minutes_between(west, east, GRATICULE_MINUTES)]
    lines += [(along_longitude, np.full(200, m / 60)) for m in minutes_between(south, north, GRATICULE_MINUTES)]
    for longitude, latitude in lines:
        x, y = sheet.from_degrees(longitude, latitude)
        canvas.line(np.column_stack([x - offset[0], y - offset[1]]), 1.5, "graticule")


def draw_kilometres(canvas):
    """Draw the kilometre lines one whole pixel wide, last of all, so that every crossing has the pure ink."""
    body = sheet.BODY
    columns = sorted({x for x, _, _, _ in sheet.crossings()})
    rows = sorted({y for _, y, _, _ in sheet.crossings()})
    for x in columns:
        canvas.block(x, body.top, x, body.bottom, "grid")
    for y in rows:
        canvas.block(body.left, y, body.right, y, "grid")


def kilometre_text(metres, full):
    """Return a grid number as printed: the leading digits raised, the last two large; full adds the unit."""
    kilometres = str(int(round(metres / 1000)))
    return kilometres[:-2].translate(_RAISED) + kilometres[-2:] + (" km" if full else "")


def _kilometre_labels(canvas):
    body = sheet.BODY
    middle = _LADDER_INNER / 2 + 2
    columns = sorted({(x, e) for x, _, e, _ in sheet.crossings()})
    rows = sorted({(y, n) for _, y, _, n in sheet.crossings()})
    style = {"size": 27, "ink": "grid", "face": "sans"}
    for x, easting in columns:
        text = kilometre_text(easting, easting in (columns[0][1], columns[-1][1]))
        write(canvas, x, body.top - middle, text, **style)
        write(canvas, x, body.bottom + middle, text, **style)
    for y, northing in rows:
        text = kilometre_text(northing, northing in (rows[0][1], rows[-1][1]))
        write(canvas, body.left - middle, y, text, angle=90, **style)
        write(canvas, body.right + middle, y, text, angle=90, **style)


def _bar(canvas, side, start, end):
    """Fill one minute of the ladder between two places on a side."""
    left, right = sorted((start[0], end[0]))
    top, bottom = sorted((start[1], end[1]))
    half = (_LADDER_OUTER - _LADDER_INNER) // 2
    if side in ("top", "bottom"):
        canvas.block(round(left), round(top) - half, round(right), round(top) + half, "black")
    else:
        canvas.block(round(left) - half, round(top), round(left) + half, round(bottom), "black")


def _ladder(canvas):
    for side, edge in edges((_LADDER_INNER + _LADDER_OUTER) // 2).items():
        marks = _edge_crossings(edge, 1)
        ends = sorted((edge[0], edge[-1]), key=lambda p: _angle_of(side, p))
        marks = [(*ends[0], marks[0][2] - 1)] + marks + [(*ends[1], None)]
        for start, end in zip(marks, marks[1:]):
            if start[2] % 2:
                _bar(canvas, side, start, end)


def _angle_of(side, point):
    return sheet.to_degrees(*point)[0 if side in ("top", "bottom") else 1]


def _degree_labels(canvas):
    style = {"size": 24, "ink": "graticule", "face": "sans"}
    for side, edge in edges(_LADDER_OUTER + 40).items():
        letters = "EW" if side in ("top", "bottom") else "NS"
        for x, y, minutes in _edge_crossings(edge, GRATICULE_MINUTES):
            if _near_corner(side, x, y):
                continue
            write(canvas, x, y, angle_text(minutes, letters), angle=0 if letters == "EW" else 90, **style)


def _near_corner(side, x, y):
    body = sheet.BODY
    if side in ("top", "bottom"):
        return not body.left + 60 < x < body.right - 60
    return not body.top + 60 < y < body.bottom - 60


def _graticule_ticks(canvas):
    """Join each graticule line's end at the map body with the frame's ladder, where its number stands."""
    inner, outer = edges(1), edges(_LADDER_INNER)
    for side in inner:
        ends = {m: (x, y) for x, y, m in _edge_crossings(outer[side], GRATICULE_MINUTES)}
        for x, y, minutes in _edge_crossings(inner[side], GRATICULE_MINUTES):
            far = ends.get(minutes)
            if far:
                near = (far[0] + (x - far[0]) * 0.2, far[1] + (y - far[1]) * 0.2)
                canvas.line([near, far], 1.5, "graticule")
                canvas.line([(x, y), (x + (far[0] - x) * 0.2, y + (far[1] - y) * 0.2)], 1.5, "graticule")


def draw_frame(canvas):
    """Draw neat line, numbers, minute bars and the outer frame."""
    body = sheet.BODY
    canvas.frame(body.left, body.top, body.right, body.bottom, 2, "black")
    _graticule_ticks(canvas)
    _kilometre_labels(canvas)
    for outset, width in ((_LADDER_INNER, 1), (_LADDER_OUTER, 1), (_LADDER_OUTER + 6, 6)):
        canvas.frame(body.left - outset, body.top - outset, body.right + outset, body.bottom + outset, width, "black")
    _ladder(canvas)
    _degree_labels(canvas)
