"""Writes BMP files of every kind, byte by byte, with their truth.

The layouts are those of Microsoft's BITMAPCOREHEADER, BITMAPINFOHEADER, BITMAPV4HEADER and BITMAPV5HEADER
and of OS/2's BITMAPINFOHEADER2. The truth follows from the numbers that are written, not from a decoder.
"""

import os
import struct

import numpy

from pictures import colours_of, indices_of, test_picture, write_truth

HEADER_BYTES = {"core": 12, "os2-16": 16, "info": 40, "v2": 52, "v3": 56, "os2-64": 64, "v4": 108, "v5": 124}
RGB, RLE8, RLE4, BITFIELDS, RLE24, ALPHABITFIELDS = 0, 1, 2, 3, 4, 6


def header(kind, width, height, bits, compression=RGB, colours=0, masks=()):
    size = HEADER_BYTES[kind]
    if kind == "core":
        return struct.pack("<IHHHH", size, width, height, 1, bits)
    fields = struct.pack("<IiiHHIIiiII", size, width, height, 1, bits, compression, 0, 2835, 2835, colours, 0)
    mask_bytes = struct.pack(f"<{len(masks)}I", *masks)
    if size <= 40:
        return fields[:size] + mask_bytes
    if kind == "os2-64":
        return fields.ljust(size, b"\0")
    return (fields + mask_bytes).ljust(size, b"\0")[:size]


def write_bmp(name, head, palette, pixels, gap=b"", first_pixel=None):
    offset = 14 + len(head) + len(palette) + len(gap)
    with open(name, "wb") as out:
        out.write(struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0,
                              offset if first_pixel is None else first_pixel))
        out.write(head + palette + gap + pixels)


def pack_rows(rows, downwards=False, last_padding=True):
    """Rows of bytes, each filled up to four bytes with something that is not 0."""
    ordered = rows if downwards else rows[::-1]
    packed = b"".join(bytes(row) + b"\xAA" * (-len(row) % 4) for row in ordered)
    return packed if last_padding else packed[: len(packed) - (-len(rows[0]) % 4)]


def pack_indices(indices, bits):
    """Each row of indices as bytes, the first pixel in the highest bits."""
    rows = []
    for row in indices:
        bit_text = "".join(format(index, f"0{bits}b") for index in row)
        bit_text += "0" * (-len(bit_text) % 8)
        rows.append(bytes(int(bit_text[at:at + 8], 2) for at in range(0, len(bit_text), 8)))
    return rows


def palette_bytes(colours, core):
    return b"".join(bytes((blue, green, red)) + (b"" if core else b"\0") for red, green, blue in colours.tolist())


def palette_truth(indices, colours):
    """Indices without a colour are black."""
    full = numpy.zeros((256, 4), numpy.uint8)
    full[:, 3] = 255
    full[: len(colours), :3] = colours
    return full[indices]


def make_palettes(folder):
    for bits in (1, 2, 4, 8):
        for kind in HEADER_BYTES:
            indices, colours = indices_of(29, 7, 2 ** bits), colours_of(2 ** bits)
            name = os.path.join(folder, f"palette-{bits}-{kind}.bmp")
            write_bmp(name, header(kind, 29, 7, bits), palette_bytes(colours, kind == "core"),
                      pack_rows(pack_indices(indices, bits)))
            write_truth(name, palette_truth(indices, colours))
        for width in range(1, 10):
            indices, colours = indices_of(width, 3, 2 ** bits), colours_of(2 ** bits)
            name = os.path.join(folder, f"palette-{bits}-width-{width}-downwards.bmp")
            write_bmp(name, header("info", width, -3, bits), palette_bytes(colours, False),
                      pack_rows(pack_indices(indices, bits), downwards=True))
            write_truth(name, palette_truth(indices, colours))


def make_odd_palettes(folder):
    indices, colours = indices_of(13, 5, 256), colours_of(100)
    name = os.path.join(folder, "palette-short.bmp")
    write_bmp(name, header("info", 13, 5, 8, colours=100), palette_bytes(colours, False),
              pack_rows(pack_indices(indices, 8)))
    write_truth(name, palette_truth(indices, colours))
    name = os.path.join(folder, "palette-cut-by-pixels.bmp")  # claims 256 colours, has room for 100
    write_bmp(name, header("info", 13, 5, 8), palette_bytes(colours, False), pack_rows(pack_indices(indices, 8)))
    write_truth(name, palette_truth(indices, colours))
    colours = colours_of(16)
    indices = indices_of(13, 5, 16)
    name = os.path.join(folder, "palette-too-many-and-gap.bmp")
    write_bmp(name, header("info", 13, 5, 4, colours=300), palette_bytes(colours, False),
              pack_rows(pack_indices(indices, 4)), gap=bytes(range(77)))
    write_truth(name, palette_truth(indices, colours))
    name = os.path.join(folder, "palette-without-offset.bmp")
    write_bmp(name, header("info", 13, 5, 4), palette_bytes(colours, False),
              pack_rows(pack_indices(indices, 4)), first_pixel=0)
    write_truth(name, palette_truth(indices, colours))


