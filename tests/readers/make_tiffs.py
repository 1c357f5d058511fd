"""Makes the TIFF files that the tests of the TIFF reader read.

usage: make_tiffs.py THEME FOLDER

Beside an image whose pixels are known by construction stands the truth as raw RGBA (see pictures.py).
"""

import os
import sys
import zlib

import numpy
from osgeo import gdal
from PIL import Image

sys.dont_write_bytecode = True  # the folder of the sources stays clean
import large_tiffs
from pictures import test_picture, write_truth
from tiff_gdal import in_memory, save_gdal
from tiff_writer import HEIGHT, WIDTH, basic_tags, colour_map, packed, rgba_of, scaled, stretched, write_tiff


def channels(count):
    rgb = test_picture(WIDTH, HEIGHT)
    alpha = ((rgb[..., 0].astype(int) * 3 + rgb[..., 1]) % 256).astype(numpy.uint8)
    return [rgb[..., 0], rgb[..., 1], rgb[..., 2], alpha][:count]


def make_coders(folder):
    """Every lossless coder over greys, palettes, RGB and RGBA, in strips, tiles and planes."""
    layouts = {"strips": [], "strip": [f"BLOCKYSIZE={HEIGHT}"],
               "tiles": ["TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=16"],
               "planes": ["INTERLEAVE=BAND", "BLOCKYSIZE=7"],
               "planes-tiles": ["INTERLEAVE=BAND", "TILED=YES", "BLOCKXSIZE=16", "BLOCKYSIZE=32"],
               "big": ["BIGTIFF=YES", "ENDIANNESS=BIG"]}
    coders = {"none": [], "lzw": ["COMPRESS=LZW"], "lzw2": ["COMPRESS=LZW", "PREDICTOR=2"],
              "packbits": ["COMPRESS=PACKBITS"], "deflate": ["COMPRESS=DEFLATE"],
              "deflate2": ["COMPRESS=DEFLATE", "PREDICTOR=2"], "zstd": ["COMPRESS=ZSTD"],
              "lzma": ["COMPRESS=LZMA"], "webp": ["COMPRESS=WEBP", "WEBP_LOSSLESS=YES"],
              "lerc": ["COMPRESS=LERC"]}
    for count in (1, 2, 3, 4):
        memory = in_memory(*channels(count))
        for layout, options in layouts.items():
            for coder, coding in coders.items():
                if coder == "webp" and (count != 3 or "planes" in layout):
                    continue  # it changes colours under full transparency
                file = os.path.join(folder, f"{count}-{layout}-{coder}.tif")
                meaning = ["PHOTOMETRIC=" + ("RGB" if count > 2 else "MINISBLACK")]
                meaning += ["ALPHA=NON-PREMULTIPLIED"] if count % 2 == 0 else []
                save_gdal(file, memory, *meaning, *options, *coding)
                write_truth(file, rgba_of(*channels(count)))


def make_pillow(folder):
    """What Pillow writes, both codes of Deflate among it, with Pillow's own pixels as truth."""
    rgb = Image.fromarray(test_picture(WIDTH, HEIGHT))
    images = {"1": rgb.convert("1"), "L": rgb.convert("L"), "P": rgb.quantize(100), "RGB": rgb,
              "RGBA": Image.merge("RGBA", [Image.fromarray(c) for c in channels(4)]),
              "LA": Image.merge("LA", [Image.fromarray(c) for c in channels(2)])}
    coders = ["raw", "tiff_lzw", "tiff_adobe_deflate", "tiff_deflate", "packbits", "zstd", "lzma"]
    for mode, image in images.items():
        for coder in coders + (["group3", "group4", "tiff_ccitt"] if mode == "1" else []):
            file = os.path.join(folder, f"{mode}-{coder}.tif")
            image.save(file, compression=coder)
            write_truth(file, numpy.asarray(image.convert("RGBA")))


