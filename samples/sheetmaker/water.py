"""Streams and lakes, taken from the terrain's own drainage."""

from dataclasses import dataclass

import numpy as np

from . import flow
from .curves import contour_lines, rounded
from .raster import nearest_source

_SOURCE_AREA = 170  # nodes of catchment (0.27 square kilometres) that keep a stream running
_RIVER_AREA = 9000
_SHORTEST_SOURCE = 7  # nodes; shorter first reaches only clutter the valley floors
_DAM_REACH = 4.0  # nodes from the outlet that a dam can close


@dataclass(frozen=True)
class Stream:
    """One reach between two junctions, drawn from its upper to its lower end."""

    points: np.ndarray
    width: float
    cells: list
    river: bool


@dataclass(frozen=True)
class Lake:
    """A sheet of still water; the outlet is where its stream leaves."""

    level: float
    shore: list
    cells: np.ndarray
    outlet: tuple
    outlet_cell: int

    def middle(self, raster):
        """Return the body pixel of the lake's node that lies farthest from the shore: the best place for a name."""
        distance, _ = nearest_source(~self.cells.reshape(raster.values.shape), 20)
        return raster.position(int(distance.argmax()))


def _reaches(terrain):
    channel = terrain.area >= _SOURCE_AREA
    moving = channel & (terrain.receiver != np.arange(terrain.area.size))
    donors = np.zeros(terrain.area.size, int)
    np.add.at(donors, terrain.receiver[moving], 1)
    for start in np.flatnonzero(moving & (donors != 1)).tolist():
        cells = [start]
        while True:
            following = int(terrain.receiver[cells[-1]])
            if following == cells[-1]:
                break
            cells.append(following)
            if donors[following] != 1:
                break
        yield cells


def streams(rng, terrain):
    """Return all reaches as Streams, their beds winding a little between the nodes."""
    found = []
    for cells in _reaches(terrain):
        if terrain.area[cells[0]] < 2 * _SOURCE_AREA and len(cells) < _SHORTEST_SOURCE:
            continue
        x, y = terrain.height.position(np.array(cells))
        points = np.column_stack([x, y]).astype(float)
        points[1:-1] += rng.normal(0, 9.0, points[1:-1].shape)
        area = terrain.area[cells[:-1]].mean()
        width = float(np.clip(0.9 + (area / 700.0) ** 0.5, 1.5, 15))
        found.append(Stream(rounded(points, 3, 2), width, cells, area > _RIVER_AREA))
    return found


def _lake_cells(terrain, outlet, depth):
    height = terrain.height.values.ravel()
    inside = flow.basin(terrain.receiver, terrain.groups, outlet)
    return inside & (height < height[outlet] + depth), inside, height[outlet] + depth


def _make_lake(terrain, outlet, depth):
    cells, inside, level = _lake_cells(terrain, outlet, depth)
    above = terrain.height.values.ravel() - level
    # Below the outlet the valley falls away under the water level; the field must say "dry" there.
    dry = np.where(inside, above, np.maximum(above, 6.0))
    field = terrain.height.with_values(np.clip(dry, -10, 10))
    shore = [points for _, points in contour_lines(field.finer(3), levels=[0.0]) if len(points) > 12]
    return Lake(level, shore, cells, terrain.height.position(outlet), outlet)


def _candidates(terrain, body_size, smallest, largest, margin):
    x, y = terrain.height.position(np.arange(terrain.area.size))
    inside = (x > margin) & (y > margin) & (x < body_size[0] - margin) & (y < body_size[1] - margin)
    return np.flatnonzero(inside & (terrain.area > smallest) & (terrain.area < largest))


def _low_rim(terrain, cells, inside, level, outlet):
    """Return the number of lower dry nodes beside the water that a dam at the outlet must close.

    Infinite where one lies too far from the outlet: there the water would run over another rim.
    """
    shape = terrain.height.values.shape
    low_outside = (~inside & (terrain.height.values.ravel() < level)).reshape(shape)
    wet = cells.reshape(shape)
    beside = np.zeros(shape, bool)
    for down, right in [(-1, 0), (1, 0), (0, -1), (0, 1)]:
        beside |= np.roll(wet, (down, right), (0, 1))
    row, column = np.nonzero(beside & low_outside)
    too_far = np.hypot(row - outlet // shape[1], column - outlet % shape[1]) > _DAM_REACH
    return np.inf if too_far.any() else len(row)


def _best(terrain, candidates, depth, wanted, avoid):
    best, best_score = None, np.inf
    for outlet in candidates.tolist():
        cells, inside, level = _lake_cells(terrain, outlet, depth)
        count = int(cells.sum())
        if (cells & avoid).any() or not 0.5 * wanted < count < 2.2 * wanted:
            continue
        x, y = terrain.height.position(np.flatnonzero(cells))
        spread = np.hypot(x - x.mean(), y - y.mean()).max() / terrain.height.step
        rim = _low_rim(terrain, cells, inside, level, outlet)
        score = spread ** 2 / count + abs(np.log(count / wanted)) + 0.2 * rim
        if score < best_score:
            best, best_score = outlet, score
    return best


def lakes(rng, terrain, body_size):
    """Return a large lake in a valley and two small ones high up, each where the land holds it best."""
    avoid = np.zeros(terrain.area.size, bool)
    found = []
    for smallest, largest, depth, wanted in [(1200, 30000, 42, 330), (150, 900, 16, 30), (150, 900, 16, 22)]:
        candidates = _candidates(terrain, body_size, smallest, largest, 420)
        outlet = _best(terrain, rng.permutation(candidates)[:600], depth, wanted, avoid)
        if outlet is None:
            continue
        lake = _make_lake(terrain, outlet, depth)
        found.append(lake)
        x, y = terrain.height.position(np.arange(terrain.area.size))
        avoid |= np.hypot(x - lake.outlet[0], y - lake.outlet[1]) < 1100
    return found


def flooded(terrain, found):
    """Return the heights with each lake's bed raised to its level, so that read-outs and contours agree with it."""
    values = terrain.height.values.ravel().copy()
    for lake in found:
        values[lake.cells] = lake.level
    return terrain.height.with_values(values)