def make_true_colour(folder):
    picture = test_picture(31, 9)
    truth = numpy.dstack([picture, numpy.full(picture.shape[:2], 255, numpy.uint8)])
    blue_first = picture[..., ::-1]
    with_filler = numpy.dstack([blue_first, picture[..., 0]])  # the fourth byte means nothing
    for kind in HEADER_BYTES:
        name = os.path.join(folder, f"rgb-24-{kind}.bmp")
        write_bmp(name, header(kind, 31, 9, 24), b"", pack_rows([row.tobytes() for row in blue_first]))
        write_truth(name, truth)
    name = os.path.join(folder, "rgb-24-downwards-unpadded-end.bmp")
    write_bmp(name, header("info", 31, -9, 24), b"",
              pack_rows([row.tobytes() for row in blue_first], downwards=True, last_padding=False))
    write_truth(name, truth)
    name = os.path.join(folder, "rgb-32.bmp")
    write_bmp(name, header("info", 31, 9, 32), b"", pack_rows([row.tobytes() for row in with_filler]))
    write_truth(name, truth)


def scaled_field(pixels, mask):
    """round(v * 255 / largest) in whole numbers."""
    if mask == 0:
        return None
    shift = (mask & -mask).bit_length() - 1
    largest = mask >> shift
    values = (pixels.astype(object) & mask) >> shift
    return ((values * 510 + largest) // (2 * largest)).astype(numpy.uint8)


FIELDS = [
    ("555", 16, "info", BITFIELDS, (0x7C00, 0x3E0, 0x1F)),
    ("565", 16, "info", BITFIELDS, (0xF800, 0x7E0, 0x1F)),
    ("565-v4", 16, "v4", BITFIELDS, (0xF800, 0x7E0, 0x1F, 0)),
    ("4444-v3", 16, "v3", BITFIELDS, (0xF00, 0xF0, 0xF, 0xF000)),
    ("1555-v5", 16, "v5", BITFIELDS, (0x7C00, 0x3E0, 0x1F, 0x8000)),
    ("4444-alpha-fields", 16, "info", ALPHABITFIELDS, (0xF00, 0xF0, 0xF, 0xF000)),
    ("332-7", 16, "v5", BITFIELDS, (0xE0, 0x1C, 0x3, 0x7F00)),
    ("8888-v4", 32, "v4", BITFIELDS, (0xFF0000, 0xFF00, 0xFF, 0xFF000000)),
    ("8888-v5-other-order", 32, "v5", BITFIELDS, (0xFF, 0xFF00, 0xFF0000, 0xFF000000)),
    ("888-v2", 32, "v2", BITFIELDS, (0xFF000000, 0xFF0000, 0xFF00)),
    ("888-info", 32, "info", BITFIELDS, (0xFF0000, 0xFF00, 0xFF)),
    ("10-10-10-2", 32, "v5", BITFIELDS, (0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000)),
    ("16-9-7", 32, "info", BITFIELDS, (0xFFFF0000, 0xFF80, 0x7F)),
    ("no-green", 32, "info", BITFIELDS, (0xFF0000, 0, 0xFF)),
]


def make_fields(folder):
    random = numpy.random.default_rng(7)
    cases = FIELDS + [("default", 16, "info", RGB, ())]
    for label, bits, kind, compression, masks in cases:
        pixels = random.integers(0, 2 ** bits, (11, 53), numpy.uint64)
        if bits == 16 and label in ("565", "default"):
            pixels = numpy.arange(65536, dtype=numpy.uint64).reshape(256, 256)
        height, width = pixels.shape
        rows = [row.astype("<u2" if bits == 16 else "<u4").tobytes() for row in pixels]
        name = os.path.join(folder, f"fields-{bits}-{label}.bmp")
        write_bmp(name, header(kind, width, height, bits, compression, masks=masks), b"", pack_rows(rows))
        used = masks or (0x7C00, 0x3E0, 0x1F)
        channels = [scaled_field(pixels, mask) for mask in used]
        nothing = numpy.zeros((height, width), numpy.uint8)
        channels = [nothing if channel is None and at < 3 else channel for at, channel in enumerate(channels)]
        if len(channels) < 4 or channels[3] is None:
            channels = channels[:3] + [nothing + 255]
        write_truth(name, numpy.dstack(channels))


def make_runs(folder):
    """Each case: the codes, and the indices that they give, rows in stored order (from the bottom)."""
    eol, eob = b"\0\0", b"\0\1"
    cases = {
        # (width, height, bits, codes, rows)
        "runs": (6, 3, 8, b"\x06\x07" + eol + b"\x02\x01\x04\x09" + eol + b"\x06\x02" + eol + eob,
                 [[7] * 6, [1, 1, 9, 9, 9, 9], [2] * 6]),
        "literals": (5, 2, 8, b"\0\x05\x01\x02\x03\x04\x05\0" + eol + b"\0\x04\x09\x08\x07\x06\x01\x03" + eob,
                     [[1, 2, 3, 4, 5], [9, 8, 7, 6, 3]]),
        "move-right": (8, 1, 8, b"\x02\x05\0\x02\x03\0\x03\x06" + eob, [[5, 5, 0, 0, 0, 6, 6, 6]]),
        "move-up": (4, 4, 8, b"\x01\x05\0\x02\x01\x02\x02\x06" + eob,
                    [[5, 0, 0, 0], [0] * 4, [0, 0, 6, 6], [0] * 4]),
        "early-end": (4, 3, 8, b"\x02\x05" + eob, [[5, 5, 0, 0], [0] * 4, [0] * 4]),
        "nothing": (4, 3, 8, eob, [[0] * 4] * 3),
        "short-rows": (4, 2, 8, b"\x02\x05" + eol + b"\x01\x06" + eol, [[5, 5, 0, 0], [6, 0, 0, 0]]),
        "no-end-code": (4, 2, 8, b"\x04\x05" + eol + b"\x04\x06", [[5] * 4, [6] * 4]),
        "too-long": (4, 2, 8, b"\xFF\x05" + eol + b"\0\x06\1\2\3\4\5\6" + eol + eob, [[5] * 4, [1, 2, 3, 4]]),
        "move-beyond": (4, 2, 8, b"\x04\x05\0\x02\xFF\xFF" + eob, [[5] * 4, [0] * 4]),
        "runs-4": (7, 2, 4, b"\x07\x12" + eol + b"\x03\x45\x04\x67" + eol + eob,
                   [[1, 2, 1, 2, 1, 2, 1], [4, 5, 4, 6, 7, 6, 7]]),
        "literals-4": (5, 3, 4, b"\0\x05\x12\x34\x50\0" + eol + b"\0\x03\x67\x80\x02\x99" + eol +
                       b"\0\x04\x12\x34\x01\x50" + eob,
                       [[1, 2, 3, 4, 5], [6, 7, 8, 9, 9], [1, 2, 3, 4, 5]]),
        "move-4": (6, 3, 4, b"\x01\x50\0\x02\x02\x01\x02\x67" + eob, [[5] + [0] * 5, [0, 0, 0, 6, 7, 0], [0] * 6]),
    }
    for label, (width, height, bits, codes, rows) in cases.items():
        colours = colours_of(2 ** bits)
        name = os.path.join(folder, f"rle-{label}.bmp")
        write_bmp(name, header("info", width, height, bits, RLE8 if bits == 8 else RLE4),
                  palette_bytes(colours, False), codes)
        write_truth(name, palette_truth(numpy.array(rows[::-1]), colours))
    name = os.path.join(folder, "rle-downwards.bmp")
    width, height, bits, codes, rows = cases["runs"]
    write_bmp(name, header("info", width, -height, bits, RLE8), palette_bytes(colours_of(256), False), codes)
    write_truth(name, palette_truth(numpy.array(rows), colours_of(256)))
    name = os.path.join(folder, "rle-24.bmp")
    write_bmp(name, header("os2-64", 3, 2, 24, RLE24), b"",
              b"\x03\x0A\x0B\x0C" + eol + b"\0\x03\1\2\3\4\5\6\7\x08\x09\0" + eob)
    write_truth(name, numpy.array([[[3, 2, 1, 255], [6, 5, 4, 255], [9, 8, 7, 255]], [[12, 11, 10, 255]] * 3]))


def make(folder):
    make_palettes(folder)
    make_odd_palettes(folder)
    make_true_colour(folder)
    make_fields(folder)
    make_runs(folder)
