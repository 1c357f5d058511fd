"""Makes the images that the tests of the decoders read.

usage: make_images.py THEME FOLDER

Each theme writes image files, and beside an image whose pixels are known by construction the truth as raw
RGBA, NAME.rgba: width and height as little-endian 32-bit numbers, then four bytes a pixel.
"""

import os
import sys

import numpy
from PIL import Image, ImageOps

import bmp_images
import bomb_images
import gif_images
import png_images
from pictures import test_picture, write_truth

Image.MAX_IMAGE_PIXELS = None

def make_kinds(folder):
    picture = Image.fromarray(test_picture(37, 23))
    for kind in ("bmp", "gif", "jpg", "png", "tif"):
        picture.save(os.path.join(folder, "image." + kind))


def save_turned(folder, name, picture, orientations=range(1, 9)):
    """The picture once for each of the Exif orientations, with the turned picture as truth."""
    for orientation in orientations:
        exif = Image.Exif()
        exif[0x0112] = orientation
        file = os.path.join(folder, f"{name}-{orientation}.png")
        picture.save(file, exif=exif, compress_level=1)
        write_truth(file, numpy.asarray(ImageOps.exif_transpose(Image.open(file)).convert("RGBA")))


def make_turned(folder):
    rgb = Image.fromarray(test_picture(67, 41))
    save_turned(folder, "rgb", rgb)
    save_turned(folder, "grey", rgb.convert("L"))
    save_turned(folder, "palette", rgb.quantize(50))
    rgba = rgb.copy()
    rgba.putalpha(rgb.getchannel("G"))
    save_turned(folder, "rgba", rgba)
    save_turned(folder, "one-row", rgb.crop((0, 7, 67, 8)))
    save_turned(folder, "one-column", rgb.crop((7, 0, 8, 41)))


def make_turned_large(folder):
    """More than one buffer of a turn (16 MiB) in both directions, the last ones not full."""
    picture = Image.fromarray(test_picture(4801, 3607)).convert("L")
    save_turned(folder, "large", picture, (3, 5, 7))


THEMES = {
    "bmp": bmp_images.make,
    "bombs": bomb_images.make_bombs,
    "gif": gif_images.make,
    "bad-gif": gif_images.make_bad_codes,
    "bad-chunks": png_images.make_bad_chunks,
    "kinds": make_kinds,
    "png": png_images.make,
    "turned": make_turned,
    "turned-large": make_turned_large,
    "white": bomb_images.make_white,
}


if __name__ == "__main__":
    THEMES[sys.argv[1]](sys.argv[2])
