"""The picture that the test images show, and the truth that is written beside them."""

import struct

import numpy


def test_picture(width, height):
    """A picture with slopes, edges and noise in all three channels, the same in every run."""
    y, x = numpy.mgrid[0:height, 0:width]
    random = numpy.random.default_rng(width * 65537 + height)
    picture = numpy.empty((height, width, 3), numpy.uint8)
    picture[..., 0] = x * 255 // max(width - 1, 1)
    picture[..., 1] = (y * 255 // max(height - 1, 1) + random.integers(0, 30, (height, width))).clip(0, 255)
    picture[..., 2] = numpy.where((x // 5 + y // 3) % 2 == 0, 230, 20)
    return picture


def write_truth(name, rgba):
    height, width = rgba.shape[:2]
    with open(name + ".rgba", "wb") as out:
        out.write(struct.pack("<ii", width, height))
        out.write(numpy.ascontiguousarray(rgba, numpy.uint8).tobytes())


def colours_of(count):
    """So many colours, red, green, blue, the same in every run."""
    random = numpy.random.default_rng(count)
    return random.integers(0, 256, (count, 3), numpy.uint8)


def indices_of(width, height, count):
    """A picture of indices below count, the same in every run."""
    random = numpy.random.default_rng(width * 1000 + height * 10 + count)
    return random.integers(0, count, (height, width))
