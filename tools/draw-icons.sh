#!/usr/bin/env bash
# Draws the icons' pictures in the sizes that desktops ask for from their drawings, packaging/icons/*.svg, after a
# change of those. tools/draw-icons.sh FOLDER draws them into another folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
target=${1:-packaging/icons}

for drawing in packaging/icons/*.svg; do
    for size in 16 22 24 32 48 64 128 256; do
        mkdir -p "$target/$size"
        rsvg-convert --width "$size" --height "$size" --output "$target/$size/$(basename "$drawing" .svg).png" "$drawing"
    done
done
