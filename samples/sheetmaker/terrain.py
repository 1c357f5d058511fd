"""The invented land's relief: noise that rain has worn into valleys, so rivers run downhill by construction."""

from dataclasses import dataclass

import numpy as np

from . import flow
from .raster import Raster, nearest_source, smoothed, spectral_noise

STEP = 16.0  # body pixels between nodes: 40 m on the ground
_CELL_METRES = 40.0
_MARGIN = 24  # nodes beyond each edge of the map, so that rivers enter with a catchment behind them
_ROUNDS = 120
_LOWEST, _HIGHEST = 462.0, 1318.0  # metres above the sea


@dataclass(frozen=True)
class Terrain:
    """Heights in metres with their drainage; all flat arrays follow the raster's nodes."""

    height: Raster
    receiver: np.ndarray
    groups: list
    area: np.ndarray  # nodes that drain through each node


def _outlets(shape):
    """Water leaves through the lower part of the east edge and the south edge only: one main valley forms."""
    outlet = np.zeros(shape, bool)
    outlet[int(shape[0] * 0.55) : int(shape[0] * 0.75), -1] = True
    return outlet


def _initial(rng, shape):
    row, column = np.indices(shape)
    towards_outlet = np.hypot((row / shape[0] - 0.62) * 0.9, column / shape[1] - 1.0)
    return 600 * towards_outlet + 25 * spectral_noise(rng, shape, 110, 1.2) + 12 * rng.random(shape)


def _wear(height, outlet, uplift):
    """Wear the land down for one round by the stream-power law, solved from the outlets upwards, and let slopes creep.

    The implicit form leaves every cell above the one it drains into, whatever the length of the round.
    """
    receiver = flow.receivers(height, outlet)
    groups = flow.levels(receiver)
    power = 0.045 * flow.accumulate(receiver, groups) ** 0.5
    raised = (height + uplift * ~outlet).ravel()
    for group in groups[1:]:
        below = raised[receiver[group]]
        raised[group] = (raised[group] + power[group] * below) / (1 + power[group])
    crept = smoothed(raised.reshape(height.shape), 0.48).ravel()
    crept[groups[0]] = raised[groups[0]]
    for group in groups[1:]:  # soil that creeps into a river bed is carried off: no bed may be dammed
        crept[group] = np.maximum(crept[group], crept[receiver[group]] + 1e-3)
    return crept.reshape(height.shape)


def _widen_valleys(height, area, receiver):
    """Lay flat floors beside the larger rivers; only there is room for a town, a railway and a main road."""
    large = (area > 2500).reshape(height.shape)
    distance, index = nearest_source(large, 22)
    width = np.where(index >= 0, 2 + 1.3 * np.log2(np.maximum(area[index], 2500) / 2500 + 1), 1)
    share = np.clip((distance - 0.3 * width) / (1.6 * width), 0, 1)
    share = share * share * (3 - 2 * share)
    bed = height.ravel()[index]
    return np.where(index >= 0, bed + (height - bed) * (0.04 + 0.96 * share), height)


def _drained(raster, outlet):
    filled = raster.with_values(flow.fill_hollows(raster.values, outlet))
    receiver = flow.receivers(filled.values, outlet)
    groups = flow.levels(receiver)
    return Terrain(filled, receiver, groups, flow.accumulate(receiver, groups))


def make_terrain(rng, body_size):
    """Return the Terrain under a map body of the given size in pixels, with land beyond its edges on all sides."""
    columns, rows = (int(np.ceil(size / STEP)) + 1 + 2 * _MARGIN for size in body_size)
    outlet = _outlets((rows, columns))
    height = flow.fill_hollows(_initial(rng, (rows, columns)), outlet)
    height[outlet] = height[outlet].min()
    uplift = 10 + 4 * np.clip(smoothed(spectral_noise(rng, (rows, columns), 160, 1.9), 6), -1, 1.3)
    for turn in range(_ROUNDS):
        height = _wear(height, outlet, uplift)
        if turn % 30 == 29:
            height = flow.fill_hollows(height, outlet)
    raster = Raster(height, STEP, -_MARGIN * STEP)
    drained = _drained(raster, outlet)
    flat = smoothed(_widen_valleys(drained.height.values, drained.area, drained.receiver), 0.8)
    return _drained(raster.with_values(_to_metres(flat)), outlet)


def _to_metres(height):
    inner = height[_MARGIN:-_MARGIN, _MARGIN:-_MARGIN]
    share = (height - inner.min()) / (inner.max() - inner.min())
    return _LOWEST + (_HIGHEST - _LOWEST) * share


def detailed(rng, terrain):
    """Return the heights at twice the density with small gullies and knolls on the slopes, valley floors left calm."""
    fine = terrain.height.finer(2)
    values = smoothed(fine.values, 1.2)
    gradient = np.hypot(*np.gradient(values))
    rough = spectral_noise(rng, values.shape, 40, 1.4)
    return fine.with_values(values + smoothed(rough, 0.8) * np.clip(gradient * 0.42, 0, 4.2))


def shade(height):
    """Return brightness 0..1 under light from the north-west; level ground gets the same value everywhere."""
    down, right = np.gradient(smoothed(height.values, 1.0), height.step * 2.5)
    tall = 0.9
    light = (tall * (right + down) / np.sqrt(2) + 0.85) / np.sqrt(1 + (tall * right) ** 2 + (tall * down) ** 2)
    return height.with_values(np.clip(light, 0, 1.25))
