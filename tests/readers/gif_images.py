"""Writes GIF files of every kind, byte by byte (GIF89a), with their truth."""

import os
import struct

import numpy

from pictures import colours_of, indices_of, write_truth


def lzw(indices, code_size):
    """The indices packed as GIF's LZW in sub-blocks."""
    clear, end = 1 << code_size, (1 << code_size) + 1
    bits, bit_count, out = 0, 0, bytearray()

    def put(code, width):
        nonlocal bits, bit_count
        bits |= code << bit_count
        bit_count += width
        while bit_count >= 8:
            out.append(bits & 255)
            bits >>= 8
            bit_count -= 8

    table, width = {(index,): index for index in range(clear)}, code_size + 1
    following = end + 1
    put(clear, width)
    word = ()
    for index in indices:
        if word + (index,) in table:
            word += (index,)
            continue
        put(table[word], width)
        if following < 4096:
            table[word + (index,)] = following
            if following == 1 << width:
                width += 1
            following += 1
        else:
            put(clear, width)
            table, width = {(one,): one for one in range(clear)}, code_size + 1
            following = end + 1
        word = (index,)
    put(table[word], width)
    put(end, width)
    if bit_count:
        out.append(bits & 255)
    blocks = b"".join(bytes([len(out[at:at + 255])]) + out[at:at + 255] for at in range(0, len(out), 255))
    return bytes([code_size]) + blocks + b"\0"


def palette_flags(colours):
    return 0x80 | (len(colours).bit_length() - 2) if colours is not None else 0


def palette_bytes(colours):
    return colours.tobytes() if colours is not None else b""


def interlaced_order(height):
    return [row for first, step in ((0, 8), (4, 8), (2, 4), (1, 2)) for row in range(first, height, step)]


def frame(indices, left=0, top=0, colours=None, interlaced=False, transparent=None, code_size=8):
    height, width = indices.shape
    control = b""
    if transparent is not None:
        control = b"!\xF9\x04" + struct.pack("<BHB", 1, 0, transparent) + b"\0"
    flags = palette_flags(colours) | (0x40 if interlaced else 0)
    rows = indices[interlaced_order(height)] if interlaced else indices
    return (control + b"," + struct.pack("<HHHHB", left, top, width, height, flags) + palette_bytes(colours) +
            lzw(rows.ravel().tolist(), code_size))


def write_gif(name, screen, colours, *blocks, version=b"GIF89a"):
    with open(name, "wb") as out:
        out.write(version + struct.pack("<HHBBB", *screen, palette_flags(colours), 0, 0) + palette_bytes(colours))
        out.write(b"".join(blocks) + b";")


def truth_of(screen, indices, colours, left=0, top=0, transparent=None):
    """The frame on a transparent screen; indices without a colour are black."""
    full = numpy.zeros((256, 4), numpy.uint8)
    full[:, 3] = 255
    full[: len(colours), :3] = colours
    if transparent is not None:
        full[transparent, 3] = 0
    height, width = indices.shape
    picture = numpy.zeros((max(screen[1], top + height), max(screen[0], left + width), 4), numpy.uint8)
    picture[top:top + height, left:left + width] = full[indices]
    return picture


def make_full_frames(folder):
    for count, version in ((2, b"GIF87a"), (4, b"GIF89a"), (16, b"GIF87a"), (256, b"GIF89a")):
        indices, colours = indices_of(21, 13, count), colours_of(count)
        name = os.path.join(folder, f"colours-{count}.gif")
        write_gif(name, (21, 13), colours, frame(indices, code_size=max(2, count.bit_length() - 1)), version=version)
        write_truth(name, truth_of((21, 13), indices, colours))
    colours = colours_of(256)
    for height in list(range(1, 10)) + [37]:
        indices = indices_of(11, height, 256)
        name = os.path.join(folder, f"interlaced-{height}.gif")
        write_gif(name, (11, height), colours, frame(indices, interlaced=True))
        write_truth(name, truth_of((11, height), indices, colours))
    indices = indices_of(300, 200, 256)
    indices[50:100] = 3  # long words, then a table that fills up again
    name = os.path.join(folder, "large.gif")
    write_gif(name, (300, 200), colours, frame(indices))
    write_truth(name, truth_of((300, 200), indices, colours))


