#!/usr/bin/python3
"""Makes seeds for the fuzz targets: make_seeds.py BUILD_FOLDER SEED_FOLDER.

Codec libraries are not instrumented, so the fuzzer cannot find their formats by itself: it begins with
small real files of each kind."""

import io
import shutil
import sqlite3
import struct
import subprocess
import sys
from pathlib import Path

import numpy
from PIL import Image


def pictures():
    """Names and small pictures of each pixel kind."""
    noise = numpy.random.RandomState(1).randint(0, 255, (31, 41, 4), dtype=numpy.uint8)
    whole = Image.fromarray(noise, "RGBA")
    return {
        "rgba": whole,
        "rgb": whole.convert("RGB"),
        "grey": whole.convert("L"),
        "palette": whole.convert("RGB").quantize(16),
        "bits": whole.convert("1"),
    }


VARIANTS = [
    ("png", {}),
    ("bmp", {}),
    ("gif", {}),
    ("jpeg", {}),
    ("jpeg", {"progressive": True}),
    ("tiff", {}),
    ("tiff", {"compression": "tiff_lzw"}),
    ("tiff", {"compression": "tiff_adobe_deflate"}),
    ("tiff", {"compression": "packbits"}),
    ("tiff", {"compression": "jpeg"}),
    ("tiff", {"compression": "group4"}),
]


def encoded(picture, kind, options):
    """The picture as a file of this kind; nothing when the kind does not take it."""
    stream = io.BytesIO()
    try:
        picture.save(stream, kind, **options)
    except (OSError, ValueError, KeyError):
        return None
    return stream.getvalue()


def write_images(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, picture in pictures().items():
        for number, (kind, options) in enumerate(VARIANTS):
            content = encoded(picture, kind, options)
            if content:
                (folder / f"{name}-{number}.{kind}").write_bytes(content)


def write_libraries(build, folder, image):
    folder.mkdir(parents=True, exist_ok=True)
    for name, key in (("plain", ""), ("sealed", "key1")):
        file = folder / f"{name}.Atlavex"
        file.unlink(missing_ok=True)
        subprocess.run([build / "fuzz" / "make_seed_library", file, image, key], check=True)


def write_parts(library, seeds):
    """The records and blobs of a plain library, as the targets for them want them."""
    database = sqlite3.connect(library)
    row = lambda text: [bytes(column) for (column,) in database.execute(text)]
    maps, icons = row("SELECT record FROM map"), row("SELECT record FROM icon")
    metadata, pages = row("SELECT record FROM metadata"), row("SELECT data FROM tile_index")
    header, blobs = row("SELECT header FROM library"), row("SELECT data FROM blob")
    for name in ("records", "tile", "contents"):
        (seeds / name).mkdir(exist_ok=True)
    for kind, records in enumerate((maps, icons, metadata, pages, header)):
        for number, record in enumerate(records):
            (seeds / "records" / f"{kind}-{number}").write_bytes(bytes([kind]) + record)
    for number, blob in enumerate(blobs):
        (seeds / "tile" / f"{number}.png").write_bytes(blob)
        record = maps[number % len(maps)]
        parts = b"".join(struct.pack("<H", len(part)) + part for part in (record, icons[0], metadata[0]))
        (seeds / "contents" / str(number)).write_bytes(parts + blob)


def copy_found(seeds):
    """Inputs that showed a fault once."""
    found = Path(__file__).resolve().parent.parent / "tests" / "data" / "fuzz"
    shutil.copytree(found, seeds, dirs_exist_ok=True)


def main():
    build, seeds = Path(sys.argv[1]), Path(sys.argv[2])
    write_images(seeds / "image")
    write_libraries(build, seeds / "library", seeds / "image" / "rgb-0.png")
    write_parts(seeds / "library" / "plain.Atlavex", seeds)
    (seeds / "worldfile").mkdir(exist_ok=True)
    (seeds / "worldfile" / "plain").write_text("2.5\n0\n0\n-2.5\n565000.25\n6142000.75\n")
    (seeds / "worldfile" / "turned").write_bytes(b"1e-3\r\n\r\n+0.5\r\n-0.5\r\n1\r\n10\r\n60\r\n")
    copy_found(seeds)


main()
