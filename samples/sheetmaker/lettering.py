"""Letters on the sheet: rendered as masks, turned, given a halo, and kept from lying on one another."""

from functools import lru_cache

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from .canvas import DENSITY

_FOLDER = "/usr/share/fonts/truetype/dejavu/"  # of Debian's fonts-dejavu-core
_FILES = {"sans": "DejaVuSans.ttf", "bold": "DejaVuSans-Bold.ttf", "serif": "DejaVuSerif.ttf",
          "serifbold": "DejaVuSerif-Bold.ttf", "mono": "DejaVuSansMono.ttf"}
_SLANT = 0.22  # the core fonts have no italic; water names are written slanted


@lru_cache(maxsize=None)
def _font(face, size):
    return ImageFont.truetype(_FOLDER + _FILES[face], int(round(size * DENSITY)))


def _raw_mask(text, face, size, halo, spacing):
    font = _font(face, size)
    pad = int(halo * DENSITY) + 6
    advance = [font.getlength(letter) for letter in text]
    gap = spacing * DENSITY
    width = int(font.getlength(text) if not spacing else sum(advance) + gap * (len(text) - 1)) + 2 * pad
    ascent, descent = font.getmetrics()
    mask = Image.new("L", (width, ascent + descent + 2 * pad), 0)
    draw = ImageDraw.Draw(mask)
    if not spacing:
        draw.text((pad, pad), text, 255, font, stroke_width=int(halo * DENSITY))
        return mask
    left = float(pad)
    for letter, step in zip(text, advance):
        draw.text((left, pad), letter, 255, font, stroke_width=int(halo * DENSITY))
        left += step + gap
    return mask


def text_mask(text, face, size, angle=0.0, halo=0.0, spacing=0.0, slant=False):
    """Return a black-and-white mask of fine pixels with the text; angle is in degrees, counter-clockwise."""
    mask = _raw_mask(text, face, size, halo, spacing)
    if slant:
        lean = _SLANT * mask.height
        wide = (mask.width + int(lean), mask.height)
        mask = mask.transform(wide, Image.Transform.AFFINE, (1, _SLANT, -lean, 0, 1, 0), Image.Resampling.BICUBIC)
    if angle:
        mask = mask.rotate(angle, Image.Resampling.BICUBIC, expand=True)
    return mask.point(lambda level: 255 if level >= 128 else 0)


def text_size(text, face, size, spacing=0.0):
    """Return (width, height) of a level text in sheet pixels."""
    font = _font(face, size)
    width = font.getlength(text) / DENSITY + spacing * max(0, len(text) - 1)
    return width, sum(font.getmetrics()) / DENSITY


def write(canvas, x, y, text, face="sans", size=14, ink="black", anchor="m", **style):
    """Write a text with its middle at y; anchor l, m or r says which of its points is at x.

    angle turns it about its middle. halo is the width of the free strip around it, which shows ground: an ink or an
    image as large as the canvas.
    """
    halo, ground = style.pop("halo", 0), style.pop("ground", "white")
    width, _ = text_size(text, face, size, style.get("spacing", 0.0))
    x += {"l": width / 2, "m": 0, "r": -width / 2}[anchor]
    if halo:
        canvas.stamp(text_mask(text, face, size, halo=halo, **style), x, y, ground)
    canvas.stamp(text_mask(text, face, size, **style), x, y, ink)


class Occupied:
    """Remembers, at a quarter of the sheet's density, which parts of the map body are taken."""

    _STEP = 4

    def __init__(self, width, height):
        self._taken = np.zeros((height // self._STEP + 1, width // self._STEP + 1), bool)

    def _cells(self, box):
        left, top, right, bottom = (value / self._STEP for value in box)
        return slice(max(0, int(top)), int(bottom) + 1), slice(max(0, int(left)), int(right) + 1)

    def inside(self, box, edge=6):
        """Tell whether a box (left, top, right, bottom) lies on the body with room to its edge."""
        rows, columns = self._taken.shape
        return (box[0] > edge and box[1] > edge and box[2] < columns * self._STEP - edge - 8
                and box[3] < rows * self._STEP - edge - 8)

    def free(self, box):
        """Tell whether nothing is marked in the box and it lies on the map body."""
        return self.inside(box) and not self._taken[self._cells(box)].any()

    def mark(self, box):
        """Take the box."""
        self._taken[self._cells(box)] = True

    def mark_points(self, points):
        """Take the small cells under many points."""
        cells = np.clip((np.asarray(points) / self._STEP).astype(int), 0, np.array(self._taken.shape)[::-1] - 1)
        self._taken[cells[:, 1], cells[:, 0]] = True


def boxes_around(x, y, width, height, gap):
    """Yield (centre x, centre y) of a text beside a point, best places first: right, left, above, below, corners."""
    reach_x, reach_y = gap + width / 2, gap + height / 2
    for right, down in [(1, 0), (-1, 0), (0, -1), (0, 1), (1, -0.8), (-1, -0.8), (1, 0.8), (-1, 0.8)]:
        yield x + right * reach_x, y + down * reach_y


def place(canvas, occupied, x, y, text, gap=8, clear_of=None, **style):
    """Write a text beside a point where nothing else is written; return whether a place was found.

    clear_of names further ground to keep off, even at the price of some distance, as long as there is a way to.
    """
    width, height = text_size(text, style.get("face", "sans"), style.get("size", 14), style.get("spacing", 0.0))
    height *= 0.8
    tries = [(gap * stretch, clear_of) for stretch in (1, 1.6, 2.3)] if clear_of else []
    for distance, other in tries + [(gap, None)]:
        for centre_x, centre_y in boxes_around(x, y, width, height, distance):
            box = (centre_x - width / 2 - 3, centre_y - height / 2, centre_x + width / 2 + 3, centre_y + height / 2)
            if occupied.free(box) and (other is None or other.free(box)):
                occupied.mark(box)
                write(canvas, centre_x, centre_y, text, **style)
                return True
    return False
