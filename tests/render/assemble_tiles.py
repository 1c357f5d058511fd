"""Puts the exported tiles of one level together again: assemble_tiles.py FOLDER Z OUT.

OUT gets the level's pixels as red, green, blue, alpha bytes.
"""
import json
import sys

from PIL import Image

folder, z, out = sys.argv[1], int(sys.argv[2]), sys.argv[3]
with open(folder + "/tiles.json", encoding="utf-8") as file:
    tiles = json.load(file)
level = next(level for level in tiles["levels"] if level["z"] == z)
sheet = Image.new("RGBA", (level["columns"] * tiles["tileWidth"], level["rows"] * tiles["tileHeight"]))
for x in range(level["columns"]):
    for y in range(level["rows"]):
        name = tiles["scheme"].format(x=x, y=y, z=z)
        tile = Image.open(folder + "/" + name)
        assert tile.size == (tiles["tileWidth"], tiles["tileHeight"]), name
        sheet.paste(tile.convert("RGBA"), (x * tiles["tileWidth"], y * tiles["tileHeight"]))
beyond = sheet.copy()
beyond.paste((0, 0, 0, 0), (0, 0, level["width"], level["height"]))
assert beyond.getbbox() is None, "something is drawn beyond the map"
with open(out, "wb") as file:
    file.write(sheet.crop((0, 0, level["width"], level["height"])).tobytes())
