#!/usr/bin/env bash
# tools/editor-picture.sh LIBRARY PICTURE.png [BUILD]: starts the editor on the library, on a virtual screen, waits until the
# map is shown, takes a picture of the window and closes it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
library=$(realpath "$1")
picture=$(realpath -m "$2")
build=$(realpath "${3:-build}")

if [ -z "${EDITOR_PICTURE_SCREEN:-}" ]; then
    EDITOR_PICTURE_SCREEN=1 exec xvfb-run -a -s "-screen 0 1280x900x24" "$0" "$library" "$picture" "$build"
fi

home=$(mktemp -d)
# A home and no session bus: what this machine's user has set up, or has not, changes nothing.
# In a build with sanitizers: the keyboard's library copies names out of the X server's answer, where none is terminated.
export ASAN_OPTIONS=${ASAN_OPTIONS:-}:strict_string_checks=0
HOME=$home XDG_CONFIG_HOME=$home XDG_CACHE_HOME=$home XDG_RUNTIME_DIR=$home \
    DBUS_SESSION_BUS_ADDRESS="unix:path=$home/no-bus" QT_QPA_PLATFORM=xcb "$build/quorvant-studio" "$library" 2>"$home/messages" &
editor=$!
trap 'kill $editor 2>/dev/null || true; rm -rf "$home"' EXIT
# Its caption names the library once that is loaded and on the screen.
window=$(timeout 60 xdotool search --sync --onlyvisible --name "Quorvant Studio - .*$(basename "$library")" | head -1) || {
    echo "The editor's window did not come within a minute. The editor says:" >&2
    cat "$home/messages" >&2
    exit 1
}
sleep 1
import -window "$window" "$picture"
