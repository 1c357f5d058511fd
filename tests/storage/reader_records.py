"""The header and the records of a map library, field by field."""

import math
import struct

MOST_POINTS, MOST_SETS = 65536, 256
LAST_FIRST_METHOD = 6
GREY, PALETTE, RGB, RGBA = 1, 2, 3, 4
CHANNELS = {GREY: 1, PALETTE: 1, RGB: 3, RGBA: 4}


class Damaged(Exception):
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


def parse_header(data):
    require(len(data) == 184, "the header has the wrong length")
    cursor = Cursor(data)
    version, sealed, derivation, zero = (
        cursor.number("I"),
        cursor.flag(),
        cursor.number("B"),
        cursor.number("H"),
    )
    header = {"version": version, "sealed": sealed, "passes": cursor.number("I"), "memory": cursor.number("I")}
    header |= {"id": cursor.raw(16), "salt": cursor.raw(16), "wrapped": cursor.raw(72)}
    header |= {"generation": cursor.number("q"), "next": cursor.number("q")}
    header |= {"maps": cursor.number("i"), "icons": cursor.number("i"), "root": cursor.raw(32)}
    require(version in (1, 2) and zero == 0 and cursor.raw(8) == bytes(8), "the header is odd")
    cursor.end()
    require(0 <= header["generation"] <= 2**62 and 1 <= header["next"] <= 2**62, "a count is impossible")
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


def parse_points(cursor):
    count = cursor.number("I")
    require(count <= MOST_POINTS, "a list has too many points")
    return [[cursor.finite() for _ in range(4)] + [cursor.text().hex()] for _ in range(count)]


def parse_particulars(cursor, datum):
    flags = cursor.number("B")
    require(flags in (0, 1), "a flag is unknown")
    system = {"shiftUnknown": flags == 1}
    for field in ("code", "name", "shiftCode", "shiftName"):
        system[field] = cursor.text().hex()
    system["shiftAccuracy"] = cursor.finite()
    require(math.copysign(1, system["shiftAccuracy"]) > 0, "an accuracy is negative")
    if flags:
        named = system["shiftCode"] or system["shiftName"] or system["shiftAccuracy"]
        require(not named, "an unknown shift is named")
        require(datum is not None and not any(datum[2:]), "an unknown shift is given")
    entered, count = parse_points(cursor), cursor.number("I")
    require(count <= MOST_SETS, "there are too many check sets")
    checks = [{"name": cursor.text().hex(), "points": parse_points(cursor)} for _ in range(count)]
    return {"system": system, "entered": entered, "checks": checks}


NO_PARTICULARS = {
    "system": {"shiftUnknown": False, "code": "", "name": "", "shiftCode": "", "shiftName": "", "shiftAccuracy": 0},
    "entered": [],
    "checks": [],
}


def parse_map(data):
    cursor = Cursor(data)
    version = cursor.number("B")
    require(version in (1, 2), "a map record is of an unknown version")
    result = {"version": version, "ownName": cursor.text(), "identifier": cursor.text().hex(), "format": cursor.number("B")}
    require(result["format"] in CHANNELS, "the pixel format is unknown")
    for field in ("width", "height", "tileWidth", "tileHeight"):
        result[field] = cursor.number("i")
        require(result[field] >= 1, "a size is impossible")
    for field in ("tileWidth", "tileHeight"):
        require(64 <= result[field] <= 1024, "a tile size is impossible")
    colours = cursor.number("H")
    require(1 <= colours <= 256 if result["format"] == PALETTE else colours == 0, "the palette is impossible")
    result["palette"] = [list(cursor.raw(4)) for _ in range(colours)]
    result["zoom"] = cursor.finite()
    require(result["zoom"] > 0, "the zoom is impossible")
    result["georeference"] = parse_georeference(cursor)
    count = cursor.number("I")
    result["pages"] = [(cursor.number("q"), cursor.raw(16)) for _ in range(count)]
    georeference = result["georeference"]
    reserved = georeference["grid"] is not None and georeference["grid"]["method"] > LAST_FIRST_METHOD
    require(version == 2 or not reserved, "a method is none of version 1")
    particulars = parse_particulars(cursor, georeference["datum"]) if version == 2 else NO_PARTICULARS
    require(version == 1 or reserved or particulars != NO_PARTICULARS, "a record needs no version 2")
    georeference |= particulars
    cursor.end()
    return result


def parse_icon(data):
    cursor = Cursor(data)
    require(cursor.number("B") == 1, "an icon record is of an unknown version")
    result = {"ownName": cursor.text()}
    for field in ("width", "height", "offsetX", "offsetY"):
        result[field] = cursor.number("i")
    pixels = result["width"] * result["height"]
    require(min(result["width"], result["height"]) >= 1 and pixels <= 16 * 2**20, "an icon's size is impossible")
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
