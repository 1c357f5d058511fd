#!/usr/bin/env bash
# Installs the Debian packages that are missing: tools/setup.sh build (what building and running need) or
# tools/setup.sh (what the tests need, too). Does nothing, at once, when none is.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

lists=(packaging/debian-build.txt)
[ "${1:-}" = build ] || lists+=(packaging/debian-tests.txt)
mapfile -t packages < <(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "${lists[@]}")
missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing ${#missing[@]} Debian packages: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Please run this as root, or install sudo." >&2; exit 1; }
    as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
# What was found or not found before is looked for again by the next build.
rm -f build*/build.ninja
