"""Writes PNG files of every colour type, depth and interlacing, byte by byte, with their truth."""

import os
import struct
import zlib

import numpy

from pictures import colours_of, write_truth

GREY, RGB, PALETTE, GREY_ALPHA, RGBA = 0, 2, 3, 4, 6
CHANNELS = {GREY: 1, RGB: 3, PALETTE: 1, GREY_ALPHA: 2, RGBA: 4}
# Adam7: first column, first row, column step, row step of each pass.
PASSES = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]
SIGNATURE = b"\x89PNG\r\n\x1A\n"


def chunk(kind, data=b""):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def row_bytes(samples, depth):
    """The samples of a row (columns × channels) as bytes, the first in the highest bits."""
    if depth == 16:
        return samples.astype(">u2").tobytes()
    if depth == 8:
        return samples.astype(numpy.uint8).tobytes()
    bits = "".join(format(sample, f"0{depth}b") for sample in samples.ravel())
    bits += "0" * (-len(bits) % 8)
    return bytes(int(bits[at:at + 8], 2) for at in range(0, len(bits), 8))


def paeth(left, above, corner):
    guess = left + above - corner
    distances = (abs(guess - left), abs(guess - above), abs(guess - corner))
    return (left, above, corner)[distances.index(min(distances))]


def filtered(row, above, kind, step):
    out = bytearray([kind])
    for at, value in enumerate(row):
        left = row[at - step] if at >= step else 0
        corner = above[at - step] if at >= step else 0
        out.append((value - (0, left, above[at], (left + above[at]) // 2, paeth(left, above[at], corner))[kind]) & 255)
    return bytes(out)


def filtered_rows(samples, colour_type, depth):
    """All rows, each with another of the five filters."""
    step = max(1, CHANNELS[colour_type] * depth // 8)
    rows = [row_bytes(row, depth) for row in samples]
    above = bytes(len(rows[0])) if rows else b""
    out = b""
    for number, row in enumerate(rows):
        out += filtered(row, above, number % 5, step)
        above = row
    return out


def png_bytes(samples, colour_type, depth, interlaced=False, before=b"", after=b"", split=1000):
    """A PNG file; `before` and `after` are chunks to put around the pixels."""
    height, width = samples.shape[:2]
    data = b""
    for left, top, columns, rows in PASSES if interlaced else [(0, 0, 1, 1)]:
        part = samples[top::rows, left::columns]
        if part.size:
            data += filtered_rows(part, colour_type, depth)
    packed = zlib.compress(data)
    header = struct.pack(">IIBBBBB", width, height, depth, colour_type, 0, 0, int(interlaced))
    pixels = b"".join(chunk(b"IDAT", packed[at:at + split]) for at in range(0, len(packed), split))
    return SIGNATURE + chunk(b"IHDR", header) + before + pixels + after + chunk(b"IEND")


def to_8_bits(samples, depth):
    """Exact in whole numbers: v / 257 rounded, or a small range stretched to 0..255."""
    if depth == 16:
        return (samples.astype(numpy.uint32) + 128) // 257
    return samples * (255 // (2 ** depth - 1))


def truth_of(samples, colour_type, depth, key=None):
    """RGBA of the samples; `key` is the colour that is transparent."""
    values = to_8_bits(samples.reshape(*samples.shape[:2], -1), depth)
    alpha = numpy.full(values.shape[:2], 255)
    if colour_type in (GREY_ALPHA, RGBA):
        alpha = values[..., -1]
    elif key is not None:
        alpha = numpy.where((samples.reshape(*values.shape) == key).all(axis=2), 0, 255)
    colours = values[..., :3] if colour_type in (RGB, RGBA) else numpy.repeat(values[..., :1], 3, axis=2)
    return numpy.dstack([colours, alpha])


def samples_of(width, height, colour_type, depth):
    random = numpy.random.default_rng(width * 100 + height + colour_type + depth * 7)
    return random.integers(0, 2 ** depth, (height, width, CHANNELS[colour_type]))


def save(folder, label, content, truth):
    name = os.path.join(folder, label + ".png")
    with open(name, "wb") as out:
        out.write(content)
    write_truth(name, truth)


def make_direct(folder):
    kinds = [(GREY, depth) for depth in (1, 2, 4, 8, 16)]
    kinds += [(colour_type, depth) for colour_type in (RGB, GREY_ALPHA, RGBA) for depth in (8, 16)]
    for colour_type, depth in kinds:
        for interlaced in (False, True):
            samples = samples_of(21, 19, colour_type, depth)
            label = f"type-{colour_type}-{depth}{'-interlaced' if interlaced else ''}"
            save(folder, label, png_bytes(samples, colour_type, depth, interlaced),
                 truth_of(samples, colour_type, depth))
            if colour_type in (GREY, RGB):
                key = samples[3, 4]
                samples[10:12, 5:9] = key
                if depth == 16:
                    samples[0, 0] = key ^ 1  # another colour, though the same in 8 bits
                save(folder, label + "-key", png_bytes(samples, colour_type, depth, interlaced, chunk(
                    b"tRNS", key.astype(">u2").tobytes())), truth_of(samples, colour_type, depth, key))
    every = numpy.arange(65536).reshape(256, 256, 1)
    save(folder, "every-16-bit-grey", png_bytes(every, GREY, 16), truth_of(every, GREY, 16))


def make_palettes(folder):
    for depth in (1, 2, 4, 8):
        for count in {2 ** depth, 2 ** depth * 3 // 4}:
            for alphas in (b"", bytes(range(0, 250, 50))[:count]):
                for interlaced in (False, True):
                    samples, colours = samples_of(21, 19, PALETTE, depth), colours_of(count)
                    full = numpy.zeros((256, 4), numpy.uint8)  # indices without a colour are black
                    full[:, 3] = 255
                    full[:count, :3] = colours
                    full[:len(alphas), 3] = list(alphas)
                    before = chunk(b"PLTE", colours.tobytes()) + (chunk(b"tRNS", alphas) if alphas else b"")
                    label = f"palette-{depth}-{count}-{len(alphas)}{'-interlaced' if interlaced else ''}"
                    save(folder, label, png_bytes(samples, PALETTE, depth, interlaced, before),
                         full[samples[..., 0]])


def make_small_interlaced(folder):
    """Sizes at which some of the seven passes are empty."""
    for width in range(1, 10):
        for height in (1, 2, 4, 5, 8, 9):
            samples = samples_of(width, height, RGB, 8)
            save(folder, f"interlaced-{width}x{height}", png_bytes(samples, RGB, 8, True), truth_of(samples, RGB, 8))


def make_with_notes(folder):
    """Chunks that must not change a pixel: gamma, profile, text, animation frames, chunks nobody knows."""
    samples = samples_of(21, 19, RGB, 8)
    notes = chunk(b"gAMA", struct.pack(">I", 100000)) + chunk(b"tEXt", b"Title\0sheet") + chunk(b"prVt", b"x" * 999)
    notes += chunk(b"iCCP", b"broken\0\0" + zlib.compress(b"no profile"))
    notes += chunk(b"zTXt", b"Comment\0\0" + zlib.compress(bytes(10_000_000)))
    animation = chunk(b"acTL", struct.pack(">II", 1, 0))
    frames = chunk(b"fcTL", struct.pack(">IIIIIHHBB", 0, 21, 19, 0, 0, 1, 10, 0, 0)) + chunk(b"fdAT", b"\0\0\0\1junk")
    save(folder, "with-notes", png_bytes(samples, RGB, 8, before=notes), truth_of(samples, RGB, 8))
    save(folder, "animated", png_bytes(samples, RGB, 8, before=animation, after=frames), truth_of(samples, RGB, 8))
    save(folder, "split-data", png_bytes(samples, RGB, 8, split=1), truth_of(samples, RGB, 8))


def make_bad_chunks(folder):
    """Chunks with a wrong checksum: beside the pixels ("beside-", with truth), and such as concern them."""
    samples = samples_of(21, 19, RGB, 8)

    def spoilt(kind, data):
        whole = chunk(kind, data)
        return whole[:-1] + bytes([whole[-1] ^ 1])

    beside = {b"gAMA": struct.pack(">I", 45455), b"cHRM": bytes(32), b"sRGB": b"\0", b"iCCP": b"x\0\0" + zlib.compress(b"y"),
              b"tEXt": b"Title\0sheet", b"zTXt": b"Title\0\0" + zlib.compress(b"sheet"), b"iTXt": b"Title\0\0\0\0\0sheet",
              b"pHYs": struct.pack(">IIB", 3000, 3000, 1), b"tIME": bytes([7, 230, 1, 1, 1, 1, 1]), b"bKGD": bytes(6),
              b"sBIT": b"\5\5\5", b"vpAg": bytes(9)}
    for kind, data in beside.items():
        for where in ("before", "after"):
            save(folder, f"beside-{kind.decode()}-{where}", png_bytes(samples, RGB, 8, **{where: spoilt(kind, data)}),
                 truth_of(samples, RGB, 8))
    exif = b"II*\0\x08\0\0\0\1\0\x12\1\3\0\1\0\0\0\3\0\0\0\0\0\0\0"
    for label, data in (("tRNS", bytes(6)), ("tRNs", bytes(6)), ("eXIf", exif), ("eXIg", exif), ("PLTE", bytes(9)), ("IDAT", b"")):
        with open(os.path.join(folder, f"needed-{label}.png"), "wb") as out:
            out.write(png_bytes(samples, RGB, 8, before=spoilt(label.encode(), data)))


def make(folder):
    make_direct(folder)
    make_palettes(folder)
    make_small_interlaced(folder)
    make_with_notes(folder)
