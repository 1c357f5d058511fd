"""Names and numbers on the map body: each looks for a free place, the important ones first."""

import numpy as np

from . import places, symbols
from .curves import at_distance, evenly, lengths, runs_inside, upright
from .lettering import place, text_mask, text_size, write


class Naming:
    """Letters one map body; ground is the image that shows again in the halo around the letters."""

    def __init__(self, rng, landscape, canvas, ground, text, lines):
        """text and lines are the places already lettered and the places of roads, waters and houses."""
        self._rng, self._land = rng, landscape
        self._canvas, self._ground = canvas, ground
        self._text, self._lines = text, lines

    def letter(self, index_lines):
        """Write everything; index_lines are the strong contours as (metres, points)."""
        self._summits()
        self._settlement_names()
        self._lake_names()
        self._stream_names()
        self._forest_names()
        self._contour_numbers(index_lines)

    def _summits(self):
        named = iter(places.SUMMITS)
        for number, (x, y, metres) in enumerate(self._land.summits):
            important = number < len(places.SUMMITS)
            (symbols.triangulation_point if important else symbols.spot_height)(self._canvas, x, y)
            self._text.mark((x - 9, y - 9, x + 9, y + 9))
            text = f"{metres:.0f}"
            style = {"size": 17, "halo": 2.5, "ground": self._ground}
            place(self._canvas, self._text, x, y, text, gap=15, **style)
            if important:
                place(self._canvas, self._text, x, y, next(named), gap=16, face="sans", **{**style, "size": 21})

    def _settlement_names(self):
        sizes = {3: (40, "bold"), 2: (29, "sans"), 1: (21, "sans")}
        for settlement in self._land.settlements:
            size, face = sizes[settlement.size]
            gap = {3: 60, 2: 40, 1: 22}[settlement.size]
            style = {"face": face, "size": size, "halo": 3, "ground": self._ground}
            place(self._canvas, self._text, settlement.x, settlement.y, settlement.name, gap=gap, clear_of=self._lines,
                  **style)

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
        write(self._canvas, x, y, text, angle=angle, **style)
        return True

    def _water_style(self, size, halo):
        return {"face": "serif", "size": size, "ink": "shore", "slant": True, "halo": halo, "ground": self._ground}

    def _lake_names(self):
        for lake, name in zip(self._land.lakes, places.LAKES):
            x, y = lake.middle(self._land.terrain.height)
            if lake is not self._land.lakes[0]:
                place(self._canvas, self._text, x, y, name, gap=50, **self._water_style(18, 2.5))
                continue
            width, height = text_size(name, "serif", 25)
            self._text.mark((x - width / 2, y - height / 2, x + width / 2, y + height / 2))
            write(self._canvas, x, y, name, **self._water_style(25, 0))

    def _stream_names(self):
        style = self._water_style(22, 2.5)
        reaches = sorted(self._land.streams, key=lambda reach: -reach.width * lengths(reach.points)[-1])
        names = iter(places.STREAMS)
        name = next(names)
        for reach in reaches:
            for run in runs_inside(evenly(reach.points, 6), self._canvas.width, self._canvas.height, margin=40):
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
                write(self._canvas, x[k], y[k], name, size=25, spacing=9, ink="sign", halo=2.5, ground=self._ground)
                used.append((x[k], y[k]))
                name = next(names, None)

    def _contour_numbers(self, index_lines):
        """Number the strong contours, feet downhill, on stretches where nothing else is drawn."""
        for level, points in index_lines:
            text = f"{level:.0f}"
            width, height = text_size(text, "sans", 14)
            for at in np.arange(self._rng.uniform(100, 300), lengths(points)[-1] - 60, 620):
                x, y, angle = at_distance(points, at)
                box = _turned_box(x, y, width, height * 0.8, angle)
                if not (self._text.free(box) and self._lines.free(box)):
                    continue
                self._text.mark(box)
                angle = self._feet_downhill(x, y, angle)
                self._canvas.stamp(text_mask(text, "sans", 14, angle, halo=3), x, y, self._ground)
                self._canvas.stamp(text_mask(text, "sans", 14, angle), x, y, "index")

    def _feet_downhill(self, x, y, angle):
        turn = np.radians(angle)
        up = (-np.sin(turn), -np.cos(turn))
        height = self._land.height
        rise = height.at(x + 12 * up[0], y + 12 * up[1]) - height.at(x - 12 * up[0], y - 12 * up[1])
        return angle if rise >= 0 else angle + 180


def _turned_box(x, y, width, height, angle):
    turn = np.radians(angle)
    cosine, sine = abs(np.cos(turn)), abs(np.sin(turn))
    half_x, half_y = (width * cosine + height * sine) / 2, (width * sine + height * cosine) / 2
    return x - half_x, y - half_y, x + half_x, y + half_y
