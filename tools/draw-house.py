#!/usr/bin/env python3
"""Draws docs/house.svg from tools/includes.txt: who stands on whom.

    draw-house.py            writes the picture
    draw-house.py --check    says whether the picture is the table's
"""

import html
import sys
from pathlib import Path

_ROOT = Path(__file__).resolve().parents[1]
_PICTURE = _ROOT / "docs" / "house.svg"
_BOX_WIDTH, _BOX_HEIGHT, _GAP, _MARGIN = 214, 34, 26, 20
_ROW = _BOX_HEIGHT + 38


def _read_table():
    """{folder: folders it may include}, from the bottom to the top; the folders without a window system."""
    table, without_qt = {}, []
    for line in (_ROOT / "tools" / "includes.txt").read_text(encoding="utf-8").splitlines():
        name, colon, others = line.split("#")[0].partition(":")
        if colon and name == "without Qt":
            without_qt = others.split()
        elif colon:
            table[name] = others.split()
    return table, without_qt


def _nearest(table):
    """The pairs without those that follow from others: a folder's floor is enough to know what it stands on."""
    def below(folder):
        return {lower for other in table[folder] for lower in {other} | below(other)}
    return {folder: [other for other in others
                     if not any(other in below(third) for third in others if third != other)]
            for folder, others in table.items()}


def _floors(table):
    floor = {}
    for folder, others in table.items():
        floor[folder] = 1 + max((floor[other] for other in others), default=-1)
    return floor


def _places(table):
    floor = _floors(table)
    rows = {}
    for folder in table:
        rows.setdefault(floor[folder], []).append(folder)
    widest = max(len(row) for row in rows.values()) * (_BOX_WIDTH + _GAP) - _GAP
    places = {}
    for level, row in rows.items():
        left = _MARGIN + (widest - (len(row) * (_BOX_WIDTH + _GAP) - _GAP)) / 2
        for index, folder in enumerate(row):
            places[folder] = (left + index * (_BOX_WIDTH + _GAP), _MARGIN + (len(rows) - 1 - level) * _ROW)
    return places, widest + 2 * _MARGIN, len(rows) * _ROW + 2 * _MARGIN - 38


def _draw():
    table, without_qt = _read_table()
    places, width, height = _places(table)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:g} {height:g}" '
             'font-family="sans-serif" font-size="13">',
             f'<rect width="{width:g}" height="{height:g}" fill="white"/>']
    for folder, others in _nearest(table).items():
        for other in others:
            (x, y), (x2, y2) = places[folder], places[other]
            parts.append(f'<line x1="{x + _BOX_WIDTH / 2:g}" y1="{y + _BOX_HEIGHT:g}" '
                         f'x2="{x2 + _BOX_WIDTH / 2:g}" y2="{y2:g}" stroke="#8a8a8a"/>')
    for folder, (x, y) in places.items():
        fill = "#e8f0e4" if folder in without_qt else "#e4ebf5"
        weight = ' font-weight="bold"' if folder == "component" else ""
        parts.append(f'<rect x="{x:g}" y="{y:g}" width="{_BOX_WIDTH}" height="{_BOX_HEIGHT}" rx="4" '
                     f'fill="{fill}" stroke="#555"/>')
        parts.append(f'<text x="{x + _BOX_WIDTH / 2:g}" y="{y + 22:g}" text-anchor="middle"{weight}>'
                     f'{html.escape(folder)}</text>')
    return "\n".join([*parts, "</svg>", ""])


def main(arguments):
    """Write or check the picture."""
    picture = _draw()
    if arguments[1:] == ["--check"]:
        if not _PICTURE.exists() or _PICTURE.read_text(encoding="utf-8") != picture:
            print("docs/house.svg is not what tools/includes.txt says: run tools/draw-house.py.")
            return 1
        return 0
    _PICTURE.write_text(picture, encoding="utf-8")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
