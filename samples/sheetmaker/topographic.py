"""The topographic sheet as finished pictures: with soft edges and shading, and in a few flat colours."""

import numpy as np
from PIL import Image

from . import grid, inks, legend, sheet
from .body import BodyDrawing, window
from .canvas import DENSITY, Canvas
from .landscape import make_landscape
from .terrain import shade

SEED = 2531
_STRIP = 250  # rows a turn; the doubled RGB of the whole sheet would need 300 MB


def draw_sheet():
    """Return (the sheet as a Canvas of inks, the brightness of its map body as an 8-bit image)."""
    rng = np.random.default_rng(SEED)
    body = sheet.BODY
    landscape = make_landscape(rng, (body.width, body.height))
    drawing = BodyDrawing(rng, landscape, body.width, body.height)
    drawing.draw()
    grid.draw_graticule(drawing.canvas, (body.left, body.top))
    canvas = Canvas(sheet.WIDTH, sheet.HEIGHT)
    canvas.image.paste(drawing.canvas.image, (body.left * DENSITY, body.top * DENSITY))
    grid.draw_frame(canvas)
    grid.draw_kilometres(canvas)
    legend.draw_margin(canvas)
    return canvas, _brightness(landscape)


def _brightness(landscape):
    light = shade(landscape.height)
    grey = light.with_values(255 * np.clip(0.62 + 0.45 * light.values, 0.72, 1.0))
    return window(grey, (sheet.BODY.width, sheet.BODY.height))((sheet.BODY.width, sheet.BODY.height))


def _full_brightness(light):
    whole = Image.new("L", (sheet.WIDTH, sheet.HEIGHT), 255)
    whole.paste(light, (sheet.BODY.left, sheet.BODY.top))
    return whole


def _strips(canvas, light):
    """Yield (rows as RGB without shading, share of shaded ground 0..1, brightness 0..1), top to bottom."""
    ground = set(inks.ground_numbers())
    whole = _full_brightness(light)
    for top in range(0, sheet.HEIGHT, _STRIP):
        fine = canvas.image.crop((0, top * DENSITY, canvas.image.width, (top + _STRIP) * DENSITY))
        mask = fine.point([255 if number in ground else 0 for number in range(256)]).reduce(DENSITY)
        fine.putpalette(inks.image_palette())
        plain = np.asarray(fine.convert("RGB").reduce(DENSITY), np.float32)
        strip_light = np.asarray(whole.crop((0, top, sheet.WIDTH, top + _STRIP)), np.float32) / 255
        yield plain, np.asarray(mask, np.float32) / 255, strip_light


def _shaded(plain, ground, light):
    return np.rint(plain * (1 - ground * (1 - light))[..., None]).astype(np.uint8)


def pictures(canvas, light):
    """Return (the RGB picture, the indexed picture) of one drawing."""
    colours = inks.sheet_colours()
    nearest = inks.NearestColour(colours)
    smooth, flat = [], []
    for plain, ground, strip_light in _strips(canvas, light):
        smooth.append(_shaded(plain, ground, strip_light))
        flat.append(nearest(_shaded(plain, ground, inks.stepped(strip_light))))
    indexed = Image.fromarray(np.concatenate(flat), "P")
    indexed.putpalette([part for colour in colours for part in colour])
    return Image.fromarray(np.concatenate(smooth)), indexed
