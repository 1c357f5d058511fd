"""Roads and the railway: cheapest ways over the terrain."""

import heapq

import numpy as np

from .curves import evenly, rounded
from .raster import nearest_source

_MOVES = [(-1, -1), (-1, 0), (-1, 1), (0, -1), (0, 1), (1, -1), (1, 0), (1, 1),
          (-2, -1), (-2, 1), (2, -1), (2, 1), (-1, -2), (1, -2), (-1, 2), (1, 2)]


class Ground:
    """What crossing the land costs: climbing, water, and the edge of what the map knows."""

    def __init__(self, raster, lake_cells, river_cells):
        self.raster = raster
        self.rows, self.columns = raster.values.shape
        self.height = raster.values.ravel().tolist()
        toll = np.ones(raster.values.size)
        toll[river_cells] = 7.0
        toll[lake_cells] = 400.0
        self.toll = toll

    def make_dear(self, cells, reach, factor):
        """Multiply the toll on nodes and up to reach steps around them, so that later ways keep a distance."""
        mask = np.zeros(self.toll.size, bool)
        mask[cells] = True
        distance, _ = nearest_source(mask.reshape(self.rows, self.columns), int(reach) + 1)
        self.toll[distance.ravel() <= reach] *= factor

    def way(self, start, goals, steepness):
        """Return the cheapest way as flat node indices from start to any goal; steepness is how much climbing hurts."""
        toll = self.toll.tolist()
        best, before = {start: 0.0}, {}
        heap, done = [(0.0, start)], set()
        while heap:
            cost, cell = heapq.heappop(heap)
            if cell in done:
                continue
            if cell in goals:
                return _walked_back(before, cell)
            done.add(cell)
            for other, extra in self._steps(cell, toll, steepness):
                if other not in done and cost + extra < best.get(other, np.inf):
                    best[other] = cost + extra
                    before[other] = cell
                    heapq.heappush(heap, (cost + extra, other))
        raise ValueError("no way over the terrain")

    def _steps(self, cell, toll, steepness):
        row, column = divmod(cell, self.columns)
        here = self.height[cell]
        for down, right in _MOVES:
            r, c = row + down, column + right
            if 0 <= r < self.rows and 0 <= c < self.columns:
                other = r * self.columns + c
                far = (down * down + right * right) ** 0.5
                slope = abs(self.height[other] - here) / (far * 40.0)
                yield other, far * (1 + steepness * slope * slope) * (toll[other] + toll[cell]) / 2

    def line(self, cells, end=None, calm=1):
        """Return the drawn line of a way; end replaces its last point, to meet a road that is already drawn.

        calm is how often the steps from node to node are smoothed down.
        """
        x, y = self.raster.position(np.array(cells))
        points = np.column_stack([x, y]).astype(float)
        if end is not None:
            points[-1] = end
        for _ in range(calm):  # spread the points anew each time: where a way doubles back they would crowd and stay
            points = rounded(evenly(points, 14), 0, 8)
        return rounded(points, 1, 0)


def _walked_back(before, cell):
    cells = [cell]
    while cell in before:
        cell = before[cell]
        cells.append(cell)
    return cells[::-1]


class Network:
    """Roads that grow by joining each new place to what is already there."""

    def __init__(self, ground):
        self._ground = ground
        self.lines = []  # (class, points)
        self._owner = {}

    def lay(self, kind, start, goal, steepness):
        """Lay a road from node to node."""
        cells = self._ground.way(start, {goal}, steepness)
        self._add(kind, cells, None)

    def join(self, kind, start, steepness):
        """Lay a road from a node to the nearest point, by cost, of the network."""
        if start in self._owner:
            return
        cells = self._ground.way(start, self._owner.keys(), steepness)
        x, y = self._ground.raster.position(cells[-1])
        line = self._owner[cells[-1]]
        nearest = line[np.hypot(line[:, 0] - x, line[:, 1] - y).argmin()]
        self._add(kind, cells, nearest)

    def _add(self, kind, cells, end):
        points = self._ground.line(cells, end)
        self.lines.append((kind, points))
        for cell in cells:
            self._owner.setdefault(cell, points)

    @property
    def cells(self):
        """The nodes that roads pass."""
        return list(self._owner)