def make_palettes(folder):
    shared, own = colours_of(64), colours_of(256)
    indices = indices_of(17, 9, 64)
    for label, file_colours, frame_colours in (("own", None, own), ("own-and-shared", shared, own)):
        name = os.path.join(folder, f"palette-{label}.gif")
        write_gif(name, (17, 9), file_colours, frame(indices, colours=frame_colours))
        write_truth(name, truth_of((17, 9), indices, frame_colours))
    name = os.path.join(folder, "palette-none.gif")
    write_gif(name, (17, 9), None, frame(indices))
    write_truth(name, truth_of((17, 9), indices, numpy.repeat(numpy.arange(256, dtype=numpy.uint8), 3).reshape(256, 3)))
    indices = indices_of(17, 9, 100)
    name = os.path.join(folder, "palette-short.gif")
    write_gif(name, (17, 9), shared, frame(indices))
    write_truth(name, truth_of((17, 9), indices, shared))


def make_screens(folder):
    """Frames beside, within and beyond their screen."""
    few, all_colours = colours_of(32), colours_of(256)
    cases = {
        # colours, frame's size, left, top, screen, transparent, interlaced
        "transparent": (few, (15, 8), 0, 0, (15, 8), 5, False),
        "within-free-index": (few, (7, 5), 3, 2, (15, 11), None, False),
        "within-free-index-interlaced": (few, (7, 5), 3, 2, (15, 11), None, True),
        "within-transparent": (few, (7, 5), 3, 2, (15, 11), 9, False),
        "within-all-used": (all_colours, (7, 5), 3, 2, (15, 11), None, False),
        "within-all-used-transparent": (all_colours, (7, 5), 3, 2, (15, 11), 200, False),
        "within-corner": (all_colours, (7, 5), 8, 6, (15, 11), None, True),
        "beyond": (few, (20, 12), 3, 2, (15, 11), None, False),
        "no-screen": (few, (20, 12), 0, 0, (0, 0), None, False),
    }
    for label, (colours, size, left, top, screen, transparent, interlaced) in cases.items():
        indices = indices_of(*size, len(colours))
        name = os.path.join(folder, f"screen-{label}.gif")
        write_gif(name, screen, colours, frame(indices, left, top, None, interlaced, transparent))
        write_truth(name, truth_of(screen, indices, colours, left, top, transparent))


def make_animation(folder):
    """Only the first frame shows; notes before it and frames after it do not matter."""
    indices, colours = indices_of(17, 9, 64), colours_of(64)
    notes = b"!\xFE\x05hello\0" + b"!\xFF\x0BNETSCAPE2.0\x03\1\0\0\0" + b"!\xFE\0"
    name = os.path.join(folder, "animation.gif")
    write_gif(name, (17, 9), colours, notes, frame(indices), frame(63 - indices, transparent=3))
    write_truth(name, truth_of((17, 9), indices, colours))


def make_wide_codes(folder):
    """Codes that begin with more bits than the indices need, and with one bit."""
    for code_size in (1, 3, 7, 9, 10, 11):
        indices = indices_of(90, 60, 2 if code_size == 1 else 8)
        colours = colours_of(8)
        name = os.path.join(folder, f"code-size-{code_size}.gif")
        write_gif(name, (90, 60), colours, frame(indices, code_size=code_size))
        write_truth(name, truth_of((90, 60), indices, colours))


def make_bad_codes(folder):
    """Frames whose pixels end too early, whose indices are too large, whose codes have no meaning or width."""
    colours = colours_of(256)
    few, large = indices_of(30, 20, 256), indices_of(30, 40, 256).astype(int)
    header = frame(large.astype(numpy.uint8))[:10]
    for label, data in (("early-end", lzw(few.ravel().tolist(), 8)), ("index", lzw((large + 300).ravel().tolist(), 11)),
                        ("meaning", b"\x08\x03\x00\xff\x03\x00"), ("no-width", b"\0\1\0\0"),
                        ("width", b"\x0c\4\0\0\0\0\0")):
        write_gif(os.path.join(folder, f"bad-{label}.gif"), (30, 40), colours, header + data)


def make(folder):
    make_full_frames(folder)
    make_wide_codes(folder)
    make_palettes(folder)
    make_screens(folder)
    make_animation(folder)
