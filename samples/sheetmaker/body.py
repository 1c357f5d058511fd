"""Draws the land onto the map body, from the ground up to the names."""

import numpy as np
from PIL import Image

from . import places, symbols, town
from .canvas import DENSITY, Canvas
from .curves import at_distance, contour_lines, evenly, lengths, runs_inside, upright
from .lettering import Occupied, place, text_mask, text_size, write

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
        self._ground_only = self.canvas.image.copy()
        self._contours()
        self._water()
        self._ways()
        self._houses()
        self._summits()
        self._settlement_names()
        self._water_names()
        self._forest_names()
        self._contour_numbers()

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
                self.canvas.line(street, 56, "built")
                self.canvas.disc(*street[-1], 28, "built")

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
        for lake in self._land.lakes:
            symbols.lake(self.canvas, lake.shore)
            for ring in lake.shore:
                self._plots.take_area(ring)
        self._dam()

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
        self._station()

    def _station(self):
        town_place = self._land.settlements[0]
        track = evenly(self._land.railway, 6)
        k = int(np.hypot(track[:, 0] - town_place.x, track[:, 1] - town_place.y).argmin())
        x, y, angle = at_distance(track, lengths(track)[k])
        symbols.station(self.canvas, x, y, angle)
        self._text.mark((x - 16, y - 16, x + 16, y + 16))
        place(self.canvas, self._text, x, y, "Bf.", gap=18, size=17, halo=2, ground=self._ground_only)

    def _houses(self):
        for settlement in self._land.settlements:
            for corners in town.houses(self._rng, settlement, self._land, self._plots):
                self.canvas.polygon(corners, "black")
                self._lines.mark_points(corners)
            if settlement.size > 1:
                x, y = settlement.x + 16, settlement.y - 18
                self.canvas.disc(x, y, 10, "built")
                symbols.church(self.canvas, x, y)
                self._text.mark((x - 9, y - 21, x + 9, y + 9))

    def _summits(self):
        named = iter(places.SUMMITS)
        for number, (x, y, metres) in enumerate(self._land.summits):
            important = number < len(places.SUMMITS)
            (symbols.triangulation_point if important else symbols.spot_height)(self.canvas, x, y)
            self._text.mark((x - 9, y - 9, x + 9, y + 9))
            text = f"{metres:.0f}"
            style = {"size": 17, "halo": 2.5, "ground": self._ground_only}
            place(self.canvas, self._text, x, y, text, gap=15, **style)
            if important:
                place(self.canvas, self._text, x, y, next(named), gap=16, face="sans", **{**style, "size": 21})

    def _settlement_names(self):
        sizes = {3: (40, "bold"), 2: (29, "sans"), 1: (21, "sans")}
        for settlement in self._land.settlements:
            size, face = sizes[settlement.size]
            gap = {3: 60, 2: 40, 1: 22}[settlement.size]
            style = {"face": face, "size": size, "halo": 3, "ground": self._ground_only}
            place(self.canvas, self._text, settlement.x, settlement.y, settlement.name, gap=gap, **style)

    def _along(self, text, points, style, lift=0.0):
        """Write a text along the straightest free stretch of a line; return whether one was found."""
        width, height = text_size(text, style.get("face", "sans"), style["size"], style.get("spacing", 0.0))
        best, best_bend = None, np.inf
        for at in np.arange(width, lengths(points)[-1] - width, 40):
            x, y, angle = at_distance(points, at)
            angle = upright(angle)
            x, y = x - lift * np.sin(np.radians(angle)), y - lift * np.cos(np.radians(angle))
            box = _turned_box(x, y, width, height, angle)
            ends = [at_distance(points, at + side * width / 2)[2] for side in (-1, 1)]
            bend = abs((ends[0] - ends[1] + 180) % 360 - 180)
            if bend < best_bend and self._text.free(box):
                best, best_bend = (x, y, angle, box), bend
        if best is None or best_bend > 35:
            return False
        x, y, angle, box = best
        self._text.mark(box)
        write(self.canvas, x, y, text, angle=angle, **style)
        return True

    def _water_names(self):
        style = {"face": "serif", "size": 22, "ink": "shore", "slant": True, "halo": 2.5, "ground": self._ground_only}
        for lake, name in zip(self._land.lakes, places.LAKES):
            x, y = lake.middle(self._land.terrain.height)
            large = lake is self._land.lakes[0]
            size = {"size": 28 if large else 18}
            lake_style = {**style, **size, "halo": 0}
            width, height = text_size(name, "serif", size["size"])
            if large:
                self._text.mark((x - width / 2, y - height / 2, x + width / 2, y + height / 2))
                write(self.canvas, x, y, name, **lake_style)
            else:
                place(self.canvas, self._text, x, y, name, gap=50, **{**style, **size})
        reaches = sorted(self._land.streams, key=lambda reach: -reach.width * lengths(reach.points)[-1])
        names = iter(places.STREAMS)
        name = next(names)
        for reach in reaches:
            for run in runs_inside(evenly(reach.points, 6), *self._size, margin=40):
                if lengths(run)[-1] > 350 and self._along(name, run, style, lift=reach.width / 2 + 17):
                    name = next(names, None)
                    break
            if name is None:
                return

    def _forest_names(self):
        """Forest names go where the wood is widest."""
        wide = self._land.woods
        x, y = wide.position(np.arange(wide.values.size))
        order = np.argsort(-wide.values, axis=None)
        names = iter(places.FORESTS)
        name, used = next(names), []
        for k in order[:60000:7]:
            if name is None:
                return
            width, height = text_size(name, "sans", 25, 9)
            box = (x[k] - width / 2, y[k] - height / 2, x[k] + width / 2, y[k] + height / 2)
            if all(np.hypot(x[k] - a, y[k] - b) > 900 for a, b in used) and self._text.free(box):
                self._text.mark(box)
                write(self.canvas, x[k], y[k], name, size=25, spacing=9, ink="sign", halo=2.5, ground=self._ground_only)
                used.append((x[k], y[k]))
                name = next(names, None)

    def _contour_numbers(self):
        """Number the strong contours, feet downhill, on stretches where nothing else is drawn."""
        for level, points in self._index_lines:
            text = f"{level:.0f}"
            width, height = text_size(text, "sans", 14)
            for at in np.arange(self._rng.uniform(100, 300), lengths(points)[-1] - 60, 620):
                x, y, angle = at_distance(points, at)
                box = _turned_box(x, y, width, height * 0.8, angle)
                if not (self._text.free(box) and self._lines.free(box)):
                    continue
                self._text.mark(box)
                angle = self._feet_downhill(x, y, angle)
                self.canvas.stamp(text_mask(text, "sans", 14, angle, halo=3), x, y, self._ground_only)
                self.canvas.stamp(text_mask(text, "sans", 14, angle), x, y, "index")

    def _feet_downhill(self, x, y, angle):
        turn = np.radians(angle)
        up = (-np.sin(turn), -np.cos(turn))
        rise = self._land.height.at(x + 12 * up[0], y + 12 * up[1]) - self._land.height.at(x - 12 * up[0], y - 12 * up[1])
        return angle if rise >= 0 else angle + 180


def _turned_box(x, y, width, height, angle):
    turn = np.radians(angle)
    cosine, sine = abs(np.cos(turn)), abs(np.sin(turn))
    half_x, half_y = (width * cosine + height * sine) / 2, (width * sine + height * cosine) / 2
    return x - half_x, y - half_y, x + half_x, y + half_y
