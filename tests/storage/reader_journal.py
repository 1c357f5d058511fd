"""The journal beside a map library: whether it may be rolled back, and the file as it is afterwards."""

import shutil
import sqlite3
import tempfile
from pathlib import Path

from reader_records import require

MAGIC = bytes.fromhex("d9d505f920a163d7")
HEADER, PAGE_SIZE, THE_REST = 28, 8192, 0xFFFFFFFF


def number(data, at):
    return int.from_bytes(data[at : at + 4], "big")


def first_page(journal):
    """The former content of the database's first page; nothing where the journal lacks it."""
    sector, at = number(journal, 20), 0
    while journal[at : at + 8] == MAGIC:
        records, at = number(journal, at + 8), at + sector
        left = (len(journal) - at) // (PAGE_SIZE + 8) if records == THE_REST else records
        for _ in range(left):
            if at + PAGE_SIZE + 8 > len(journal):
                return None
            if number(journal, at) == 1:
                return journal[at + 4 : at + 4 + PAGE_SIZE]
            at += PAGE_SIZE + 8
        at = -(-at // sector) * sector
    return None


def check_journal(journal, data):
    """Whether there is something to roll back. Refuses what the page says that a reader refuses."""
    require(len(journal) < 8 or journal[-8:] != MAGIC, "the journal names a super-journal")
    if len(journal) < HEADER or journal[:8] != MAGIC:
        return False
    pages = number(journal, 16)
    require(number(journal, 24) == PAGE_SIZE, "the journal has another page size")
    require(pages * PAGE_SIZE <= len(data), "the journal is that of a longer file")
    former = first_page(journal)
    if not data.startswith(b"SQLite format 3\0"):
        require(former is not None, "the first page is torn, and the journal has no other")
        return True
    changes, now = number(data, 24), number(data, 28)
    if former is None:
        require(now == pages, "the journal is that of a file of another size")
    elif changes == number(former, 24):
        require(now == pages == number(former, 28), "the journal is that of a file of another size")
    else:
        require(changes == number(former, 24) + 1 and now >= pages, "the journal is that of another state")
    return True


class RolledBack:
    """The file as it is once its journal is rolled back; the file itself stays as it is."""

    def __init__(self, file):
        self.file, self.folder = Path(file), None
        journal = Path(f"{file}-journal")
        if journal.exists() and check_journal(journal.read_bytes(), self.file.read_bytes()):
            self.folder = tempfile.TemporaryDirectory()
            copy = Path(self.folder.name) / "library"
            shutil.copy(self.file, copy)
            shutil.copy(journal, f"{copy}-journal")
            with sqlite3.connect(copy) as database:
                database.execute("SELECT count(*) FROM sqlite_schema").fetchone()
            database.close()
            self.file = copy
