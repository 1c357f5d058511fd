"""The sheet's signs, each drawn the same on the map and in the legend."""

import numpy as np

from .curves import at_distance, evenly, lengths

ROAD_WIDTH = {"road": 8.0, "lane": 5.5, "street": 4.0}
_CASING = 1.0


def road_casings(canvas, roads):
    """Draw all roads' dark edges; done before any filling, so that junctions stay open."""
    for kind, points in roads:
        canvas.line(points, ROAD_WIDTH[kind] + 2 * _CASING, "black")


def road_fillings(canvas, roads):
    """Draw all roads' inner colour, the most important last."""
    for wanted, ink in (("street", "white"), ("lane", "lane"), ("road", "road")):
        for kind, points in roads:
            if kind == wanted:
                canvas.line(points, ROAD_WIDTH[kind], ink)


def railway(canvas, points):
    """Draw a single-track railway: black line with white fields."""
    canvas.line(points, 6.0, "black")
    canvas.dashes(points, 3.0, "white", 22, 22)


def stream(canvas, points, width):
    """Draw running water: a line, or from some width on two banks with water between."""
    if width < 4:
        canvas.line(points, width, "shore")
        return
    canvas.line(points, width + 2, "shore")


def stream_surface(canvas, points, width):
    """Fill the water between the banks; done after all banks, so that mouths stay open."""
    if width >= 4:
        canvas.line(points, width, "water")


def lake(canvas, shore):
    """Draw still water with its shore."""
    for ring in shore:
        canvas.polygon(ring, "water")
    for ring in shore:
        canvas.line(np.concatenate([ring, ring[:1]]), 1.5, "shore")


def church(canvas, x, y):
    """Draw a church: a filled disc with a cross."""
    canvas.disc(x, y, 6.5, "black")
    canvas.line([(x, y - 6), (x, y - 19)], 2, "black")
    canvas.line([(x - 5, y - 14), (x + 5, y - 14)], 2, "black")


def station(canvas, x, y, angle):
    """Draw a railway halt: a white box with a black edge, lying along the track."""
    turn = np.radians(-angle)
    along, across = np.array([np.cos(turn), np.sin(turn)]), np.array([-np.sin(turn), np.cos(turn)])
    for half_length, half_width, ink in ((15, 7, "black"), (12.5, 4.5, "white")):
        corners = [np.array([x, y]) + a * half_length * along + b * half_width * across
                   for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
        canvas.polygon(corners, ink)


def triangulation_point(canvas, x, y):
    """Draw a surveyed summit: a triangle with a dot."""
    for reach, ink in ((9.5, "black"), (6.0, "white")):
        canvas.polygon([(x, y - reach), (x - 0.87 * reach, y + reach / 2), (x + 0.87 * reach, y + reach / 2)], ink)
    canvas.disc(x, y, 1.6, "black")


def spot_height(canvas, x, y):
    """Draw a height mark."""
    canvas.disc(x, y, 2.6, "black")


def dam(canvas, x, y, angle, width):
    """Draw a dam's crest with teeth on its dry side; angle is its direction in degrees, counter-clockwise."""
    turn = np.radians(-angle)
    along, across = np.array([np.cos(turn), np.sin(turn)]), np.array([-np.sin(turn), np.cos(turn)])
    middle = np.array([x, y])
    canvas.line([middle - width * along, middle + width * along], 4, "black")
    for place in np.arange(-width + 4, width, 9):
        foot = middle + place * along
        canvas.line([foot, foot + 8 * across], 2, "black")


def conifers(canvas, positions):
    """Draw small tree signs in a wood."""
    for x, y in positions:
        canvas.line([(x - 4, y + 4), (x, y - 5), (x + 4, y + 4)], 1, "sign")


def along(points, spacing):
    """Yield (x, y, direction) at even distances along a line, half a distance from its ends."""
    total = lengths(points)[-1]
    for place in np.arange(spacing / 2, total, spacing):
        yield at_distance(points, place)


def smooth_copy(points):
    """Return a line at an even density that draws without kinks."""
    return evenly(points, 4)
