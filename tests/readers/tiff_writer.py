"""A writer of one-page TIFF files, for what no library writes, and what belongs to samples."""

import struct

import numpy

WIDTH, HEIGHT = 83, 61  # of most test pictures


def rgba_of(*channels):
    """Grey, grey and alpha, RGB or RGBA channels as one RGBA picture."""
    colours = [channels[0]] * 3 if len(channels) < 3 else list(channels[:3])
    alpha = channels[-1] if len(channels) % 2 == 0 else numpy.full(channels[0].shape, 255, numpy.uint8)
    return numpy.stack([*colours, alpha], -1)


SIZES = {3: "H", 4: "I", 5: "II", 11: "f"}


def write_tiff(name, tags, strips, order="<"):
    """tags: {number: (type, values)}; strips: the bytes of strips or tiles, which stand before the tags."""
    magic = (b"II" if order == "<" else b"MM") + struct.pack(order + "H", 42)
    offsets, position = [], 8
    for strip in strips:
        offsets.append(position)
        position += len(strip)
    places, lengths = (324, 325) if 322 in tags else (273, 279)
    tags = tags | {places: (4, offsets), lengths: (4, [len(strip) for strip in strips])}
    extra_at = position + 2 + len(tags) * 12 + 4
    entries, extra = b"", b""
    for number in sorted(tags):
        kind, values = tags[number]
        count = len(values) // len(SIZES[kind])
        data = struct.pack(order + SIZES[kind] * count, *values)
        entries += struct.pack(order + "HHI", number, kind, count)
        if len(data) <= 4:
            entries += data.ljust(4, b"\0")
        else:
            entries += struct.pack(order + "I", extra_at + len(extra))
            extra += data + b"\0" * (len(data) % 2)
    with open(name, "wb") as out:
        out.write(magic + struct.pack(order + "I", position) + b"".join(strips))
        out.write(struct.pack(order + "H", len(tags)) + entries + bytes(4) + extra)


def basic_tags(photometric, bits, samples=1, width=WIDTH, height=HEIGHT, rows=None):
    return {256: (4, [width]), 257: (4, [height]), 258: (3, [bits] * samples), 259: (3, [1]),
            262: (3, [photometric]), 277: (3, [samples]), 278: (4, [rows or height])}


def packed(values, bits):
    """Rows of small numbers, the most significant bit first, each row ending at a byte."""
    planes = [(values >> bit & 1).astype(numpy.uint8) for bit in range(bits - 1, -1, -1)]
    return numpy.packbits(numpy.stack(planes, -1).reshape(len(values), -1), axis=1).tobytes()


def scaled(values, most):
    return ((values.astype(numpy.uint64) * 255 + most // 2) // most).astype(numpy.uint8)


def colour_map(red, green, blue):
    return 320, (3, [int(v) for v in (*red, *green, *blue)])


def stretched(values, low, high):
    """Numbers between two others as 0 to 255; what is no number as 0."""
    with numpy.errstate(invalid="ignore"):
        level = numpy.floor((values.astype(float) - low) * (255 / (high - low)) + 0.5)
    return numpy.nan_to_num(level, nan=0).clip(0, 255).astype(numpy.uint8)