def make_bits(folder):
    """Samples of every width, in both byte orders, with greys black or white at 0."""
    random = numpy.random.default_rng(5)
    for order in "<", ">":
        end = "little" if order == "<" else "big"
        for bits in (1, 2, 4, 6, 8, 10, 12, 14, 16, 20, 24, 31, 32, 64):
            values = random.integers(0, 2**bits, (HEIGHT, WIDTH), numpy.uint64)
            if bits == 24:
                data = three_bytes(values, order)
            elif bits % 16 != 0 and bits != 8:
                data = packed(values, bits)
            else:
                data = values.astype(f"{order}u{bits // 8}").tobytes()
            # Of the widest samples the upper 32 bits decide.
            seen = min(bits, 32)
            truth = scaled(values >> numpy.uint64(bits - seen), 2**seen - 1)
            for photometric, grey in ((0, 255 - truth), (1, truth)):
                file = os.path.join(folder, f"grey-{bits}-{photometric}-{end}.tif")
                write_tiff(file, basic_tags(photometric, bits), [data], order)
                write_truth(file, rgba_of(grey))
        rgb = random.integers(0, 65536, (HEIGHT, WIDTH, 3))
        file = os.path.join(folder, f"rgb-16-{end}.tif")
        write_tiff(file, basic_tags(2, 16, 3), [rgb.astype(order + "u2").tobytes()], order)
        write_truth(file, rgba_of(*(scaled(rgb[..., i], 65535) for i in range(3))))
        nibbles = random.integers(0, 16, (HEIGHT, WIDTH * 3))
        file = os.path.join(folder, f"rgb-4-{end}.tif")
        write_tiff(file, basic_tags(2, 4, 3), [packed(nibbles, 4)], order)
        write_truth(file, rgba_of(*(scaled(nibbles[:, i::3], 15) for i in range(3))))
        make_values(folder, random, order, end)


def three_bytes(values, order):
    """Whole numbers in three bytes each, negative ones as their complement."""
    whole = (values.astype(numpy.int64) & 0xFFFFFF).astype(order + "u4")
    part = slice(0, 3) if order == "<" else slice(1, 4)
    return whole.view(numpy.uint8).reshape(*values.shape, 4)[..., part].tobytes()


def make_values(folder, random, order, end):
    """Signed and floating-point samples are stretched between their finite extremes, whatever range the file names."""
    for kind, code in (("f2", 3), ("f4", 3), ("f8", 3), ("i1", 2), ("i2", 2), ("i4", 2), ("i8", 2)):
        values = random.uniform(-40, 300, (HEIGHT, WIDTH))
        values = values.clip(-128, 127) if kind == "i1" else values
        values = values.astype(order + kind)
        if code == 3:
            values[0, :4] = [numpy.nan, numpy.inf, -numpy.inf, 6e-8]
        finite = values[numpy.isfinite(values)].astype(float)
        truth = stretched(values, finite.min(), finite.max())
        bits = 8 * values.dtype.itemsize
        for name, tags in (("values", {}), ("range", {340: (11, [0.0]), 341: (11, [255.0])})):
            file = os.path.join(folder, f"{name}-{kind}-{end}.tif")
            write_tiff(file, basic_tags(1, bits) | {339: (3, [code])} | tags, [values.tobytes()], order)
            write_truth(file, rgba_of(truth))


