#!/usr/bin/env bash
# tools/try-packages.sh [PICTURE.png]: installs the packages of build/packages/ with apt into a new Debian 12 that holds
# nothing else, starts both programs there, builds the example against the engine, takes the packages away again, and
# stops at the first thing that fails. Needs root and the network; the picture is of the editor in the new system.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
picture=$(realpath -m "${1:-build/packages/editor.png}")

if [ -z "${TRY_PACKAGES_INSIDE:-}" ]; then
    # What is mounted here goes with the process.
    exec env TRY_PACKAGES_INSIDE=1 unshare --mount --pid --fork --kill-child "$0" "$picture"
fi
root=$(mktemp -d)
trap 'umount "$root/proc" "$root/tmp/.X11-unix" 2>/dev/null || true; rm -rf --one-file-system "$root"' EXIT
say() { printf '== %s\n' "$*"; }
in_new() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }

say "A new Debian 12"
debootstrap --variant=minbase bookworm "$root" http://deb.debian.org/debian >/dev/null
mount -t proc proc "$root/proc"
cp build/packages/*.deb samples/sheet/sheet.tif samples/sheet/sheet.tfw "$root/root/"
in_new apt-get update -qq

say "The programs"
in_new sh -c 'apt-get install -y -qq /root/quorvant-studio_*.deb' >/dev/null 2>&1
in_new atlavex --version
in_new quorvant-studio --version
in_new sh -c 'cd /root && atlavex new "Erste Karte.Atlavex" && atlavex add-map "Erste Karte.Atlavex" sheet.tif \
    --name "First sheet" --grid "UTM North (wgs84)" --zone 33 --worldfile sheet.tfw &&
    atlavex locate "Erste Karte.Atlavex" 1 500 530'
in_new xdg-mime query default application/x-atlavex
in_new test -f /usr/share/mime/application/x-atlavex.xml

say "The editor"
mkdir -p "$root/tmp/.X11-unix"
exec {number}< <(exec 3>&1 >/dev/null; exec Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 2>/dev/null)
read -r display <&"$number"
export DISPLAY=:$display
mount --bind /tmp/.X11-unix "$root/tmp/.X11-unix"
in_new env DISPLAY=":$display" quorvant-studio "/root/Erste Karte.Atlavex" &
window=$(timeout 60 xdotool search --sync --onlyvisible --name "Quorvant Studio - .*Erste Karte" | head -1)
sleep 2
import -window "$window" "$picture"
xdotool getwindowname "$window"
echo "$picture"

say "The engine"
in_new sh -c 'apt-get install -y -qq --no-install-recommends /root/libatlavex-dev_*.deb g++ pkg-config' >/dev/null 2>&1
in_new sh -c 'cd /root && c++ -std=c++20 /usr/share/doc/libatlavex-dev/examples/map_centres.cpp \
    $(pkg-config --cflags --libs atlavex) -o map_centres && ./map_centres "Erste Karte.Atlavex"'

say "Taken away again"
in_new apt-get purge -y -qq quorvant-studio libatlavex-dev >/dev/null 2>&1
left=$(find "$root/usr" -iname '*atlavex*' -o -iname '*quorvant*')
[ -z "$left" ] || { echo "left: $left"; exit 1; }
echo "nothing is left"
