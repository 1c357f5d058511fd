"""Streets and houses of the settlements."""

import numpy as np
from PIL import Image, ImageDraw

from .curves import at_distance, evenly, lengths, rounded

_REACH = {3: 330, 2: 180, 1: 95}  # how far houses stand from the middle, in pixels
_SIDE_STREETS = {3: 18, 2: 6, 1: 1}


class Plots:
    """Knows where something stands already, so that no house is drawn on a road, in water or on a house."""

    def __init__(self, width, height):
        self._image = Image.new("1", (width, height), 0)
        self._draw = ImageDraw.Draw(self._image)

    def take_line(self, points, width):
        """Keep a strip along a line free of houses."""
        self._draw.line([(float(x), float(y)) for x, y in points], 1, max(1, int(width)))

    def take_area(self, points):
        """Keep an area free of houses."""
        self._draw.polygon([(float(x), float(y)) for x, y in points], 1)

    def take_if_free(self, corners):
        """Take a house's ground if it is free; return whether it was."""
        left, top = (int(value) for value in corners.min(0))
        right, bottom = (int(value) + 1 for value in corners.max(0))
        box = (left, top, right, bottom)
        if box[0] < 8 or box[1] < 8 or box[2] > self._image.width - 8 or box[3] > self._image.height - 8:
            return False
        if self._image.crop(box).getbbox():
            return False
        self.take_area(corners)
        return True


def _direction_near(place, roads):
    best, angle = np.inf, 0.0
    for _, points in roads:
        distance = np.hypot(points[:, 0] - place.x, points[:, 1] - place.y)
        k = int(np.clip(distance.argmin(), 1, len(points) - 2))
        if distance[k] < best:
            step = points[k + 1] - points[k - 1]
            best, angle = distance[k], np.arctan2(step[1], step[0])
    return angle


def _street(rng, start, angle, length):
    steps = max(3, int(length / 26))
    turns = angle + np.cumsum(rng.normal(0, 0.09, steps))
    points = start + np.concatenate([[[0, 0]], np.cumsum(26 * np.column_stack([np.cos(turns), np.sin(turns)]), 0)])
    return rounded(points, 2, 1)


def _stands_dry(points, landscape):
    level = landscape.height.at(points[:, 0], points[:, 1])
    climb = np.abs(np.diff(level)).sum() / max(1.0, lengths(points)[-1])
    wet = any(np.hypot(points[:, 0][:, None] - s.points[:, 0], points[:, 1][:, None] - s.points[:, 1]).min() < s.width
              for s in landscape.streams if s.width > 3)
    lake = any(landscape.terrain.height.cell(x, y) in _lake_nodes(landscape) for x, y in points)
    return climb < 0.45 and not wet and not lake


def _lake_nodes(landscape):
    return set(np.flatnonzero(np.any([lake.cells for lake in landscape.lakes], axis=0)).tolist())


def _crowds(street, others):
    """Tell whether a street would run beside another: houses need room between them."""
    near = np.zeros(len(street), bool)
    for other in others:
        gap = np.hypot(street[:, 0][:, None] - other[:, 0], street[:, 1][:, None] - other[:, 1])
        near |= gap.min(1) < 34
    return near.mean() > 0.4


def lay_streets(rng, place, landscape):
    """Give a place its side streets: they branch off at right angles, more or less, from what is there."""
    main = _direction_near(place, landscape.roads)
    middle = np.array([place.x, place.y])
    reach = _REACH[place.size]
    roads = [evenly(points, 8) for _, points in landscape.roads]
    starts = [(middle, main)]
    for turn in range(_SIDE_STREETS[place.size] * 6):
        if len(place.streets) >= _SIDE_STREETS[place.size]:
            break
        start, along = starts[int(rng.integers(len(starts)))]
        side = along + (np.pi / 2 if turn % 2 else -np.pi / 2) + rng.normal(0, 0.12)
        street = evenly(_street(rng, start, side, reach * rng.uniform(0.4, 0.8)), 8)
        if np.hypot(*(street[-1] - middle)) > reach:
            continue
        if _crowds(street, roads + place.streets) or not _stands_dry(street, landscape):
            continue
        place.streets.append(street)
        starts += [(point, side) for point in evenly(street, 70)[1:]]
        starts.append((middle + rng.normal(0, 0.35 * reach) * np.array([np.cos(main), np.sin(main)]), main))


def _house(x, y, angle, length, depth):
    cosine, sine = np.cos(angle), np.sin(angle)
    corners = np.array([(-1, -1), (1, -1), (1, 1), (-1, 1)]) * (length / 2, depth / 2)
    return corners @ np.array([[cosine, sine], [-sine, cosine]]) + (x, y)


def houses(rng, place, landscape, plots):
    """Return the corner lists of a place's houses, in rows along its streets and the roads that pass it."""
    found = []
    reach = _REACH[place.size]
    for street in [points for _, points in landscape.roads] + place.streets:
        for at in np.arange(6, lengths(street)[-1] - 4, 14.5):
            x, y, degrees = at_distance(street, at + rng.uniform(-2, 2))
            away = np.hypot(x - place.x, y - place.y) / reach
            if away > 1.0:
                continue
            found += _row_pair(rng, x, y, -np.radians(degrees), away, plots)
    return found


def _row_pair(rng, x, y, angle, away, plots):
    pair = []
    for side in (-1, 1):
        if rng.random() < 0.06 + 0.5 * away ** 2:
            continue
        offset = side * rng.uniform(11.5, 14.5)
        length, depth = rng.uniform(6, 12), rng.uniform(5, 7.5)
        corners = _house(x - offset * np.sin(angle), y + offset * np.cos(angle), angle, length, depth)
        if plots.take_if_free(corners):
            pair.append(corners)
    return pair
