#!/usr/bin/env python3
"""Holds the includes of all sources against tools/includes.txt: names file, line and rule of each that breaks it.

    check-includes.py [ROOT]    the root of a checkout, by default the one of this script
"""

import re
import sys
from pathlib import Path

_INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
_UNBOUND = ("tests", "fuzz", "samples", "tools", "build", "cmake")  # tests and fuzz targets may look inside


def _read_table(text):
    """The table as {folder: allowed folders}, and the folders without Qt."""
    allowed, without_qt = {}, []
    for line in text.splitlines():
        name, colon, others = line.split("#")[0].partition(":")
        if not colon:
            continue
        if name == "without Qt":
            without_qt = others.split()
            continue
        for other in others.split():
            if other not in allowed:
                raise SystemExit(f"tools/includes.txt: {name} names {other}, which does not stand above it.")
        allowed[name] = others.split()
    return allowed, without_qt


def _folders_of_programs(root):
    return sorted(folder for folder in {path.parent.relative_to(root).as_posix() for path in root.rglob("*.[ch]*")
                                        if path.suffix in (".h", ".cpp")}
                  if not folder.startswith(_UNBOUND) and not folder.startswith("."))


def _broken_rules(root, folder, allowed, without_qt):
    for source in sorted((root / folder).glob("*")):
        if source.suffix not in (".h", ".cpp"):
            continue
        for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
            match = _INCLUDE.match(line)
            if not match:
                continue
            quoted, header = match[1] == '"', match[2]
            place = f"{source.relative_to(root).as_posix()}:{number}: {header}"
            other = header.rpartition("/")[0]
            if quoted and other in allowed and other != folder and other not in allowed[folder]:
                yield f"{place}: {folder} may not include {other}"
            elif quoted and other and other not in allowed:
                yield f"{place}: {other} is no folder that programs may include"
            elif not quoted and folder in without_qt and re.match(r"Q[A-Z]|Qt[A-Z]\w*/", header):
                yield f"{place}: {folder} knows no window system"


def main(arguments):
    """Print what breaks a rule; the exit status says whether anything does."""
    root = Path(arguments[1] if len(arguments) > 1 else Path(__file__).resolve().parents[1])
    allowed, without_qt = _read_table((root / "tools" / "includes.txt").read_text(encoding="utf-8"))
    broken = []
    for folder in _folders_of_programs(root):
        if folder in allowed:
            broken += _broken_rules(root, folder, allowed, without_qt)
        else:
            broken.append(f"{folder}: stands not in tools/includes.txt")
    for sentence in broken:
        print(sentence)
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
