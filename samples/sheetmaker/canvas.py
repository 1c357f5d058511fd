"""A drawing surface of ink numbers at twice the sheet's density, so that lines get soft edges when it is reduced."""

import numpy as np
from PIL import Image, ImageDraw

from .inks import NUMBER

DENSITY = 2


class Canvas:
    """Positions and widths are sheet pixels; an integer position is the centre of that pixel."""

    def __init__(self, width, height, ink="paper"):
        self.width, self.height = width, height
        self.image = Image.new("L", (width * DENSITY, height * DENSITY), NUMBER[ink])
        self._draw = ImageDraw.Draw(self.image)

    @staticmethod
    def _fine(points):
        # Pixel p covers the fine pixels 2p and 2p + 1; its centre is the border between them.
        return [(float(x) * DENSITY + 0.5, float(y) * DENSITY + 0.5) for x, y in points]

    def line(self, points, width, ink):
        """Draw a line through the points with round joints."""
        fine = max(1, int(round(width * DENSITY)))
        self._draw.line(self._fine(points), NUMBER[ink], fine, joint="curve" if fine > 4 else None)

    def dashes(self, points, width, ink, on, off):
        """Draw a broken line: on pixels drawn, off pixels left out, in turn."""
        for piece in dash_pieces(points, on, off):
            self.line(piece, width, ink)

    def polygon(self, points, ink):
        """Fill the area inside the points."""
        self._draw.polygon(self._fine(points), NUMBER[ink])

    def disc(self, x, y, radius, ink):
        """Fill a circle."""
        (u, v), reach = self._fine([(x, y)])[0], radius * DENSITY
        self._draw.ellipse((u - reach, v - reach, u + reach, v + reach), NUMBER[ink])

    def ring(self, x, y, radius, width, ink):
        """Draw a circle's outline."""
        (u, v), reach = self._fine([(x, y)])[0], radius * DENSITY
        self._draw.ellipse((u - reach, v - reach, u + reach, v + reach), None, NUMBER[ink], int(width * DENSITY))

    def block(self, left, top, right, bottom, ink):
        """Fill whole sheet pixels, left to right and top to bottom inclusive, with no soft edge."""
        fine = (left * DENSITY, top * DENSITY, right * DENSITY + DENSITY - 1, bottom * DENSITY + DENSITY - 1)
        self._draw.rectangle(fine, NUMBER[ink])

    def frame(self, left, top, right, bottom, width, ink):
        """Draw a rectangle's outline; its inner edge lies on the given pixels."""
        self.block(left - width, top - width, right + width, top - 1, ink)
        self.block(left - width, bottom + 1, right + width, bottom + width, ink)
        self.block(left - width, top, left - 1, bottom, ink)
        self.block(right + 1, top, right + width, bottom, ink)

    def stamp(self, mask, x, y, ink):
        """Ink a mask of fine pixels, centred on a position; ink may also be another fine image to copy from."""
        u = int(round(x * DENSITY + 0.5 - mask.width / 2))
        v = int(round(y * DENSITY + 0.5 - mask.height / 2))
        if isinstance(ink, Image.Image):
            self.image.paste(ink.crop((u, v, u + mask.width, v + mask.height)), (u, v), mask)
        else:
            self.image.paste(NUMBER[ink], (u, v, u + mask.width, v + mask.height), mask)

    def fill_mask(self, mask, ink):
        """Ink every fine pixel of a mask as large as the canvas."""
        self.image.paste(NUMBER[ink], (0, 0), mask)


def dash_pieces(points, on, off):
    """Return the drawn pieces of a broken line as lists of points."""
    points = np.asarray(points, float)
    steps = np.hypot(*np.diff(points, axis=0).T)
    along = np.concatenate([[0], np.cumsum(steps)])
    pieces = []
    for start in np.arange(0, along[-1], on + off):
        end = min(start + on, along[-1])
        inner = along[(along > start) & (along < end)]
        places = np.concatenate([[start], inner, [end]])
        pieces.append(np.column_stack([np.interp(places, along, points[:, k]) for k in (0, 1)]))
    return pieces