def make_three_bytes(folder):
    """24 bits a sample, whole and floating-point; of the whole ones another reader makes the same."""
    random = numpy.random.default_rng(11)
    for order in "<", ">":
        end = "little" if order == "<" else "big"
        values = random.integers(0, 2**24, (HEIGHT, WIDTH, 3))
        file = os.path.join(folder, f"rgb-{end}.tif")
        write_tiff(file, basic_tags(2, 24, 3), [three_bytes(values, order)], order)
        write_truth(file, rgba_of(*(scaled(values[..., i], 2**24 - 1) for i in range(3))))
        values = random.integers(-2**23, 2**23, (HEIGHT, WIDTH))
        file = os.path.join(folder, f"signed-{end}.tif")
        write_tiff(file, basic_tags(1, 24) | {339: (3, [2])}, [three_bytes(values, order)], order)
        write_truth(file, rgba_of(stretched(values, values.min(), values.max())))
        # Multiples of 1/64 below 1024 need 16 bits of fraction.
        numbers = random.integers(-65535, 65536, (HEIGHT, WIDTH)) / 64
        numbers[0, :2] = [0, 1]
        fraction, exponent = numpy.frexp(numpy.abs(numbers))
        stored = numpy.where(numbers == 0, 0, (exponent - 1 + 63 << 16) + ((fraction * 2 - 1) * 65536).astype(int))
        stored |= numpy.where(numbers < 0, 1 << 23, 0)
        file = os.path.join(folder, f"float-{end}.tif")
        write_tiff(file, basic_tags(1, 24) | {339: (3, [3])}, [three_bytes(stored, order)], order)
        write_truth(file, rgba_of(stretched(numbers, numbers.min(), numbers.max())))


