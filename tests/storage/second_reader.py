#!/usr/bin/python3
"""Reads a map library by docs/atlavex-format.md alone, checks all that the page says, and writes what it found.

    second_reader.py FILE FOLDER [KEYFILE]

FOLDER gets library.json (texts as hexadecimal digits of their bytes), map-N.raw with the pixels of map N in its own
format, and icon-N.rgba. Exit status: 0 all well, 1 damaged or no library (the reason on stderr), 3 wrong key.
"""

import hashlib
import hmac
import io
import json
import math
import sqlite3
import struct
import sys
import unicodedata
from pathlib import Path

import nacl.bindings
import nacl.exceptions
import nacl.pwhash
import numpy
import xxhash
from PIL import Image

TABLES = [
    ("library", "CREATE TABLE library(id INTEGER PRIMARY KEY, header BLOB NOT NULL, mac BLOB NOT NULL)"),
    ("map", "CREATE TABLE map(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("icon", "CREATE TABLE icon(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("metadata", "CREATE TABLE metadata(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("tile_index", "CREATE TABLE tile_index(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"),
    ("blob", "CREATE TABLE blob(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"),
]
TILE, PICTURE, PAGE, MAP, ICON, METADATA = 1, 2, 3, 4, 5, 6
BLOB_KEY, RECORD_KEY, ROOT_KEY = 1, 2, 3
GREY, PALETTE, RGB, RGBA = 1, 2, 3, 4
CHANNELS = {GREY: 1, PALETTE: 1, RGB: 3, RGBA: 4}
PIL_MODE = {GREY: "L", PALETTE: "P", RGB: "RGB", RGBA: "RGBA"}
FORMAT_OF_COLOUR_TYPE = {0: GREY, 2: RGB, 3: PALETTE, 6: RGBA}
ENTRIES_PER_PAGE = 1000


class Damaged(Exception):
    pass


class WrongKey(Exception):
    pass


def require(holds, reason):
    if not holds:
        raise Damaged(reason)


class Cursor:
    """Reads one field after the other."""

    def __init__(self, data):
        self.data, self.at = data, 0

    def raw(self, length):
        require(length <= len(self.data) - self.at, "a record breaks off")
        self.at += length
        return self.data[self.at - length : self.at]

    def number(self, code):
        return struct.unpack("<" + code, self.raw(struct.calcsize(code)))[0]

    def finite(self):
        value = self.number("d")
        require(math.isfinite(value), "a number is not finite")
        return value

    def flag(self):
        value = self.number("B")
        require(value in (0, 1), "a flag is neither 0 nor 1")
        return value == 1

    def text(self):
        return self.raw(self.number("I"))

    def end(self):
        require(self.at == len(self.data), "a record is longer than its content")


def plain_digest(data):
    return xxhash.xxh3_128(data, seed=0).digest()


class PlainForm:
    def mac(self, header):
        return plain_digest(header) + bytes(16)

    root = mac

    def digest(self, stored):
        return plain_digest(stored)

    def open(self, kind, number, stored):
        return stored


class SealedForm:
    def __init__(self, header, key):
        try:
            key = unicodedata.normalize("NFC", key.decode("utf-8")).encode("utf-8")
        except UnicodeDecodeError:
            pass
        both = nacl.pwhash.argon2id.kdf(
            64, key, header["salt"], opslimit=header["passes"], memlimit=header["memory"] * 1024
        )
        self.wrapping, self.mac_key, self.id = both[:32], both[32:], header["id"]

    def mac(self, header):
        return hashlib.blake2b(header, digest_size=32, key=self.mac_key).digest()

    def unwrap(self, wrapped, head):
        data_key = self.decrypt(wrapped, head, self.wrapping)
        self.keys = {number: self.subkey(data_key, number) for number in (BLOB_KEY, RECORD_KEY, ROOT_KEY)}

    @staticmethod
    def subkey(data_key, number):
        salt = struct.pack("<Q", number) + bytes(8)
        return hashlib.blake2b(
            b"", digest_size=32, key=data_key, salt=salt, person=b"Atlavex1" + bytes(8)
        ).digest()

    @staticmethod
    def decrypt(stored, bound, key):
        require(len(stored) >= 40, "a sealed value is too short")
        try:
            return nacl.bindings.crypto_aead_xchacha20poly1305_ietf_decrypt(
                stored[24:], bound, stored[:24], key
            )
        except nacl.exceptions.CryptoError:
            raise Damaged("a sealed value does not open") from None

    def root(self, pieces):
        return hashlib.blake2b(pieces, digest_size=32, key=self.keys[ROOT_KEY]).digest()

    def digest(self, stored):
        return stored[-16:]

    def open(self, kind, number, stored):
        bound = struct.pack("<I", 1) + self.id + struct.pack("<Bq", kind, number)
        require(len(bound) == 29, "associated data")
        return self.decrypt(stored, bound, self.keys[BLOB_KEY if kind in (TILE, PICTURE) else RECORD_KEY])


def check_first_page(data):
    require(len(data) >= 100 and data[:16] == b"SQLite format 3\0", "no database")
    page_size, version, application = (
        int.from_bytes(data[16:18], "big"),
        int.from_bytes(data[60:64], "big"),
        int.from_bytes(data[68:72], "big"),
    )
    require(application == 0x41746C78, "no map library")
    require(version <= 1, f"format version {version} is newer than this reader")
    require(version == 1 and page_size == 8192 and data[18] == data[19] == 1, "the first page is odd")
    require(int.from_bytes(data[28:32], "big") * 8192 == len(data), "the length is not what it says")


def parse_header(data):
    require(len(data) == 184, "the header has the wrong length")
    cursor = Cursor(data)
    version, sealed, derivation, zero = (
        cursor.number("I"),
        cursor.flag(),
        cursor.number("B"),
        cursor.number("H"),
    )
    header = {"sealed": sealed, "passes": cursor.number("I"), "memory": cursor.number("I")}
    header |= {"id": cursor.raw(16), "salt": cursor.raw(16), "wrapped": cursor.raw(72)}
    header |= {"generation": cursor.number("q"), "next": cursor.number("q")}
    header |= {"maps": cursor.number("i"), "icons": cursor.number("i"), "root": cursor.raw(32)}
    require(version == 1 and zero == 0 and cursor.raw(8) == bytes(8), "the header is odd")
    cursor.end()
    require(derivation == int(sealed), "the key derivation is unknown")
    if sealed:
        require(1 <= header["passes"] <= 4 and 8192 <= header["memory"] <= 524288, "impossible key costs")
    else:
        require(header["passes"] == header["memory"] == 0, "a plain file has key costs")
        require(header["salt"] == bytes(16) and header["wrapped"] == bytes(72), "a plain file has a key")
    return header


def parse_entry(cursor):
    entry = {"number": cursor.number("q"), "length": cursor.number("I"), "codec": cursor.number("I")}
    entry["digest"] = cursor.raw(16)
    require(entry["codec"] == 1, "a codec is unknown")
    return entry


def parse_georeference(cursor):
    result = {"datum": None, "grid": None}
    if cursor.flag():
        result["datum"] = [cursor.finite() for _ in range(9)]
    if cursor.flag():
        method, zone = cursor.number("i"), cursor.number("i")
        result["grid"] = {"method": method, "zone": zone, "values": [cursor.finite() for _ in range(7)]}
    result["gridIdentifier"] = cursor.number("i")
    result["zone"] = cursor.text().hex()
    result["kind"] = cursor.number("B")
    require(result["kind"] in (0, 1, 2), "the scaling is unknown")
    result["points"] = [
        [cursor.finite(), cursor.finite(), cursor.number("i"), cursor.number("i")]
        for _ in range((0, 3, 4)[result["kind"]])
    ]
    return result


def parse_map(data):
    cursor = Cursor(data)
    require(cursor.number("B") == 1, "a map record is of an unknown version")
    result = {"ownName": cursor.text(), "identifier": cursor.text().hex(), "format": cursor.number("B")}
    require(result["format"] in CHANNELS, "the pixel format is unknown")
    for field in ("width", "height", "tileWidth", "tileHeight"):
        result[field] = cursor.number("i")
        require(result[field] >= 1, "a size is impossible")
    require(64 <= result["tileWidth"] <= 1024 and 64 <= result["tileHeight"] <= 1024, "a tile size is impossible")
    colours = cursor.number("H")
    require(1 <= colours <= 256 if result["format"] == PALETTE else colours == 0, "the palette is impossible")
    result["palette"] = [list(cursor.raw(4)) for _ in range(colours)]
    result["zoom"] = cursor.finite()
    require(result["zoom"] > 0, "the zoom is impossible")
    result["georeference"] = parse_georeference(cursor)
    count = cursor.number("I")
    result["pages"] = [(cursor.number("q"), cursor.raw(16)) for _ in range(count)]
    cursor.end()
    return result


def parse_icon(data):
    cursor = Cursor(data)
    require(cursor.number("B") == 1, "an icon record is of an unknown version")
    result = {"ownName": cursor.text()}
    for field in ("width", "height", "offsetX", "offsetY"):
        result[field] = cursor.number("i")
    result["picture"] = parse_entry(cursor)
    cursor.end()
    return result


def parse_metadata(data):
    cursor = Cursor(data)
    require(cursor.number("B") == 1, "metadata are of an unknown version")
    pairs = [(cursor.text(), cursor.text()) for _ in range(cursor.number("I"))]
    cursor.end()
    require(len({key for key, _ in pairs}) == len(pairs), "a metadata key occurs twice")
    return pairs


def levels_of(sheet):
    """Width, height, columns and rows of every level."""
    width, height, levels = sheet["width"], sheet["height"], []
    while True:
        columns, rows = -(-width // sheet["tileWidth"]), -(-height // sheet["tileHeight"])
        levels.append((width, height, columns, rows))
        if columns == rows == 1:
            return levels
        width, height = -(-width // 2), -(-height // 2)


def check_png_subset(png):
    """Returns the pixel format that the header names."""
    require(png[:8] == b"\x89PNG\r\n\x1a\n", "a tile is no PNG")
    at, kinds, header = 8, [], None
    while at < len(png):
        length, kind = struct.unpack(">I4s", png[at : at + 8])
        header = png[at + 8 : at + 21] if kind == b"IHDR" else header
        kinds.append(kind)
        at += 12 + length
    require(at == len(png) and kinds[0] == b"IHDR" and kinds[-1] == b"IEND", "a PNG is out of order")
    without_repeats = [k for i, k in enumerate(kinds) if i == 0 or k != kinds[i - 1]]
    critical = [k for k in without_repeats if k[:1].isupper()]
    expected = [b"IHDR", b"PLTE", b"IDAT", b"IEND"] if header[9] == 3 else [b"IHDR", b"IDAT", b"IEND"]
    require(critical == expected, "a PNG has other chunks")
    require(header[8] == 8 and header[10:] == bytes(3), "a PNG has another layout")
    return FORMAT_OF_COLOUR_TYPE[header[9]]


def decode_png(png, width, height, expected_format=None):
    """Pixels as an array of height x width x channels."""
    pixel_format = check_png_subset(png)
    require(expected_format in (None, pixel_format), "a tile has another pixel format")
    image = Image.open(io.BytesIO(png))
    require(image.size == (width, height) and image.mode == PIL_MODE[pixel_format], "a PNG has another size")
    return pixel_format, image, numpy.asarray(image).reshape(height, width, CHANNELS[pixel_format])


def own_palette(image):
    """The entries that the PNG itself carries, with alpha."""
    colours = image.getpalette("RGB")
    alphas = image.info.get("transparency", b"")
    if isinstance(alphas, int):
        alphas = bytes([255] * alphas + [0])
    entries = [colours[i : i + 3] for i in range(0, len(colours), 3)]
    return [entry + [alphas[i] if i < len(alphas) else 255] for i, entry in enumerate(entries)]


def halved(pixels):
    """The mean of 2 x 2 RGBA pixels, weighted by alpha; pixels beyond the edge do not count."""
    height, width = pixels.shape[0] + pixels.shape[0] % 2, pixels.shape[1] + pixels.shape[1] % 2
    colour, weight, count = numpy.zeros((height, width, 3)), numpy.zeros((height, width)), numpy.zeros((height, width))
    rows, columns = pixels.shape[:2]
    weight[:rows, :columns] = pixels[..., 3]
    colour[:rows, :columns] = pixels[..., :3] * pixels[..., 3:].astype(float)
    count[:rows, :columns] = 1

    def sums(a):
        return a[0::2, 0::2] + a[1::2, 0::2] + a[0::2, 1::2] + a[1::2, 1::2]

    weight, colour, count = sums(weight), sums(colour), sums(count)
    mean = numpy.zeros((height // 2, width // 2, 4))
    mean[..., :3] = colour / numpy.maximum(weight, 1)[..., None]
    mean[..., 3] = weight / count
    return mean


class Library:
    def __init__(self, file, key):
        check_first_page(Path(file).read_bytes())
        self.database = sqlite3.connect(f"{Path(file).resolve().as_uri()}?mode=ro", uri=True)
        self.database.text_factory = bytes
        self.check_schema()
        self.used = {"blob": set(), "tile_index": set()}
        self.read_header(key)
        self.read_records()

    def check_schema(self):
        rows = self.database.execute("SELECT type, name, tbl_name, sql FROM sqlite_schema ORDER BY rowid").fetchall()
        expected = [tuple(t.encode() for t in ("table", name, name, sql)) for name, sql in TABLES]
        require(rows == expected, "the tables are not those of a map library")

    def rows(self, table, column):
        for number, value in self.database.execute(f"SELECT id, {column} FROM {table} ORDER BY id"):
            require(isinstance(value, bytes), "a value has the wrong type")
            yield number, value

    def read_header(self, key):
        rows = self.database.execute("SELECT id, header, mac FROM library").fetchall()
        require(len(rows) == 1 and rows[0][0] == 1, "there is not one header")
        _, data, mac = rows[0]
        require(self.database.execute("SELECT typeof(header), typeof(mac) FROM library").fetchone() == (b"blob", b"blob"), "a value has the wrong type")
        self.header = parse_header(data)
        self.form = SealedForm(self.header, key) if self.header["sealed"] else PlainForm()
        if not hmac.compare_digest(self.form.mac(data), mac):
            raise WrongKey if self.header["sealed"] else Damaged("the header does not match its digest")
        if self.header["sealed"]:
            self.form.unwrap(self.header["wrapped"], data[:48])

    def read_records(self):
        self.stored, pieces = {}, b""
        for kind, table in ((MAP, "map"), (ICON, "icon"), (METADATA, "metadata")):
            for number, value in self.rows(table, "record"):
                self.stored[kind, number] = value
                pieces += struct.pack("<Bq", kind, number) + self.form.digest(value)
        require(self.form.root(pieces) == self.header["root"], "the records do not match the root")
        self.maps = [number for kind, number in self.stored if kind == MAP]
        self.icons = [number for kind, number in self.stored if kind == ICON]
        owners = sorted(number for kind, number in self.stored if kind == METADATA)
        require(owners == sorted(self.maps + self.icons), "metadata belong to nothing, or are missing")
        require((len(self.maps), len(self.icons)) == (self.header["maps"], self.header["icons"]), "the counts differ")
        require(all(0 < number < self.header["next"] for number in owners), "a number is out of range")

    def record(self, kind, number):
        return self.form.open(kind, number, self.stored[kind, number])

    def value(self, table, kind, number, digest, length=None):
        row = self.database.execute(f"SELECT data FROM {table} WHERE id = ?", (number,)).fetchone()
        require(row is not None and isinstance(row[0], bytes), f"row {number} of {table} is missing")
        require(0 < number < self.header["next"], "a number is out of range")
        require(length in (None, len(row[0])), f"row {number} of {table} has another length")
        require(self.form.digest(row[0]) == digest, f"row {number} of {table} does not match its digest")
        self.used[table].add(number)
        return self.form.open(kind, number, row[0])

    def directory(self, sheet):
        count = sum(columns * rows for _, _, columns, rows in levels_of(sheet))
        require(len(sheet["pages"]) == -(-count // ENTRIES_PER_PAGE), "the directory has the wrong length")
        entries = []
        for index, (number, digest) in enumerate(sheet["pages"]):
            page = self.value("tile_index", PAGE, number, digest)
            expected = min(ENTRIES_PER_PAGE, count - index * ENTRIES_PER_PAGE)
            require(len(page) == 32 * expected, "a directory page has the wrong length")
            cursor = Cursor(page)
            entries += [parse_entry(cursor) for _ in range(expected)]
        return entries

    def level_pixels(self, sheet, level, entries):
        """RGBA pixels of a level; for level 0 also its pixels in the map's own format."""
        width, height, columns, rows = levels_of(sheet)[level]
        tile_width, tile_height = sheet["tileWidth"], sheet["tileHeight"]
        palette = numpy.array(sheet["palette"] or [[0] * 4], dtype=numpy.uint8)
        own = sheet["format"]
        if level > 0 and own == PALETTE:
            own = RGB if (palette[:, 3] == 255).all() else RGBA
        rgba = numpy.zeros((rows * tile_height, columns * tile_width, 4), dtype=numpy.uint8)
        native = numpy.zeros((*rgba.shape[:2], CHANNELS[own]), dtype=numpy.uint8)
        first_index = {}
        for index, entry in reversed(list(enumerate(sheet["palette"]))):
            first_index[tuple(entry)] = index
        for position, entry in enumerate(entries):
            row, column = divmod(position, columns)
            png = self.value("blob", TILE, entry["number"], entry["digest"], entry["length"])
            edge = (column + 1) * tile_width > width or (row + 1) * tile_height > height
            found, image, pixels = decode_png(png, tile_width, tile_height, RGBA if edge else own)
            place = numpy.s_[row * tile_height : (row + 1) * tile_height, column * tile_width : (column + 1) * tile_width]
            if found == PALETTE:
                carried = own_palette(image)[: int(pixels.max()) + 1]
                require(carried == sheet["palette"][: len(carried)], "a tile has another palette")
                rgba[place], native[place] = palette[pixels[..., 0]], pixels
            elif found == GREY:
                rgba[place], native[place] = numpy.dstack([pixels] * 3 + [numpy.full_like(pixels, 255)]), pixels
            else:
                rgba[place][..., 3] = 255
                rgba[place][..., : pixels.shape[2]] = pixels
                inside = pixels[: max(0, height - row * tile_height), : max(0, width - column * tile_width)]
                target = native[place][: inside.shape[0], : inside.shape[1]]
                if own == PALETTE:
                    target[..., 0] = [[first_index[tuple(p)] for p in line] for line in inside.tolist()]
                else:
                    target[...] = inside[..., : target.shape[2]]
        require(not rgba[height:].any() and not rgba[:, width:].any(), "something lies beyond the edge")
        return rgba[:height, :width], native[:height, :width]

    def sheet_pixels(self, sheet):
        entries, at, below, result = self.directory(sheet), 0, None, None
        for level, (_, _, columns, rows) in enumerate(levels_of(sheet)):
            rgba, native = self.level_pixels(sheet, level, entries[at : at + columns * rows])
            at += columns * rows
            if level == 0:
                result = native
            else:
                mean = halved(below)
                mean[rgba[..., 3] == 0] = 0
                require(abs(mean - rgba).max() <= 1, f"level {level} is not the mean of the one below")
            below = rgba
        return result

    def describe_metadata(self, number, own_name):
        pairs = parse_metadata(self.record(METADATA, number))
        name = dict(pairs).get(b"name") or own_name
        return {"name": name.hex(), "metadata": [[key.hex(), value.hex()] for key, value in pairs]}

    def dump(self, folder):
        result = {"sealed": self.header["sealed"], "maps": [], "icons": []}
        for position, number in enumerate(self.maps, 1):
            sheet = parse_map(self.record(MAP, number))
            (folder / f"map-{position}.raw").write_bytes(self.sheet_pixels(sheet).tobytes())
            sheet |= self.describe_metadata(number, sheet.pop("ownName"))
            del sheet["pages"]
            result["maps"].append(sheet)
        for position, number in enumerate(self.icons, 1):
            icon = parse_icon(self.record(ICON, number))
            picture = icon.pop("picture")
            png = self.value("blob", PICTURE, picture["number"], picture["digest"], picture["length"])
            _, image, _ = decode_png(png, icon["width"], icon["height"])
            (folder / f"icon-{position}.rgba").write_bytes(image.convert("RGBA").tobytes())
            icon |= self.describe_metadata(number, icon.pop("ownName"))
            result["icons"].append(icon)
        for table, used in self.used.items():
            require({number for number, _ in self.rows(table, "data")} == used, f"{table} holds what belongs to nothing")
        (folder / "library.json").write_text(json.dumps(result, indent=1))


def main():
    file, folder = sys.argv[1], Path(sys.argv[2])
    key = Path(sys.argv[3]).read_bytes() if len(sys.argv) > 3 else b""
    try:
        Library(file, key).dump(folder)
    except WrongKey:
        sys.exit(3)
    except (Damaged, sqlite3.Error) as error:
        print(error, file=sys.stderr)
        sys.exit(1)


if __name__ == "__main__":
    main()
