#!/usr/bin/python3
"""Reads a map library by docs/atlavex-format.md alone, checks all that the page says, and writes down what it
found.

    second_reader.py FILE FOLDER [KEYFILE]

FOLDER gets library.json (texts as hexadecimal digits of their bytes), map-N.raw with the pixels of map N in
its own format, and icon-N.rgba. Exit status: 0 all well, 1 damaged or no library (the reason on stderr),
3 wrong key.
"""

import hmac
import json
import sqlite3
import struct
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from reader_forms import (  # noqa: E402
    ICON,
    MAP,
    METADATA,
    PAGE,
    PICTURE,
    TILE,
    PlainForm,
    SealedForm,
    bound_head,
)
from reader_journal import RolledBack  # noqa: E402
from reader_records import (  # noqa: E402
    Cursor,
    Damaged,
    parse_entry,
    parse_header,
    parse_icon,
    parse_map,
    parse_metadata,
    require,
)
from reader_scaling import positions  # noqa: E402
from reader_tiles import decode_png, halved, level_pixels, levels_of  # noqa: E402

TABLES = [
    ("library", "CREATE TABLE library(id INTEGER PRIMARY KEY, header BLOB NOT NULL, mac BLOB NOT NULL)"),
    ("map", "CREATE TABLE map(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("icon", "CREATE TABLE icon(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("metadata", "CREATE TABLE metadata(id INTEGER PRIMARY KEY, record BLOB NOT NULL)"),
    ("tile_index", "CREATE TABLE tile_index(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"),
    ("blob", "CREATE TABLE blob(id INTEGER PRIMARY KEY, data BLOB NOT NULL)"),
]
ENTRIES_PER_PAGE = 1000
LONGEST_VALUE = 67108800


class WrongKey(Exception):
    pass


def check_first_page(data):
    require(len(data) >= 100 and data[:16] == b"SQLite format 3\0", "no database")
    page_size, version, application = (
        int.from_bytes(data[16:18], "big"),
        int.from_bytes(data[60:64], "big"),
        int.from_bytes(data[68:72], "big"),
    )
    require(application == 0x41746C78, "no map library")
    require(version <= 2, f"format version {version} is newer than this reader")
    require(version in (1, 2) and page_size == 8192 and data[18] == data[19] == 1, "the first page is odd")
    require(data[20:24] == bytes([0, 64, 32, 32]), "the first page is odd")
    for at, value in ((44, 4), (52, 0), (56, 1), (64, 0), (72, 0), (76, 0)):
        require(int.from_bytes(data[at : at + 4], "big") == value, "the first page is odd")
    require(int.from_bytes(data[28:32], "big") * 8192 == len(data), "the length is not what it says")
    return version


class Library:
    def __init__(self, file, key):
        self.whole = RolledBack(file)
        version = check_first_page(self.whole.file.read_bytes())
        self.database = sqlite3.connect(f"{self.whole.file.resolve().as_uri()}?mode=ro", uri=True)
        self.database.text_factory = bytes
        self.check_schema()
        self.used = {"blob": set(), "tile_index": set()}
        self.owners = {}
        self.read_header(key)
        require(self.header["version"] == version, "the header names another format version")
        self.read_records()

    def all(self, sql):
        return self.database.execute(sql).fetchall()

    def check_schema(self):
        rows = self.all("SELECT type, name, tbl_name, sql FROM sqlite_schema ORDER BY rowid")
        expected = [tuple(t.encode() for t in ("table", name, name, sql)) for name, sql in TABLES]
        require(rows == expected, "the tables are not those of a map library")

    def rows(self, table, column):
        for number, value in self.database.execute(f"SELECT id, {column} FROM {table} ORDER BY id"):
            require(isinstance(value, bytes), "a value has the wrong type")
            require(len(value) <= LONGEST_VALUE, "a value is too long")
            yield number, value

    def read_header(self, key):
        rows = self.all("SELECT id, header, mac FROM library")
        require(len(rows) == 1 and rows[0][0] == 1, "there is not one header")
        _, data, mac = rows[0]
        types = self.all("SELECT typeof(header), typeof(mac) FROM library")
        require(types == [(b"blob", b"blob")], "a value has the wrong type")
        self.header = parse_header(data)
        self.form = SealedForm(self.header, key) if self.header["sealed"] else PlainForm()
        if not hmac.compare_digest(self.form.mac(data), mac):
            raise WrongKey if self.header["sealed"] else Damaged("the header does not match its digest")
        if self.header["sealed"]:
            self.form.unwrap(self.header["wrapped"], bound_head(data))

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
        require(len(self.maps) == self.header["maps"], "the count of maps differs")
        require(len(self.icons) == self.header["icons"], "the count of icons differs")
        require(not set(self.maps) & set(self.icons), "a map and an icon have one number")
        self.require_in_use(*owners)

    def require_in_use(self, *numbers):
        require(all(1 <= number < self.header["next"] for number in numbers), "a number is out of range")

    def claim(self, owner, table, numbers):
        """A row belongs to one map or icon."""
        for number in numbers:
            self.require_in_use(number)
            require(self.owners.setdefault((table, number), owner) == owner, f"{table} {number} has two owners")

    def record(self, kind, number):
        return self.form.open(kind, number, self.stored[kind, number])

    def value(self, table, kind, number, digest, length=None):
        row = self.database.execute(f"SELECT data FROM {table} WHERE id = ?", (number,)).fetchone()
        require(row is not None and isinstance(row[0], bytes), f"row {number} of {table} is missing")
        self.require_in_use(number)
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

    def tile(self, entry):
        return self.value("blob", TILE, entry["number"], entry["digest"], entry["length"])

    def sheet_pixels(self, owner, sheet):
        entries, at, below, result = self.directory(sheet), 0, None, None
        self.claim(owner, "tile_index", (number for number, _ in sheet["pages"]))
        self.claim(owner, "blob", (entry["number"] for entry in entries))
        for level, (_, _, columns, rows) in enumerate(levels_of(sheet)):
            pngs = (self.tile(entry) for entry in entries[at : at + columns * rows])
            rgba, native = level_pixels(sheet, level, pngs)
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
        result = {"version": self.header["version"], "sealed": self.header["sealed"], "maps": [], "icons": []}
        needed = 1
        for position, number in enumerate(self.maps, 1):
            sheet = parse_map(self.record(MAP, number))
            (folder / f"map-{position}.raw").write_bytes(self.sheet_pixels(number, sheet).tobytes())
            needed = max(needed, sheet.pop("version"))
            sheet["positions"] = positions(sheet)
            sheet |= self.describe_metadata(number, sheet.pop("ownName"))
            del sheet["pages"]
            result["maps"].append(sheet)
        require(self.header["version"] == needed, "the format version is not the one that the maps need")
        for position, number in enumerate(self.icons, 1):
            icon = parse_icon(self.record(ICON, number))
            picture = icon.pop("picture")
            self.claim(number, "blob", [picture["number"]])
            png = self.value("blob", PICTURE, picture["number"], picture["digest"], picture["length"])
            _, image, _ = decode_png(png, icon["width"], icon["height"])
            (folder / f"icon-{position}.rgba").write_bytes(image.convert("RGBA").tobytes())
            icon |= self.describe_metadata(number, icon.pop("ownName"))
            result["icons"].append(icon)
        for table, used in self.used.items():
            stored = {number for number, _ in self.rows(table, "data")}
            self.require_in_use(*stored)
            require(stored == used, f"{table} holds what belongs to nothing")
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
