"""Where water runs on a height field: each cell's downhill neighbour, and how much land drains through it."""

import heapq

import numpy as np

_NEIGHBOURS = [(-1, -1), (-1, 0), (-1, 1), (0, -1), (0, 1), (1, -1), (1, 0), (1, 1)]
_MINIMUM_FALL = 1e-3  # metres a cell: enough that a filled hollow still has a way out


def fill_hollows(height, outlet):
    """Return the field raised so that every cell has a falling path to an outlet cell.

    Floods inwards from the outlets, always from the lowest cell reached so far, so each cell is raised no more than
    its lowest rim asks for.
    """
    rows, columns = height.shape
    filled = height.astype(float).ravel().tolist()
    done = outlet.ravel().tolist()
    heap = [(filled[cell], cell) for cell in np.flatnonzero(outlet).tolist()]
    heapq.heapify(heap)
    while heap:
        level, cell = heapq.heappop(heap)
        row, column = divmod(cell, columns)
        for down, right in _NEIGHBOURS:
            r, c = row + down, column + right
            if not (0 <= r < rows and 0 <= c < columns):
                continue
            other = r * columns + c
            if done[other]:
                continue
            done[other] = True
            filled[other] = max(filled[other], level + _MINIMUM_FALL)
            heapq.heappush(heap, (filled[other], other))
    return np.array(filled).reshape(rows, columns)


def receivers(height, outlet):
    """Return for each cell the flat index of its steepest downhill neighbour; outlets and pits receive themselves."""
    rows, columns = height.shape
    own = np.arange(rows * columns).reshape(rows, columns)
    best = own.copy()
    steepest = np.zeros_like(height)
    padded = np.pad(height, 1, constant_values=np.inf)
    for down, right in _NEIGHBOURS:
        other = padded[1 + down : 1 + down + rows, 1 + right : 1 + right + columns]
        fall = (height - other) / np.hypot(down, right)
        better = fall > steepest
        steepest[better] = fall[better]
        best[better] = (own + down * columns + right)[better]
    best[outlet] = own[outlet]
    return best.ravel()


def levels(receiver):
    """Return the cells grouped by the number of steps to their outlet, nearest first.

    Cells of one group never drain into each other, so a whole group can be worked on as one array.
    """
    depth = (receiver != np.arange(receiver.size)).astype(np.int64)
    jump = receiver.copy()
    while True:
        further = depth[jump]
        if not further.any():
            break
        depth += further
        jump = jump[jump]
    order = np.argsort(depth, kind="stable")
    return np.split(order, np.cumsum(np.bincount(depth))[:-1])


def accumulate(receiver, groups):
    """Return how many cells drain through each cell, itself included."""
    amount = np.ones(receiver.size)
    for group in reversed(groups[1:]):
        np.add.at(amount, receiver[group], amount[group])
    return amount


def basin(receiver, groups, cell):
    """Return a flat mask of the cells that drain through the given one, itself included."""
    inside = np.zeros(receiver.size, bool)
    inside[cell] = True
    for group in groups[1:]:
        inside[group] |= inside[receiver[group]]
    return inside
