"""TIFF files whose strips and tiles are too large to be unpacked whole, and what coders of their own libraries make."""

import os
import struct
import zlib

import numpy
from osgeo import gdal

from pictures import write_truth
from tiff_gdal import in_memory, save_gdal
from tiff_library import BYTES, FLOATS, LOG_FORMAT, PIXAR_FORMAT, write_encoded
from tiff_writer import HEIGHT, WIDTH, basic_tags, rgba_of, stretched, write_tiff


def make_large_strips(folder):
    """One strip of more than the reader unpacks as a whole, samples together and in planes."""
    random = numpy.random.default_rng(8)
    width, height = 2600, 1300
    picture = numpy.repeat(random.integers(0, 6, (height, width // 26, 3), numpy.uint8) * 40, 26, 1)
    memory = in_memory(*numpy.moveaxis(picture, -1, 0))
    for name, options in {"together": [], "planes": ["INTERLEAVE=BAND"]}.items():
        for coder in "LZW", "DEFLATE":
            file = os.path.join(folder, f"{name}-{coder}.tif")
            save_gdal(file, memory, *options, f"COMPRESS={coder}", f"BLOCKYSIZE={height}", "PHOTOMETRIC=RGB")
            write_truth(file, rgba_of(*(picture[..., i] for i in range(3))))


def make_large_blocks(folder):
    """Tiles of more than libtiff is to take into memory as wholes, in each coder that is unpacked
    without it, with runs, repeats and noise; one tile reaches beyond the picture and one is left out."""
    random = numpy.random.default_rng(9)
    width, height = 2200, 2100
    picture = random.integers(0, 256, (3, height, width), numpy.uint8)
    picture[:, 300:900] //= 64
    picture[:, 900:1500] = numpy.arange(width) // 100
    picture[:, :, 2048:] = 0
    memory = in_memory(*picture)
    tiles = ["TILED=YES", "BLOCKXSIZE=2048", "BLOCKYSIZE=2048"]
    coders = {"NONE": [1], "PACKBITS": [1], "LZW": [1, 2], "DEFLATE": [1, 2], "ZSTD": [1, 2]}

    def put(name, memory, truth, *options):
        file = os.path.join(folder, name + ".tif")
        save_gdal(file, memory, "SPARSE_OK=TRUE", *options)
        write_truth(file, truth)

    for coder, predictors in coders.items():
        for predictor in predictors:
            coding = [f"COMPRESS={coder}"] + ([f"PREDICTOR={predictor}"] if predictor > 1 else [])
            put(f"tiles-{coder}-{predictor}", memory, rgba_of(*picture), "PHOTOMETRIC=RGB", *tiles, *coding)
    put("planes", memory, rgba_of(*picture), "PHOTOMETRIC=RGB", "INTERLEAVE=BAND", "COMPRESS=LZW", *tiles)
    deep = picture[0].astype(numpy.uint16) * 256 + picture[1]
    grey = rgba_of(((deep.astype(numpy.uint32) * 255 + 32767) // 65535).astype(numpy.uint8))
    memory = gdal.GetDriverByName("MEM").Create("", width, height, 1, gdal.GDT_UInt16)
    memory.GetRasterBand(1).WriteArray(deep)
    for order in "LITTLE", "BIG":
        put(f"deep-{order}", memory, grey, "COMPRESS=DEFLATE", "PREDICTOR=2", f"ENDIANNESS={order}", *tiles)


def make_long_strips(folder):
    """One strip of more stored bytes than libtiff is to take into memory, of noise that no coder makes small."""
    large = numpy.random.default_rng(10).integers(0, 256, (3, 2400, 2400), numpy.uint8)
    memory = in_memory(*large)
    for coder in "NONE", "PACKBITS", "LZW", "DEFLATE", "ZSTD":
        file = os.path.join(folder, f"strip-{coder}.tif")
        save_gdal(file, memory, "PHOTOMETRIC=RGB", "BLOCKYSIZE=2400", f"COMPRESS={coder}")
        write_truth(file, rgba_of(*large))


def make_large_coders(folder):
    """Tiles and strips too large to be unpacked as wholes in the other coders, and a row of tiles that are too
    many to be unpacked at the same time. The truth of coders with losses is another reader's."""
    width, height = 2200, 2100
    y, x = numpy.mgrid[0:height, 0:width]
    picture = numpy.stack([x // 9, y // 9, (x + y) // 17], 0).astype(numpy.uint8)
    picture[:, 300:400, 200:700] = numpy.random.default_rng(12).integers(0, 256, (3, 100, 500))
    memory = in_memory(*picture)
    tiles = ["TILED=YES", "BLOCKXSIZE=2064", "BLOCKYSIZE=2064"]
    strip = [f"BLOCKYSIZE={height}"]

    def put(name, memory, *options):
        file = os.path.join(folder, name + ".tif")
        save_gdal(file, memory, *options)
        shown = gdal.Open(file).ReadAsArray()
        write_truth(file, rgba_of(*shown.reshape(-1, *shown.shape[-2:])))

    for shape, layout in (("tiles", tiles), ("strip", strip)):
        for colours in "RGB", "YCBCR":
            put(f"jpeg-{colours}-{shape}", memory, "COMPRESS=JPEG", f"PHOTOMETRIC={colours}", *layout)
        put(f"jpeg-planes-{shape}", memory, "COMPRESS=JPEG", "PHOTOMETRIC=RGB", "INTERLEAVE=BAND", *layout)
        put(f"lzma-{shape}", memory, "COMPRESS=LZMA", "PREDICTOR=2", "LZMA_PRESET=1", *layout)
        put(f"lerc-{shape}", memory, "COMPRESS=LERC", "PHOTOMETRIC=RGB", *layout)
        put(f"lerc-planes-{shape}", memory, "COMPRESS=LERC_ZSTD", "INTERLEAVE=BAND", *layout)
        put(f"webp-{shape}", memory, "COMPRESS=WEBP", "WEBP_LEVEL=80", "PHOTOMETRIC=RGB", *layout)
        put(f"webp-lossless-{shape}", in_memory(*picture, picture[0] | 1), "COMPRESS=WEBP", "WEBP_LOSSLESS=YES", *layout)
    heights = gdal.GetDriverByName("MEM").Create("", width, height, 1, gdal.GDT_Float32)
    values = picture[0].astype(numpy.float32) * 3 + picture[1] / numpy.float32(7)
    heights.GetRasterBand(1).WriteArray(values)
    file = os.path.join(folder, "floats.tif")
    save_gdal(file, heights, "COMPRESS=ZSTD", "PREDICTOR=3", *tiles)
    write_truth(file, rgba_of(stretched(values, values.min(), values.max())))
    # The predictor stores the most significant bytes first whatever the file's order.
    for size, rows in (("small", 100), ("large", height)):
        parts = values[:rows].astype(">f4").view(numpy.uint8).reshape(rows, width, 4).swapaxes(1, 2).reshape(rows, -1)
        data = zlib.compress(numpy.diff(parts, axis=1, prepend=numpy.uint8(0)).tobytes(), 1)
        file = os.path.join(folder, f"floats-{size}-big.tif")
        write_tiff(file, basic_tags(1, 32, 1, width, rows) | {259: (3, [8]), 317: (3, [3]), 339: (3, [3])}, [data], ">")
        write_truth(file, rgba_of(stretched(values[:rows], values[:rows].min(), values[:rows].max())))
    bits = (picture[0] ^ picture[1]) >> 2 & 1
    lines = numpy.tile(bits, (1, 2))[:, :4300]
    for coder in "RLE", "FAX3", "FAX4":
        file = os.path.join(folder, f"fax-{coder}.tif")
        save_gdal(file, in_memory(lines), "NBITS=1", "COMPRESS=CCITT" + coder, "TILED=YES", "BLOCKXSIZE=4128",
                  "BLOCKYSIZE=2064")
        write_truth(file, rgba_of(lines * numpy.uint8(255)))
    # More than can be open at a time, one of them left out.
    row = numpy.tile(picture[0], (1, 5))[:, :8300]
    row[:2064, 2064:4128] = 0
    file = os.path.join(folder, "many.tif")
    save_gdal(file, in_memory(row), "COMPRESS=ZSTD", "SPARSE_OK=TRUE", *tiles)
    write_truth(file, rgba_of(row))


def make_logarithms(folder):
    """Pictures of light in SGI's and Pixar's logarithms, small and large. The truth of the former is their maker's
    formula for a screen."""
    for size, (height, width) in (("small", (HEIGHT, WIDTH)), ("large", (2100, 2200))):
        light = numpy.linspace(0.01, 1.2, height * width).reshape(height, width).astype(numpy.float32)
        colours = numpy.stack([light * 0.9, light, light * 1.1], -1).astype(numpy.float32)
        to_screen = numpy.array([[2.690, -1.276, -0.414], [-1.022, 1.978, 0.044], [0.061, -0.224, 1.163]])
        shown = (256 * numpy.sqrt((colours @ to_screen.T).clip(0))).clip(0, 255)

        def put(name, picture, truth, tags, fmt, tile=None):
            file = os.path.join(folder, f"{name}-{size}.tif")
            write_encoded(file, picture, tags, tile, fmt)
            write_truth(file, rgba_of(*(numpy.asarray(c, numpy.uint8) for c in truth)))

        wide = {258: 16, 339: 2}
        floats = LOG_FORMAT, FLOATS
        put("logl", light, [(256 * numpy.sqrt(light)).clip(0, 255)], wide | {259: 34676, 262: 32844, 277: 1}, floats)
        tags = wide | {262: 32845, 277: 3}
        put("logluv", colours, numpy.moveaxis(shown, -1, 0), tags | {259: 34676}, floats)
        put("logluv-24", colours, numpy.moveaxis(shown, -1, 0), tags | {259: 34677}, floats)
        large = (2064, 2064) if size == "large" else (48, 32)
        put("logluv-tiles", colours, numpy.moveaxis(shown, -1, 0), tags | {259: 34676}, floats, large)
        rgb = numpy.stack([light * 200, light * 100, 255 - light * 200], -1).astype(numpy.uint8)
        put("pixar", rgb, numpy.moveaxis(rgb, -1, 0), {258: 8, 259: 32909, 262: 2, 277: 3}, (PIXAR_FORMAT, BYTES))
    lines = (numpy.add.outer(numpy.arange(3000), numpy.arange(1600) * 3) >> 4 & 1).astype(numpy.uint8)
    for size, height in (("small", 100), ("large", 3000)):
        file = os.path.join(folder, f"jbig-{size}.tif")
        packed_lines = numpy.packbits(lines[:height], axis=1)
        write_encoded(file, packed_lines, {256: 1600, 258: 1, 259: 34661, 262: 0, 277: 1})
        write_truth(file, rgba_of((1 - lines[:height]) * numpy.uint8(255)))


def make_sparse_plates(folder):
    """Large plates in few bytes: white rows of one bit each in G4, a thousand megapixels of one byte in ZSTD."""
    width, height, rows = 24000, 20000, 20000
    strip = b"\xff" * (rows // 8) + b"\x00\x10\x01"  # "as above" for each row, and the end mark
    tags = basic_tags(0, 1, 1, width, height, rows) | {259: (3, [4])}
    write_tiff(os.path.join(folder, "g4.tif"), tags, [strip])
    block, last = struct.pack("<I", 1 << 1 | 131072 << 3)[:3], struct.pack("<I", 1 | 1 << 1 | 131072 << 3)[:3]
    frame = b"\x28\xb5\x2f\xfd\x00\x38" + (block + b"\x07") * 8191 + last + b"\x07"
    tags = basic_tags(1, 8, 1, 32768, 32768) | {259: (3, [50000])}
    write_tiff(os.path.join(folder, "zstd.tif"), tags, [frame])
