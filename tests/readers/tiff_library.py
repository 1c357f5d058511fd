"""A writer of one-page TIFF files through the library's own coders, for those that no other tool writes."""

import ctypes
import math

import numpy

LIBRARY = ctypes.CDLL("libtiff.so.6")
LIBRARY.TIFFOpen.restype = ctypes.c_void_p
for name in "TIFFWriteEncodedStrip", "TIFFWriteEncodedTile":
    getattr(LIBRARY, name).restype = ctypes.c_ssize_t

LOG_FORMAT, PIXAR_FORMAT, FLOATS, BYTES = 65560, 65549, 0, 0  # of SGI's data, of Pixar's
TILE_WIDTH, TILE_HEIGHT = 322, 323


def write_encoded(file, picture, tags, tile=None, fmt=None):
    """Writes rows of samples as one strip, or as tiles of (width, height); `fmt`: a pseudo tag and its value,
    which says what the coder is given. `tags` in addition to those of the size."""
    handle = ctypes.c_void_p(LIBRARY.TIFFOpen(file.encode(), b"w"))
    height, width = picture.shape[:2]
    sizes = {256: width, 257: height, 284: 1}
    sizes |= {TILE_WIDTH: tile[0], TILE_HEIGHT: tile[1]} if tile else {278: height}
    for number, value in (sizes | tags).items():
        assert LIBRARY.TIFFSetField(handle, ctypes.c_uint32(number), ctypes.c_uint32(value)) == 1, number
    if fmt:
        assert LIBRARY.TIFFSetField(handle, ctypes.c_uint32(fmt[0]), ctypes.c_int(fmt[1])) == 1
    write = LIBRARY.TIFFWriteEncodedTile if tile else LIBRARY.TIFFWriteEncodedStrip
    for block, data in enumerate(blocks_of(picture, *tile) if tile else [picture.tobytes()]):
        assert write(handle, ctypes.c_uint32(block), data, ctypes.c_ssize_t(len(data))) == len(data)
    LIBRARY.TIFFClose(handle)


def blocks_of(picture, width, height):
    """The bytes of a picture's tiles; what lies outside repeats its edge."""
    down, across = math.ceil(picture.shape[0] / height), math.ceil(picture.shape[1] / width)
    more = [(0, down * height - picture.shape[0]), (0, across * width - picture.shape[1])]
    padded = numpy.pad(picture, more + [(0, 0)] * (picture.ndim - 2), "edge")
    for y in range(down):
        for x in range(across):
            yield padded[y * height:(y + 1) * height, x * width:(x + 1) * width].tobytes()
