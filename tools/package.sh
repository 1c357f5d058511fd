#!/usr/bin/env bash
# Makes the two Debian packages in build/packages/, of the release build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

tools/build.sh release quorvant-studio atlavex atlavex_engine manuals debian_changelogs
cpack --config build/CPackConfig.cmake -B build/packages >/dev/null
rm -rf build/packages/_CPack_Packages
ls build/packages/*.deb
