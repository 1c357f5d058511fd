#!/usr/bin/env bash
# Draws the sample sheets into samples/made, once.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [ ! -f samples/made/truth.json ]; then
    echo "Drawing the sample sheets (once)."
    /usr/bin/python3 samples/make_sheets.py samples/made
fi
