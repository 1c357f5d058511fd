#!/usr/bin/python3
"""Opens the test vectors of docs/atlavex-format.md by what the page says.

    check_vectors.py PAGE

Exit status: 0 all of them fit, 1 one does not (which, on stderr).
"""

import re
import sys
from pathlib import Path

sys.dont_write_bytecode = True

from reader_forms import SealedForm, bound_head  # noqa: E402
from reader_records import Damaged, parse_header, parse_map, require  # noqa: E402


def main():
    page = Path(sys.argv[1]).read_text(encoding="utf-8")
    section = page[page.index("## 9. Test vectors") :]
    key = re.search(r"key text is `(.+?)`", section).group(1).encode()
    blocks = [bytes.fromhex(re.sub(r"\s", "", block)) for block in re.findall(r"(?:^ {4}[0-9a-f]+\n)+", section, re.M)]
    header, mac, pieces, root, *sealed, sheet = blocks
    fields = parse_header(header)
    form = SealedForm(fields, key)
    require(form.mac(header) == mac, "the mac differs")
    form.unwrap(fields["wrapped"], bound_head(header))
    require(form.root(pieces) == root == fields["root"], "the root differs")
    texts = re.findall(r"Kind (\d) .*number (\d+); its plain bytes are the text `(.+?)`", section)
    require(len(texts) == len(sealed) == 3, "there are not three values")
    for (kind, number, text), stored in zip(texts, sealed):
        require(form.open(int(kind), int(number), stored) == text.encode(), f"number {number} differs")
    check_map(parse_map(sheet))


def check_map(sheet):
    georeference = sheet["georeference"]
    require((sheet["version"], sheet["width"], sheet["height"]) == (2, 640, 480), "the map differs")
    require(georeference["grid"]["method"] == 16 and georeference["system"]["shiftUnknown"], "its system differs")
    require(len(georeference["entered"]) == 4, "its points as entered differ")
    checks = [{"name": "Türme".encode().hex(), "points": [[25240, 19760, 240, 240.125, b"Dom".hex()]]}]
    require(georeference["checks"] == checks, "its check set differs")


if __name__ == "__main__":
    try:
        main()
    except Damaged as error:
        sys.exit(str(error))
