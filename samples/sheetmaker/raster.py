"""A field of numbers over the map body, and the few operations on it that numpy does not have."""

from dataclasses import dataclass

import numpy as np
from PIL import Image


@dataclass(frozen=True)
class Raster:
    """Values at nodes: node (row, column) lies at body pixel origin + step * (column, row)."""

    values: np.ndarray
    step: float
    origin: float

    def at(self, x, y):
        """Return the values at body pixels, between nodes by the bilinear rule, beyond the edge as at the edge."""
        rows, columns = self.values.shape
        u = np.clip((np.asarray(x, float) - self.origin) / self.step, 0, columns - 1.001)
        v = np.clip((np.asarray(y, float) - self.origin) / self.step, 0, rows - 1.001)
        j, i = u.astype(int), v.astype(int)
        fu, fv = u - j, v - i
        z = self.values
        upper = z[i, j] * (1 - fu) + z[i, j + 1] * fu
        lower = z[i + 1, j] * (1 - fu) + z[i + 1, j + 1] * fu
        return upper * (1 - fv) + lower * fv

    def position(self, cell):
        """Return the body pixel (x, y) of the node with this flat index, or of an array of them."""
        row, column = np.divmod(cell, self.values.shape[1])
        return self.origin + self.step * column, self.origin + self.step * row

    def cell(self, x, y):
        """Return the flat index of the node nearest to a body pixel."""
        rows, columns = self.values.shape
        column = int(np.clip(round((x - self.origin) / self.step), 0, columns - 1))
        row = int(np.clip(round((y - self.origin) / self.step), 0, rows - 1))
        return row * columns + column

    def with_values(self, values):
        """Return other values at the same nodes."""
        return Raster(np.asarray(values, float).reshape(self.values.shape), self.step, self.origin)

    def finer(self, factor):
        """Return the field at nodes that lie factor times as dense, bent smoothly between the old ones."""
        rows, columns = self.values.shape
        image = Image.fromarray(self.values.astype(np.float32))
        fine = image.resize((columns * factor, rows * factor), Image.Resampling.BICUBIC)
        # A resized pixel's centre lies half a small pixel inside the old pixel's edge.
        shift = self.step * (0.5 / factor - 0.5)
        return Raster(np.asarray(fine, float), self.step / factor, self.origin + shift)


def smoothed(values, sigma):
    """Return the field blurred by a Gaussian of sigma cells; the edge repeats outwards."""
    reach = max(1, int(3 * sigma))
    weights = np.exp(-0.5 * (np.arange(-reach, reach + 1) / sigma) ** 2)
    weights /= weights.sum()
    for axis in (0, 1):
        pad = [(reach, reach) if a == axis else (0, 0) for a in (0, 1)]
        wide = np.pad(values, pad, mode="edge")
        size = values.shape[axis]
        values = sum(w * np.take(wide, range(k, k + size), axis=axis) for k, w in enumerate(weights))
    return values


def spectral_noise(rng, shape, longest, exponent):
    """Return smooth noise of mean 0 and deviation 1 whose strength falls with frequency to the given exponent.

    longest is the longest wave in cells; slower waves are left out so that no tilt comes in by chance.
    """
    frequency = np.hypot(np.fft.fftfreq(shape[0])[:, None], np.fft.rfftfreq(shape[1])[None, :])
    gain = np.where(frequency >= 1.0 / longest, np.maximum(frequency, 1e-9) ** -exponent, 0.0)
    noise = np.fft.irfft2(np.fft.rfft2(rng.standard_normal(shape)) * gain, s=shape)
    return (noise - noise.mean()) / noise.std()


def nearest_source(source, reach):
    """Return (distance in cells, flat index of the nearest source cell) up to reach cells from a mask's cells.

    Spreads outwards a ring at a time; where no source is within reach the distance is infinite.
    """
    rows, columns = source.shape
    row, column = np.indices(source.shape)
    index = np.where(source, row * columns + column, -1)
    distance = np.where(source, 0.0, np.inf)
    for _ in range(reach):
        for down, right in [(-1, 0), (1, 0), (0, -1), (0, 1), (-1, -1), (1, 1), (-1, 1), (1, -1)]:
            moved = np.roll(index, (down, right), (0, 1))
            candidate = np.hypot(row - moved // columns, column - moved % columns)
            better = (moved >= 0) & (candidate < distance)
            distance[better] = candidate[better]
            index[better] = moved[better]
    return distance, index
