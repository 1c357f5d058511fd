"""The printing inks of the topographic sheet: a few flat colours, and the mixtures that the edges of lines need."""

import numpy as np

# Paper and ground first: the numbers of the ground inks are the ones that hill shading darkens.
INKS = {
    "paper": (255, 255, 255),
    "open": (250, 247, 226),
    "forest": (203, 226, 178),
    "meadow": (232, 240, 205),
    "built": (240, 214, 190),
    "water": (190, 222, 241),
    "shore": (38, 116, 180),
    "contour": (190, 128, 74),
    "index": (166, 96, 44),
    "black": (24, 22, 20),
    "road": (228, 92, 66),
    "lane": (250, 214, 96),
    "white": (254, 254, 252),
    "grid": (64, 96, 190),
    "graticule": (150, 70, 140),
    "sign": (84, 138, 70),
}
NUMBER = {name: number for number, name in enumerate(INKS)}
GRID = INKS["grid"]
_GROUND = ("open", "forest", "meadow", "built")
_SHADES = (0.80, 0.87, 0.935, 1.0)  # a printed sheet's hill shading: three screens and bare paper
_MIXED = ("black", "contour", "index", "shore", "road", "grid", "graticule")


def image_palette():
    """Return the inks as the flat list of 768 numbers that an indexed image carries."""
    flat = [part for colour in INKS.values() for part in colour]
    return flat + [0] * (768 - len(flat))


def ground_numbers():
    """Return the ink numbers that take hill shading."""
    return [NUMBER[name] for name in _GROUND]


def stepped(light):
    """Return a shading field reduced to the few screens of the indexed sheet."""
    steps = np.array(_SHADES)
    return steps[np.abs(light[..., None] - steps).argmin(-1)]


def _darkened(colour, light):
    return tuple(int(round(part * light)) for part in colour)


def sheet_colours():
    """Return the indexed sheet's colours, 64 at most: inks, shaded grounds, and half tones for the edges of lines."""
    colours = list(INKS.values())
    colours += [_darkened(INKS[name], light) for name in _GROUND for light in _SHADES[:-1]]
    for ink in _MIXED:
        grounds = ("paper", "open", "forest") if ink not in ("contour", "index") else ("open", "forest")
        colours += [tuple((a + b) // 2 for a, b in zip(INKS[ink], INKS[ground])) for ground in grounds]
    colours += [tuple((3 * a + b) // 4 for a, b in zip(INKS["black"], INKS["paper"]))]
    colours += [tuple((a + 3 * b) // 4 for a, b in zip(INKS["black"], INKS["paper"]))]
    unique = list(dict.fromkeys(colours))
    assert len(unique) <= 64
    return unique


class NearestColour:
    """Finds for each RGB pixel the nearest sheet colour by a table over the upper six bits of each part."""

    def __init__(self, colours):
        levels = np.arange(64) * 4 + 2
        red, green, blue = np.meshgrid(levels, levels, levels, indexing="ij")
        cells = np.stack([red, green, blue], -1).reshape(-1, 3).astype(np.int32)
        best = np.full(len(cells), np.iinfo(np.int32).max)
        self._table = np.zeros(len(cells), np.uint8)
        for number, colour in enumerate(colours):
            distance = ((cells - np.array(colour)) ** 2).sum(1)
            closer = distance < best
            best[closer] = distance[closer]
            self._table[closer] = number
        for number, colour in enumerate(colours):  # a colour must come out as itself
            self._table[self._key(np.array(colour, np.uint8))] = number

    @staticmethod
    def _key(rgb):
        wide = (rgb >> 2).astype(np.uint32)
        return (wide[..., 0] << 12) | (wide[..., 1] << 6) | wide[..., 2]

    def __call__(self, rgb):
        return self._table[self._key(rgb)]
