"""The tiles of a map library: where they lie, their PNG subset, and how levels follow from each other."""

import io
import struct

import numpy
from PIL import Image
from reader_records import CHANNELS, GREY, PALETTE, RGB, RGBA, require

PIL_MODE = {GREY: "L", PALETTE: "P", RGB: "RGB", RGBA: "RGBA"}
FORMAT_OF_COLOUR_TYPE = {0: GREY, 2: RGB, 3: PALETTE, 6: RGBA}


def levels_of(sheet):
    """Width, height, columns and rows of every level."""
    width, height, levels = sheet["width"], sheet["height"], []
    while True:
        columns, rows = -(-width // sheet["tileWidth"]), -(-height // sheet["tileHeight"])
        levels.append((width, height, columns, rows))
        if columns == rows == 1:
            return levels
        width, height = -(-width // 2), -(-height // 2)


def check_png_subset(png):
    """Returns the pixel format that the header names."""
    require(png[:8] == b"\x89PNG\r\n\x1a\n", "a tile is no PNG")
    at, kinds, header = 8, [], None
    while at < len(png):
        length, kind = struct.unpack(">I4s", png[at : at + 8])
        header = png[at + 8 : at + 21] if kind == b"IHDR" else header
        kinds.append(kind)
        at += 12 + length
    require(at == len(png) and kinds[0] == b"IHDR" and kinds[-1] == b"IEND", "a PNG is out of order")
    without_repeats = [k for i, k in enumerate(kinds) if i == 0 or k != kinds[i - 1]]
    critical = [k for k in without_repeats if k[:1].isupper()]
    expected = [b"IHDR", b"PLTE", b"IDAT", b"IEND"] if header[9] == 3 else [b"IHDR", b"IDAT", b"IEND"]
    require(critical == expected, "a PNG has other chunks")
    require(header[8] == 8 and header[10:] == bytes(3), "a PNG has another layout")
    return FORMAT_OF_COLOUR_TYPE[header[9]]


def decode_png(png, width, height, expected_format=None):
    """Pixels as an array of height x width x channels."""
    pixel_format = check_png_subset(png)
    require(expected_format in (None, pixel_format), "a tile has another pixel format")
    image = Image.open(io.BytesIO(png))
    require(image.size == (width, height) and image.mode == PIL_MODE[pixel_format], "a PNG has another size")
    return pixel_format, image, numpy.asarray(image).reshape(height, width, CHANNELS[pixel_format])


def own_palette(image):
    """The entries that the PNG itself carries, with alpha."""
    colours = image.getpalette("RGB")
    alphas = image.info.get("transparency", b"")
    if isinstance(alphas, int):
        alphas = bytes([255] * alphas + [0])
    entries = [colours[i : i + 3] for i in range(0, len(colours), 3)]
    return [entry + [alphas[i] if i < len(alphas) else 255] for i, entry in enumerate(entries)]


def halved(pixels):
    """The mean of 2 x 2 RGBA pixels, weighted by alpha; pixels beyond the edge do not count."""
    height, width = pixels.shape[0] + pixels.shape[0] % 2, pixels.shape[1] + pixels.shape[1] % 2
    colour = numpy.zeros((height, width, 3))
    weight, count = numpy.zeros((height, width)), numpy.zeros((height, width))
    rows, columns = pixels.shape[:2]
    weight[:rows, :columns] = pixels[..., 3]
    colour[:rows, :columns] = pixels[..., :3] * pixels[..., 3:].astype(float)
    count[:rows, :columns] = 1

    def sums(a):
        return a[0::2, 0::2] + a[1::2, 0::2] + a[0::2, 1::2] + a[1::2, 1::2]

    weight, colour, count = sums(weight), sums(colour), sums(count)
    mean = numpy.zeros((height // 2, width // 2, 4))
    mean[..., :3] = colour / numpy.maximum(weight, 1)[..., None]
    mean[..., 3] = weight / count
    return mean


def as_rgba(pixel_format, pixels, palette):
    if pixel_format == PALETTE:
        return palette[pixels[..., 0]]
    if pixel_format == GREY:
        pixels = pixels.repeat(3, axis=2)
    opaque = numpy.full((*pixels.shape[:2], 1), 255, dtype=numpy.uint8)
    return pixels if pixel_format == RGBA else numpy.dstack([pixels, opaque])


def as_native(own, pixels, palette):
    """An edge tile's RGBA pixels in the map's own format; -1 for a colour that the palette lacks."""
    if own != PALETTE:
        return pixels[..., : CHANNELS[own]]
    first_index = {tuple(entry): index for index, entry in reversed(list(enumerate(palette.tolist())))}
    indices = [[first_index.get(tuple(pixel), -1) for pixel in line] for line in pixels.tolist()]
    return numpy.array(indices)[..., None]


def level_pixels(sheet, level, pngs):
    """RGBA pixels of a level from its tiles in order; and its pixels in the level's own format."""
    width, height, columns, rows = levels_of(sheet)[level]
    tile_width, tile_height, own = sheet["tileWidth"], sheet["tileHeight"], sheet["format"]
    palette = numpy.array(sheet["palette"] or [[0] * 4], dtype=numpy.uint8)
    if level > 0 and own == PALETTE:
        own = RGB if (palette[:, 3] == 255).all() else RGBA
    rgba = numpy.zeros((rows * tile_height, columns * tile_width, 4), dtype=numpy.uint8)
    native = numpy.zeros((*rgba.shape[:2], CHANNELS[own]), dtype=int)
    for position, png in enumerate(pngs):
        row, column = divmod(position, columns)
        edge = (column + 1) * tile_width > width or (row + 1) * tile_height > height
        found, image, pixels = decode_png(png, tile_width, tile_height, RGBA if edge else own)
        if found == PALETTE:
            carried = own_palette(image)[: int(pixels.max()) + 1]
            require(carried == sheet["palette"][: len(carried)], "a tile has another palette")
        top, left = row * tile_height, column * tile_width
        place = numpy.s_[top : top + tile_height, left : left + tile_width]
        rgba[place] = as_rgba(found, pixels, palette)
        native[place] = as_native(own, pixels, palette) if edge else pixels
    require(not rgba[height:].any() and not rgba[:, width:].any(), "something lies beyond the edge")
    native = native[:height, :width]
    require(native.min() >= 0, "a tile has a colour that the palette lacks")
    return rgba[:height, :width], native.astype(numpy.uint8)
