#!/usr/bin/env bash
# The main job on a sample sheet, without a display: each step says what it did and what it found.
# tools/main-job.sh [BUILD] names the folder of the programs.
# The sheet's printed crossings were placed by PROJ, so that the positions are checked against another program.
set -euo pipefail
export LC_ALL=C.UTF-8 # awk reads and writes numbers as the user's locale has them
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build=$(realpath "${1:-build}")
atlavex=$build/atlavex
sheet=samples/sheet/sheet
truth=samples/sheet/crossings.tsv
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
library=$folder/sample.Atlavex
step() { printf '\n== %s\n' "$1"; }
seconds() { date +%s.%N; }
took() { awk -v from="$1" -v to="$(seconds)" 'BEGIN { printf "%.2f s", to - from }'; }

# The two named columns of the table of crossings, a pair a line.
columns() { awk -F'\t' -v x="$1" -v y="$2" '!/^#/ { print $x, $y }' $truth; }

# compare WHAT UNIT ALLOWED FOUND EXPECTED: says how far off the worst pair is, and fails when that is too far.
compare() {
    paste -d' ' "$4" "$5" | awk -v what="$1" -v unit="$2" -v allowed="$3" '
        function off(a, b) { return a > b ? a - b : b - a }
        NF != 4 { broken = 1 }
        { for (i = 1; i <= 2; ++i) if (off($i, $(i + 2)) > worst) worst = off($i, $(i + 2)) }
        END {
            printf "%s: %d crossings, at most %.3g %s off\n", what, NR, worst, unit
            if (broken || NR == 0 || worst > allowed) { print "That is more than " allowed " " unit "."; exit 1 }
        }'
}

step "Make a library and add the sheet, georeferenced by its worldfile"
begin=$(seconds)
"$atlavex" new "$library"
"$atlavex" add-map "$library" $sheet.tif --name "Sample sheet" \
    --grid "UTM North (wgs84)" --zone 33 --worldfile $sheet.tfw
echo "$(stat -c %s $sheet.tif) bytes of TIFF became a library of $(stat -c %s "$library") bytes in $(took "$begin")."

step "Add it again by three crossings, and an icon"
"$atlavex" add-map "$library" $sheet.tif --name "By three points" --grid "UTM North (wgs84)" --zone 33 \
    --point 500,530=380000,5158000 --point 1700,530=383000,5158000 --point 500,1330=380000,5156000
"$atlavex" add-icon "$library" samples/sheet/marker.png --name "Marker" --offset 0,-16

step "Reopen it and look"
"$atlavex" info "$library"

step "Read out the printed crossings and compare with what PROJ says"
columns 1 2 >"$folder/pixels"
columns 3 4 >"$folder/metres"
columns 5 6 >"$folder/degrees"
for map in 1 2; do
    "$atlavex" locate "$library" $map <"$folder/pixels" >"$folder/found"
    compare "Map $map, easting and northing" m 1e-6 "$folder/found" "$folder/metres"
    "$atlavex" locate "$library" $map --wgs84 <"$folder/pixels" >"$folder/found"
    compare "Map $map, longitude and latitude on WGS84" degrees 1e-9 "$folder/found" "$folder/degrees"
    "$atlavex" find "$library" $map <"$folder/metres" >"$folder/found"
    compare "Map $map, back to pixels" pixel 1e-6 "$folder/found" "$folder/pixels"
done

step "Take the pixels out, add them again, and compare"
"$atlavex" extract "$library" 1 --out "$folder/once.tif"
"$atlavex" add-map "$library" "$folder/once.tif" --name "Again"
"$atlavex" extract "$library" Again --out "$folder/twice.tif"
cmp "$folder/once.tif" "$folder/twice.tif"
echo "The same, $(stat -c %s "$folder/once.tif") bytes."

has() { command -v "$1" >/dev/null; }
if has xvfb-run && has xdotool && has import; then
    step "Show it in the editor, on a screen that nobody sees"
    tools/editor-picture.sh "$library" "$build/sample-editor.png" "$build"
    echo "See $build/sample-editor.png."
fi

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
"$atlavex" render "$library" 1 --zoom 0.5 --at 0,0 --size 1000x750 --out "$build/sample-view.png" --key-file "$folder/key"
echo "See $build/sample-view.png."

step "Done: everything was as it should be"
