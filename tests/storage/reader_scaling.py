"""From pixels of a map to coordinates, as the page on the file format says it."""

import math

import numpy

NONE, AFFINE, POLAR = 0, 1, 2


def cross(a, b):
    return a[0] * b[1] - a[1] * b[0]


def affine(points, pixel):
    rows = [[1, x, y] for _, _, x, y in points]
    values = [[x, y] for x, y, _, _ in points]
    return (numpy.array([1, *pixel]) @ numpy.linalg.solve(rows, values)).tolist()


def polar(points, pixel):
    values = numpy.array([[x, y] for x, y, _, _ in points])
    pixels = numpy.array([[x, y] for _, _, x, y in points], dtype=float)
    left, right = pixels[1] - pixels[0], pixels[3] - pixels[2]
    length = math.hypot(*left)
    down = left / length
    curvature = cross(left, right) / (length * cross(pixels[0] - pixels[2], right))

    def place(p):
        s, t = down @ (p - pixels[0]), cross(down, p - pixels[0])
        turned = curvature * t
        arc = math.atan2(turned, 1 + curvature * s) / curvature if turned else t / (1 + curvature * s)
        depth = (2 * s + curvature * (s * s + t * t)) / (1 + math.hypot(1 + curvature * s, turned))
        return arc, depth

    arc, depth = place(numpy.array(pixel, dtype=float))
    u = arc / place(pixels[2])[0]
    top = u * place(pixels[2])[1]
    bottom = length + u * (place(pixels[3])[1] - length)
    v = (depth - top) / (bottom - top)
    twist = values[3] - values[2] - values[1] + values[0]
    return (values[0] + u * (values[2] - values[0]) + v * (values[1] - values[0]) + u * v * twist).tolist()


def positions(sheet):
    """The coordinates of the first, the middle and the last pixel; none when the map is not scaled."""
    georeference, width, height = sheet["georeference"], sheet["width"], sheet["height"]
    if georeference["kind"] == NONE:
        return []
    scaling = affine if georeference["kind"] == AFFINE else polar
    pixels = [(0, 0), (width // 2, height // 2), (width - 1, height - 1)]
    return [scaling(georeference["points"], pixel) for pixel in pixels]
