#!/usr/bin/python3
"""Makes the sample map sheets: make_sheets.py [FOLDER], by default the folder "made" beside this script."""

import sys
from pathlib import Path

sys.dont_write_bytecode = True  # the source folder stays clean

from sheetmaker import output  # noqa: E402


def main(arguments):
    """Write all files into the folder and name it."""
    folder = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parent / "made"
    folder.mkdir(parents=True, exist_ok=True)
    output.write_topographic(folder)
    output.write_polar(folder)
    output.write_marker(folder)
    output.write_truth(folder)
    print(f"sheets written to {folder}")


if __name__ == "__main__":
    main(sys.argv)
