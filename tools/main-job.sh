#!/usr/bin/env bash
# The main job on the sample sheet, without a display: each step says what it did and what it found.
# The sheets' printed crossings were placed by PROJ, so that the positions are checked against another program.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

atlavex=$PWD/build/atlavex
sheets=samples/made
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
library=$folder/sample.Atlavex
step() { printf '\n== %s\n' "$1"; }
seconds() { date +%s.%N; }
took() { awk -v from="$1" -v to="$(seconds)" 'BEGIN { printf "%.2f s", to - from }'; }

tools/sample-sheets.sh

step "Make a library and add the sheet, georeferenced by its worldfile"
begin=$(seconds)
"$atlavex" new "$library"
"$atlavex" add-map "$library" $sheets/sheet-rgb.tif --name "Sample sheet" \
    --grid "UTM North (wgs84)" --zone 33 --worldfile $sheets/sheet-rgb.tfw
echo "$(stat -c %s $sheets/sheet-rgb.tif) bytes of TIFF became a library of $(stat -c %s "$library") bytes in $(took "$begin")."

step "Add the polar sheet by its four corners, and an icon"
mapfile -t corners < <(/usr/bin/python3 tools/sample-truth.py corners)
"$atlavex" add-map "$library" $sheets/polar.png --name "Polar sheet" --datum WGS84 "${corners[@]}"
"$atlavex" add-icon "$library" $sheets/marker.png --name "Marker" --offset 0,-16

step "Reopen it and look"
"$atlavex" info "$library"

step "Read out the printed crossings of both sheets and compare with what PROJ says"
/usr/bin/python3 tools/sample-truth.py check "$atlavex" "$library"

step "Take the pixels out again and compare with the sheet"
"$atlavex" extract "$library" 1 --out "$folder/again.tif"
/usr/bin/python3 tools/sample-truth.py same $sheets/sheet-rgb.tif "$folder/again.tif"

step "Show it in the editor, on a screen that nobody sees"
mkdir -p build
tools/editor-picture.sh "$library" build/sample-editor.png
echo "See build/sample-editor.png."

step "Seal it under a key, try a wrong one, open it with the right one"
printf 'sixteen letters!' >"$folder/key"
printf 'another key' >"$folder/wrong"
"$atlavex" rekey "$library" --new-key-file "$folder/key"
if "$atlavex" info "$library" --key-file "$folder/wrong" 2>"$folder/refusal"; then
    echo "A wrong key was accepted." >&2
    exit 1
fi
cat "$folder/refusal"
"$atlavex" verify "$library" --key-file "$folder/key"

step "Export the tiles"
begin=$(seconds)
mkdir "$folder/tiles"
"$atlavex" export-tiles "$library" 1 --to "$folder/tiles" --key-file "$folder/key"
echo "$(find "$folder/tiles" -name '*.png' | wc -l) tiles in $(took "$begin")."

step "Draw a view of the sheet"
"$atlavex" render "$library" 1 --zoom 0.25 --at 0,0 --size 1500x1000 --out build/sample-view.png --key-file "$folder/key"
echo "See build/sample-view.png."

step "Done: everything was as it should be"
