"""Draws the land onto the map body, from the ground up to the names."""

import numpy as np
from PIL import Image

from . import symbols, town
from .canvas import Canvas
from .curves import at_distance, contour_lines, evenly, lengths, runs_inside
from .lettering import Occupied, place
from .naming import Naming

_INTERVAL, _INDEX_INTERVAL = 20, 100  # metres between contours, and between the strong ones


def window(raster, size):
    """Return a raster's values as an 8-bit image of the body at the given number of pixels across and down.

    Values are taken as 0..255; the image's first pixel begins half a sheet pixel before body pixel 0.
    """
    image = Image.fromarray(np.clip(raster.values, 0, 255).astype(np.float32))
    left = (-0.5 - raster.origin) / raster.step + 0.5
    across, down = ((length - 0.5 - raster.origin) / raster.step + 0.5 for length in size)
    return lambda pixels: image.resize(pixels, Image.Resampling.BICUBIC, box=(left, left, across, down)).point(
        lambda level: level + 0.5).convert("L")


class BodyDrawing:
    """One drawing of the map body; call draw once and read canvas."""

    def __init__(self, rng, landscape, width, height):
        self._rng, self._land = rng, landscape
        self._size = (width, height)
        self.canvas = Canvas(width, height, "open")
        self._text = Occupied(width, height)
        self._lines = Occupied(width, height)
        self._plots = town.Plots(width, height)
        self._streets = []

    def draw(self):
        """Draw everything, lowest first."""
        self._ground()
        self._lakes()
        self._ground_only = self.canvas.image.copy()  # what a letter's halo shows again
        self._contours()
        self._water()
        self._ways()
        self._houses()
        naming = Naming(self._rng, self._land, self.canvas, self._ground_only, self._text, self._lines)
        naming.letter(self._index_lines)

    def _ground(self):
        pixels = self.canvas.image.size
        for field, ink in ((self._land.fields, "meadow"), (self._land.woods, "forest")):
            # 40 grey levels a unit of the field keep its zero line smooth to a fraction of a pixel.
            grey = field.with_values(128 + 40 * field.values)
            mask = window(grey, self._size)(pixels).point(lambda level: 255 if level >= 128 else 0)
            self.canvas.fill_mask(mask, ink)
        for settlement in self._land.settlements:
            town.lay_streets(self._rng, settlement, self._land)
            for street in settlement.streets if settlement.size > 1 else []:
                for x, y in evenly(street, 5):  # discs: so wide a line would crack open at its joints
                    self.canvas.disc(x, y, 30, "built")

    def _contours(self):
        self._index_lines = []
        lines = contour_lines(self._land.height, interval=_INTERVAL)
        for level, points in lines:
            strong = round(level) % _INDEX_INTERVAL == 0
            for run in runs_inside(points, *self._size, margin=-60):
                self.canvas.line(run, 1.5 if strong else 1.0, "index" if strong else "contour")
                if strong and lengths(run)[-1] > 500:
                    self._index_lines.append((level, run))

    def _water(self):
        for reach in self._land.streams:
            symbols.stream(self.canvas, reach.points, reach.width)
            self._plots.take_line(reach.points, reach.width + 8)
            self._lines.mark_points(evenly(reach.points, 3))
        for reach in self._land.streams:
            symbols.stream_surface(self.canvas, reach.points, reach.width)
        self._lakes()
        self._dam()

    def _lakes(self):
        for lake in self._land.lakes:
            symbols.lake(self.canvas, lake.shore)
            for ring in lake.shore:
                self._plots.take_area(ring)

    def _dam(self):
        lake = self._land.lakes[0]
        x, y = lake.outlet
        nearest = min((reach for reach in self._land.streams if lake.outlet_cell in reach.cells),
                      key=lambda reach: len(reach.cells))
        k = int(np.hypot(nearest.points[:, 0] - x, nearest.points[:, 1] - y).argmin())
        lower = nearest.points[min(k + 6, len(nearest.points) - 1)]
        downstream = np.degrees(np.arctan2(-(lower[1] - y), lower[0] - x))
        symbols.dam(self.canvas, x, y, downstream + 90, 44)

    def _ways(self):
        streets = [("street", street) for settlement in self._land.settlements for street in settlement.streets]
        ways = [(kind, symbols.smooth_copy(points)) for kind, points in streets + self._land.roads]
        symbols.railway(self.canvas, symbols.smooth_copy(self._land.railway))
        symbols.road_casings(self.canvas, ways)
        symbols.road_fillings(self.canvas, ways)
        for kind, points in ways:
            self._plots.take_line(points, symbols.ROAD_WIDTH[kind] + 4)
            self._lines.mark_points(points)
        self._plots.take_line(self._land.railway, 16)
        self._lines.mark_points(evenly(self._land.railway, 3))
        self._stations()

    def _stations(self):
        track = evenly(self._land.railway, 6)
        for settlement in self._land.settlements:
            distance = np.hypot(track[:, 0] - settlement.x, track[:, 1] - settlement.y)
            if settlement.size > 1 and distance.min() < 420:
                self._station(*at_distance(track, lengths(track)[int(distance.argmin())]))

    def _station(self, x, y, angle):
        symbols.station(self.canvas, x, y, angle)
        self._text.mark((x - 16, y - 16, x + 16, y + 16))
        place(self.canvas, self._text, x, y, "Bf.", gap=20, size=17, halo=2, ground=self._ground_only)

    def _houses(self):
        for settlement in self._land.settlements:
            if settlement.size > 1:
                self._church(settlement.x, settlement.y)
            for corners in town.houses(self._rng, settlement, self._land, self._plots):
                self.canvas.polygon(corners, "black")
                self._lines.mark_points(corners)

    def _church(self, middle_x, middle_y):
        """Draw a church as near to a settlement's middle as the ways leave room for it."""
        for distance, turn in [(d, t) for d in range(20, 120, 8) for t in range(0, 360, 30)]:
            x = middle_x + distance * np.cos(np.radians(turn))
            y = middle_y + distance * np.sin(np.radians(turn))
            if self._plots.take_if_free(np.array([(x - 9, y - 21), (x + 9, y - 21), (x + 9, y + 9), (x - 9, y + 9)])):
                symbols.church(self.canvas, x, y)
                self._text.mark((x - 9, y - 21, x + 9, y + 9))
                return