def make_stretched(folder):
    """Floating-point and signed pictures of the usual ranges, as another reader stretches them."""
    shades = [c.astype(float) for c in channels(4)]

    def put(name, samples, kind, photometric, *options):
        """The colours stretched together, alpha by itself."""
        memory = gdal.GetDriverByName("MEM").Create("", WIDTH, HEIGHT, len(samples), kind)
        for i, values in enumerate(samples):
            memory.GetRasterBand(i + 1).WriteArray(values)
        file = os.path.join(folder, name + ".tif")
        save_gdal(file, memory, f"PHOTOMETRIC={photometric}", *options)
        source = gdal.Open(file)
        extremes = [source.GetRasterBand(i + 1).ComputeRasterMinMax(False) for i in range(len(samples))]
        colours = 3 if photometric == "RGB" else 1
        low, high = min(e[0] for e in extremes[:colours]), max(e[1] for e in extremes[:colours])
        scales = [[low, high, 0, 255]] * colours + [[0, e[1], 0, 255] for e in extremes[colours:]]
        shown = gdal.Translate("", source, format="MEM", outputType=gdal.GDT_Byte, scaleParams=scales).ReadAsArray()
        write_truth(file, rgba_of(*shown.reshape(len(samples), HEIGHT, WIDTH)))

    alpha = "ALPHA=NON-PREMULTIPLIED"
    put("unit-grey", [shades[0] / 255], gdal.GDT_Float32, "MINISBLACK", "TILED=YES", "COMPRESS=DEFLATE")
    put("unit-rgb", [(s + 20) / 300 for s in shades[:3]], gdal.GDT_Float32, "RGB", "COMPRESS=LZW", "PREDICTOR=3")
    put("unit-planes", [s / 255 for s in shades], gdal.GDT_Float64, "RGB", "INTERLEAVE=BAND", alpha)
    put("unit-alpha", [(s + 20) / 300 for s in shades[:3]] + [shades[3] / 255], gdal.GDT_Float32, "RGB", alpha)
    put("opaque", [shades[0] * 9, numpy.ones_like(shades[0])], gdal.GDT_Float32, "MINISBLACK", alpha)
    put("signed-alpha", [shades[0] * 100 - 9000, shades[3]], gdal.GDT_Int16, "MINISBLACK", alpha)
    put("heights", [shades[0] * 8 - 400], gdal.GDT_Int16, "MINISBLACK", f"BLOCKYSIZE={HEIGHT}")
    # Heights with a hole in them, which the file declares.
    for name, kind, hole in (("hole-32", gdal.GDT_Float32, -3.4028234663852886e38), ("hole-16", gdal.GDT_Int16, -32768)):
        heights = shades[0] * 8 - 400
        memory = gdal.GetDriverByName("MEM").Create("", WIDTH, HEIGHT, 1, kind)
        memory.GetRasterBand(1).WriteArray(heights)
        memory.GetRasterBand(1).WriteArray(numpy.full((9, 7), hole), 30, 20)
        memory.GetRasterBand(1).SetNoDataValue(hole)
        file = os.path.join(folder, name + ".tif")
        save_gdal(file, memory)
        outside = numpy.ones((HEIGHT, WIDTH), bool)
        outside[20:29, 30:37] = False
        low, high = heights[outside].min(), heights[outside].max()
        write_truth(file, rgba_of(numpy.where(outside, stretched(heights, low, high), 0).astype(numpy.uint8)))
    # Colours multiplied by alpha.
    alphas = numpy.where(shades[3] < 9, 0, shades[3]) / 255
    multiplied = [(s / 255 * alphas).astype("f4") for s in shades[:3]]
    file = os.path.join(folder, "multiplied.tif")
    data = numpy.stack([*multiplied, alphas.astype("f4")], -1)
    write_tiff(file, basic_tags(2, 32, 4) | {339: (3, [3] * 4), 338: (3, [1])}, [data.astype("<f4").tobytes()])
    high = max(m.max() for m in multiplied)
    bytes_of = [stretched(m, 0, high).astype(int) for m in multiplied]
    opacity = stretched(alphas.astype("f4"), 0, alphas.astype("f4").max()).astype(int)
    shown = [numpy.where(opacity == 0, 0, (b * 255 + opacity // 2) // numpy.maximum(opacity, 1)).clip(0, 255)
             for b in bytes_of]
    write_truth(file, rgba_of(*(c.astype(numpy.uint8) for c in (*shown, opacity))))
    # One value only.
    for name, value, shade in (("all-one", 1.0, 255), ("all-zero", 0.0, 0), ("all-below", -5.0, 0)):
        file = os.path.join(folder, name + ".tif")
        data = numpy.full((HEIGHT, WIDTH), value, "<f4")
        write_tiff(file, basic_tags(1, 32) | {339: (3, [3])}, [data.tobytes()])
        write_truth(file, rgba_of(numpy.full((HEIGHT, WIDTH), shade, numpy.uint8)))


def make_palettes(folder):
    """Colour maps of 16 bits in both usual scalings, of arbitrary values, and of 8 bits."""
    random = numpy.random.default_rng(6)
    for bits in (1, 2, 4, 8):
        indices = random.integers(0, 2**bits, (HEIGHT, WIDTH))
        colours = random.integers(1, 256, (3, 2**bits))
        anything = random.integers(256, 65536, (3, 2**bits))
        kinds = {"257": (colours * 257, colours), "256": (colours * 256, colours), "8": (colours, colours),
                 "any": (anything, (anything * 2 + 257) // 514)}
        for kind, (stored, shown) in kinds.items():
            file = os.path.join(folder, f"palette-{bits}-{kind}.tif")
            write_tiff(file, basic_tags(3, bits) | dict([colour_map(*stored)]), [packed(indices, bits)])
            write_truth(file, rgba_of(*(shown[i][indices].astype(numpy.uint8) for i in range(3))))
    alpha = random.integers(0, 256, indices.shape)
    # Maps of more than 256 colours.
    for bits in (12, 16):
        wide, map_of = random.integers(0, 2**bits, (HEIGHT, WIDTH)), random.integers(0, 256, (3, 2**bits))
        for order in "<", ">":
            data = wide.astype(order + "u2").tobytes() if bits == 16 else packed(wide, bits)
            file = os.path.join(folder, f"palette-{bits}-{'little' if order == '<' else 'big'}.tif")
            write_tiff(file, basic_tags(3, bits) | dict([colour_map(*(map_of * 257))]), [data], order)
            write_truth(file, rgba_of(*(map_of[i][wide].astype(numpy.uint8) for i in range(3))))
    both = numpy.stack([wide, alpha * 257], -1).astype("<u2")
    file = os.path.join(folder, "palette-16-alpha.tif")
    write_tiff(file, basic_tags(3, 16, 2) | dict([colour_map(*(map_of * 257))]) | {338: (3, [2])}, [both.tobytes()])
    write_truth(file, rgba_of(*(c.astype(numpy.uint8) for c in (*(map_of[i][wide] for i in range(3)), alpha))))
    both = numpy.stack([indices, alpha], -1).astype(numpy.uint8)
    file = os.path.join(folder, "palette-alpha.tif")
    tags = basic_tags(3, 8, 2) | dict([colour_map(*(colours * 257))]) | {338: (3, [2])}
    write_tiff(file, tags, [both.tobytes()])
    shown = [*(colours[i][indices] for i in range(3)), alpha]
    write_truth(file, rgba_of(*(c.astype(numpy.uint8) for c in shown)))


def make_colours(folder):
    """Alpha of both kinds, extra samples, CMYK, and what tags may leave out or turn round."""
    random = numpy.random.default_rng(7)
    rgb = [c.astype(int) for c in channels(3)]
    alpha = channels(4)[3].astype(int)
    alpha[0, :5] = [0, 0, 255, 255, 1]
    multiplied = [(c * alpha + 127) // 255 for c in rgb]
    multiplied[0][1, 1] = 255  # more than its alpha: cut off
    with numpy.errstate(divide="ignore", invalid="ignore"):
        divided = [(c * 255 + alpha // 2) // numpy.maximum(alpha, 1) for c in multiplied]
        divided = [numpy.where(alpha == 0, 0, c).clip(0, 255) for c in divided]

    def put(name, samples, truth, photometric, **more):
        data = numpy.stack(samples, -1).astype(numpy.uint8)
        file = os.path.join(folder, name + ".tif")
        tags = basic_tags(photometric, 8, len(samples)) | {int(k[1:]): v for k, v in more.items()}
        write_tiff(file, tags, [data.tobytes()])
        write_truth(file, rgba_of(*(numpy.asarray(c, numpy.uint8) for c in truth)))

    put("associated", [*multiplied, alpha], [*divided, alpha], 2, t338=(3, [1]))
    put("unassociated", [*rgb, alpha], [*rgb, alpha], 2, t338=(3, [2]))
    put("grey-associated", [multiplied[1], alpha], [divided[1], alpha], 1, t338=(3, [1]))
    put("white-is-zero-alpha", [rgb[0], alpha], [255 - rgb[0], alpha], 0, t338=(3, [2]))
    put("unspecified", [*rgb, alpha], rgb, 2, t338=(3, [0]))
    put("undeclared", [*rgb, alpha], rgb, 2)
    put("second-extra-is-alpha", [*rgb, rgb[0], alpha], [*rgb, alpha], 2, t338=(3, [0, 2]))
    put("grey-and-three-extras", [rgb[1], rgb[0], rgb[2], alpha], [rgb[1], alpha], 1, t338=(3, [0, 0, 2]))
    put("no-orientation-ten", rgb, rgb, 2, t274=(3, [10]))
    ink = [random.integers(0, 256, alpha.shape) for _ in range(4)]
    shown = [(255 - c) * (255 - ink[3]) // 255 for c in ink[:3]]
    put("cmyk", ink, shown, 5)
    put("cmyk-alpha", [*ink, alpha], [*shown, alpha], 5, t338=(3, [2]))
    # Bits of a byte in the other order.
    data = numpy.stack(rgb, -1).astype(numpy.uint8)
    file = os.path.join(folder, "fill-order.tif")
    reverse = numpy.array([int(f"{v:08b}"[::-1], 2) for v in range(256)], numpy.uint8)
    write_tiff(file, basic_tags(2, 8, 3) | {266: (3, [2])}, [reverse[data].tobytes()])
    write_truth(file, rgba_of(*(c.astype(numpy.uint8) for c in rgb)))
    tags = basic_tags(2, 8, 3)
    del tags[262]
    file = os.path.join(folder, "no-photometric.tif")
    write_tiff(file, tags, [data.tobytes()])
    write_truth(file, rgba_of(*(c.astype(numpy.uint8) for c in rgb)))
    # Tiles that were never written are black.
    options = ["TILED=YES", "BLOCKXSIZE=32", "BLOCKYSIZE=32", "SPARSE_OK=TRUE", "PHOTOMETRIC=RGB"]
    sparse = gdal.GetDriverByName("GTiff").Create(os.path.join(folder, "sparse.tif"), 100, 90, 3, options=options)
    sparse.GetRasterBand(2).WriteArray(numpy.full((32, 32), 77, numpy.uint8), 32, 32)
    sparse = None  # closes the file
    truth = numpy.zeros((90, 100, 4), numpy.uint8)
    truth[32:64, 32:64, 1] = 77
    truth[..., 3] = 255
    write_truth(os.path.join(folder, "sparse.tif"), truth)


def make_turned(folder):
    rgb = test_picture(WIDTH, HEIGHT)
    for orientation in range(1, 9):
        file = os.path.join(folder, f"turned-{orientation}.tif")
        write_tiff(file, basic_tags(2, 8, 3) | {274: (3, [orientation])}, [rgb.tobytes()])
        turn = {1: lambda a: a, 2: lambda a: a[:, ::-1], 3: lambda a: a[::-1, ::-1], 4: lambda a: a[::-1],
                5: lambda a: a.swapaxes(0, 1), 6: lambda a: a[::-1].swapaxes(0, 1),
                7: lambda a: a[::-1, ::-1].swapaxes(0, 1), 8: lambda a: a[:, ::-1].swapaxes(0, 1)}
        shown = turn[orientation](rgb)
        write_truth(file, rgba_of(shown[..., 0], shown[..., 1], shown[..., 2]))


def make_pages(folder):
    pictures = [Image.fromarray(test_picture(40 + i, 30)) for i in range(3)]
    file = os.path.join(folder, "pages.tif")
    pictures[0].save(file, save_all=True, append_images=pictures[1:])
    write_truth(file, numpy.asarray(pictures[0].convert("RGBA")))


def make_jpeg(folder):
    """JPEG inside TIFF, without a truth: two decoders are asked."""
    smooth = numpy.asarray(Image.fromarray(test_picture(20, 15)).resize((150, 110), Image.BICUBIC))
    rgb, grey = in_memory(*numpy.moveaxis(smooth, -1, 0)), in_memory(smooth[..., 0])
    kinds = {"ycbcr-strips": (rgb, "PHOTOMETRIC=YCBCR"),
             "ycbcr-tiles": (rgb, "PHOTOMETRIC=YCBCR", "TILED=YES", "BLOCKXSIZE=48", "BLOCKYSIZE=32"),
             "rgb": (rgb, "PHOTOMETRIC=RGB"), "planes": (rgb, "INTERLEAVE=BAND", "PHOTOMETRIC=RGB"), "grey": (grey,)}
    for name, (source, *options) in kinds.items():
        save_gdal(os.path.join(folder, name + ".tif"), source, "COMPRESS=JPEG", "JPEG_QUALITY=90", *options)


def units_of(luma, cb, cr, h, v):
    """The stored bytes of YCbCr whose colours are shared by h x v pixels; edges are repeated."""
    height, width = cb.shape
    luma = numpy.pad(luma, [(0, height * v - luma.shape[0]), (0, width * h - luma.shape[1])], "edge")
    blocks = luma.reshape(height, v, width, h).swapaxes(1, 2).reshape(height, width, v * h)
    return numpy.concatenate([blocks, cb[..., None], cr[..., None]], -1).astype(numpy.uint8).tobytes()


def make_ycbcr(folder):
    """YCbCr without JPEG, full and subsampled, in strips and tiles, small and large, also such as end within a shared
    colour; the truth is the usual conversion unrounded."""
    random = numpy.random.default_rng(9)
    full_range = 532, (5, [0, 1, 255, 1, 128, 1, 255, 1, 128, 1, 255, 1])

    def put(name, width, height, h, v, rows=None, tile=None):
        luma = random.integers(16, 236, (height, width))
        cb, cr = (random.integers(64, 192, (-(-height // v), -(-width // h))) for _ in range(2))
        rows = rows or height
        if tile:
            more = -(-height // tile) * tile, -(-width // tile) * tile
            planes = [numpy.pad(p, [(0, m // f - n) for m, n, f in zip(more, p.shape, by)], "edge")
                      for p, by in ((luma, (1, 1)), (cb, (v, h)), (cr, (v, h)))]
            cut = [[p[y // b:(y + tile) // b, x // a:(x + tile) // a] for p, (b, a) in zip(planes, ((1, 1), (v, h), (v, h)))]
                   for y in range(0, height, tile) for x in range(0, width, tile)]
        else:
            cut = [[luma[y:y + rows], cb[y // v:-(-(y + rows) // v)], cr[y // v:-(-(y + rows) // v)]]
                   for y in range(0, height, rows)]
        tags = basic_tags(6, 8, 3, width, height, rows) | {530: (3, [h, v]), 259: (3, [8])} | dict([full_range])
        if tile:
            del tags[278]
            tags |= {322: (3, [tile]), 323: (3, [tile])}
        file = os.path.join(folder, name + ".tif")
        write_tiff(file, tags, [zlib.compress(units_of(*part, h, v), 1) for part in cut])
        b, r = (numpy.kron(c, numpy.ones((v, h)))[:height, :width] - 128.0 for c in (cb, cr))
        shown = [luma + 1.402 * r, luma - 0.344136 * b - 0.714136 * r, luma + 1.772 * b]
        write_truth(file, rgba_of(*(c.clip(0, 255).round().astype(numpy.uint8) for c in shown)))

    for h, v in ((1, 1), (2, 1), (2, 2), (4, 2), (4, 4)):
        put(f"strip-{h}{v}", 64, 48, h, v)
        put(f"strips-{h}{v}", 83, 61, h, v, rows=16)
        put(f"tiles-{h}{v}", 83, 61, h, v, tile=32)
    put("large-strip", 2203, 2101, 2, 2)
    put("large-tiles", 2203, 2101, 4, 2, tile=2064)
    put("large-full", 2203, 2101, 1, 1)


def make_lab(folder):
    """L*a*b* with the white of daylight at 6500 K; the truth goes by the published formulas to sRGB."""
    y, x = numpy.mgrid[0:HEIGHT, 0:WIDTH]
    lightness, a, b = 55 + 35 * x / WIDTH, 12 * numpy.sin(y / 9), 12 * numpy.cos(x / 7)
    stored = numpy.stack([(lightness * 2.55).round(), a.round() % 256, b.round() % 256], -1)
    fy = (stored[..., 0] / 2.55 + 16) / 116
    xyz = [numpy.where(f > 6 / 29, f**3, 3 * (6 / 29)**2 * (f - 4 / 29)) * white
           for f, white in ((fy + a.round() / 500, 0.95047), (fy, 1.0), (fy - b.round() / 200, 1.08883))]
    linear = [3.2406 * xyz[0] - 1.5372 * xyz[1] - 0.4986 * xyz[2],
              -0.9689 * xyz[0] + 1.8758 * xyz[1] + 0.0415 * xyz[2],
              0.0557 * xyz[0] - 0.2040 * xyz[1] + 1.0570 * xyz[2]]
    shown = [255 * numpy.where(c > 0.0031308, 1.055 * c.clip(1e-9)**(1 / 2.4) - 0.055, 12.92 * c) for c in linear]
    shown = [c.clip(0, 255).round().astype(numpy.uint8) for c in shown]
    white = {318: (5, [31270, 100000, 32900, 100000])}
    alpha = channels(4)[3]

    def put(name, samples, bits, strips, truth, more):
        file = os.path.join(folder, name + ".tif")
        tags = basic_tags(8, bits, samples) | white | more
        write_tiff(file, tags, [strip.astype(f"<u{bits // 8}").tobytes() for strip in strips])
        write_truth(file, rgba_of(*truth))

    wide = stored * [257, 256, 256]
    with_alpha = numpy.concatenate([stored, alpha[..., None]], -1)
    put("lab", 3, 8, [stored], shown, {})
    put("lab-16", 3, 16, [wide], shown, {})
    put("lab-planes", 3, 8, [stored[..., i] for i in range(3)], shown, {284: (3, [2])})
    put("lab-alpha", 4, 8, [with_alpha], [*shown, alpha], {338: (3, [2])})
    put("lab-extra", 4, 8, [with_alpha], shown, {338: (3, [0])})
    put("lab-16-alpha", 4, 16, [numpy.concatenate([wide, alpha[..., None] * 257], -1)], [*shown, alpha], {338: (3, [2])})


def strips_of(file):
    """The stored strips of a TIFF file and its tags of one number."""
    with Image.open(file) as image, open(file, "rb") as data:
        tags = {number: image.tag_v2[number] for number in (259, 266, 292) if number in image.tag_v2}
        strips = []
        for offset, length in zip(image.tag_v2[273], image.tag_v2[279]):
            data.seek(offset)
            strips.append(data.read(length))
    return strips, tags


def make_fax(folder):
    """Facsimile coders in strips of 20 rows and in one; "cut-", "short-" and "narrow-" files lack pixels."""
    picture = numpy.asarray(Image.fromarray(test_picture(200, 100)).convert("1"), numpy.uint8)

    def strips_with(coder, picture, rows):
        """The strips as another library codes them."""
        file = os.path.join(folder, "source.tif")
        save_gdal(file, in_memory(picture), "NBITS=1", "COMPRESS=CCITT" + coder, f"BLOCKYSIZE={rows}")
        return strips_of(file)

    def put(name, strips, tags, rows):
        all_tags = basic_tags(1, 1, 1, 200, 100, rows) | {number: (3, [value]) for number, value in tags.items()}
        if 292 in all_tags:
            all_tags[292] = 4, all_tags[292][1]
        write_tiff(os.path.join(folder, name + ".tif"), all_tags, strips)

    for coder in "RLE", "FAX3", "FAX4":
        for rows in 20, 100:
            strips, tags = strips_with(coder, picture, rows)
            name = f"{coder}-{rows}"
            put("whole-" + name, strips, tags, rows)
            write_truth(os.path.join(folder, f"whole-{name}.tif"), rgba_of(picture * numpy.uint8(255)))
            for i in {0, len(strips) // 2, len(strips) - 1}:
                put(f"cut-{i}-{name}", [*strips[:i], strips[i][:len(strips[i]) // 2], *strips[i + 1:]], tags, rows)
                fewer, _ = strips_with(coder, picture[:rows - 7], rows - 7)
                put(f"short-{i}-{name}", [*strips[:i], fewer[0], *strips[i + 1:]], tags, rows)
                narrow, _ = strips_with(coder, picture[:rows, :192], rows)
                put(f"narrow-{i}-{name}", [*strips[:i], narrow[0], *strips[i + 1:]], tags, rows)
    os.remove(os.path.join(folder, "source.tif"))


def make_pixels_last(folder):
    """Files whose tags stand first, so that a cut takes pixels only."""
    memory = in_memory(*numpy.moveaxis(test_picture(200, 150), -1, 0))
    for coder in "NONE", "LZW", "DEFLATE", "PACKBITS", "JPEG", "ZSTD", "LZMA":
        for layout in [], ["TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"], ["BLOCKYSIZE=150"]:
            file = os.path.join(folder, f"{coder}-{len(layout)}.tif")
            save_gdal(file, memory, f"COMPRESS={coder}", "PHOTOMETRIC=RGB", *layout)


THEMES = {name[5:].replace("_", "-"): make for name, make in {**vars(large_tiffs), **globals()}.items()
          if name.startswith("make_") and name != "make_values"}

if __name__ == "__main__":
    THEMES[sys.argv[1]](sys.argv[2])
