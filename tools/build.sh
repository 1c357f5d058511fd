#!/usr/bin/env bash
# Builds a preset: tools/build.sh release [target ...]. Configures only when nothing is configured yet.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:?name a preset of CMakePresets.json}
shift

case "$preset" in
    release) folder=build ;;
    *) folder=build-$preset ;;
esac
if [ ! -f "$folder/build.ninja" ]; then
    cmake --preset "$preset" >"/tmp/configure-$$.log" 2>&1 || { cat "/tmp/configure-$$.log" >&2; exit 1; }
    rm -f "/tmp/configure-$$.log"
fi
ninja -C "$folder" --quiet "$@"
