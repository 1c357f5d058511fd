"""Writes files that claim more pixels than they can hold or than the program accepts ("large-..." is to be
refused as too large, "damaged-..." as contradicting itself), and honest large images that pack very well."""

import os
import struct
import zlib

from PIL import Image

from bmp_images import RLE8, header, palette_bytes, write_bmp
from gif_images import frame, write_gif
from pictures import colours_of, indices_of
from png_images import SIGNATURE, chunk

Image.MAX_IMAGE_PIXELS = None


def png(width, height, depth=8, colour_type=2, interlaced=0):
    head = chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour_type, 0, 0, interlaced))
    return SIGNATURE + head + chunk(b"IDAT", zlib.compress(bytes(1000))) + chunk(b"IEND")


def with_jpeg_size(content, width, height):
    """The JPEG file with another size in its frame header."""
    at = next(at for at in range(len(content)) if content[at:at + 2] in (b"\xFF\xC0", b"\xFF\xC2"))
    return content[:at + 5] + struct.pack(">HH", height, width) + content[at + 9:]


def make_bombs(folder):
    def save(name, content):
        with open(os.path.join(folder, name), "wb") as out:
            out.write(content)

    save("damaged-60000.png", png(60000, 60000))
    save("damaged-60000-interlaced.png", png(60000, 60000, interlaced=1))
    save("damaged-one-bit.png", png(60000, 60000, 1, 0))
    save("damaged-no-width.png", png(0, 10))
    save("large-sides.png", png(2 ** 31 - 1, 2 ** 31 - 1))
    save("large-pixels.png", png(2 ** 19, 2 ** 18, 1, 0))
    save("damaged-beyond-31-bits.png", png(2 ** 32 - 1, 1))
    for label, width, height in (("damaged-60000", 60000, 60000), ("damaged-downwards", 60000, -60000),
                                 ("damaged-no-width", 0, 5), ("damaged-negative-width", -5, 5),
                                 ("damaged-no-height", 5, 0), ("large-lowest-height", 5, -2 ** 31),
                                 ("large-sides", 2 ** 31 - 1, 2 ** 31 - 1), ("large-pixels", 2 ** 19, 2 ** 18)):
        write_bmp(os.path.join(folder, label + ".bmp"), header("info", width, height, 24), b"", bytes(1000))
    write_bmp(os.path.join(folder, "large-runs.bmp"), header("info", 60000, 60000, 8, RLE8),
              palette_bytes(colours_of(256), False), b"\0\1")
    write_gif(os.path.join(folder, "large-screen.gif"), (65535, 65535), colours_of(4),
              frame(indices_of(5, 5, 4), code_size=2))
    for progressive in (False, True):
        name = os.path.join(folder, "large.jpg")
        Image.new("RGB", (16, 16)).save(name, progressive=progressive)
        with open(name, "rb") as whole:
            save(f"large-{progressive}.jpg", with_jpeg_size(whole.read(), 65500, 65500))
        os.remove(name)


def make_white(folder):
    side = 8300  # more pixels than are accepted without a look at the file's length
    Image.new("1", (side, side), 1).save(os.path.join(folder, "white.png"))
    Image.new("P", (side, side)).save(os.path.join(folder, "white.gif"))
    Image.new("L", (side, side), 255).save(os.path.join(folder, "white.jpg"), progressive=True)
    row = b"\xFF\x05" * (side // 255) + bytes((side % 255, 5)) + b"\0\0"
    write_bmp(os.path.join(folder, "white.bmp"), header("info", side, side, 8, RLE8),
              palette_bytes(colours_of(256), False), row * side + b"\0\1")
