#!/usr/bin/env bash
# Checks the form of all C++ files and who includes whom (tools/includes.txt), and the substance of the programs' sources with clang-tidy, which takes long.
# tools/lint.sh --form checks the form alone, --fix mends it; tools/lint.sh FILE.cpp ... looks into these files only.
# QUORVANT_BUILD names another build folder than build/, which must then be up to date.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${files[@]}"
    exit 0
fi
clang-format --dry-run --Werror "${files[@]}"
tools/check-includes.py
tools/draw-house.py --check
if [ "${1:-}" = --form ]; then
    echo "Form: ${#files[@]} files, nothing to mend."
    exit 0
fi

# Everything is built first: sources include headers that the build makes of forms and of the viewer page.
build=${QUORVANT_BUILD:-build}
[ -n "${QUORVANT_BUILD:-}" ] || tools/build.sh release
# The engine, the command and the editor; tests are held to the compiler's warnings.
sources=("$@")
if [ ${#sources[@]} = 0 ]; then
    mapfile -t sources < <(git ls-files 'base/*.cpp' 'coordinates/*.cpp' 'catalogue/*.cpp' 'platform/*.cpp' \
        'component/*.cpp' 'cli/*.cpp' 'view/*.cpp' 'dialogs/*.cpp' 'wizard/*.cpp' 'app/*.cpp')
fi
# GCC's precompiled headers say nothing to clang: each source is read with what it includes itself.
commands=$(mktemp -d)
trap 'rm -rf "$commands"' EXIT
sed -E 's/(-Winvalid-pch )?-include [^ ]*cmake_pch\.hxx//' "$build/compile_commands.json" >"$commands/compile_commands.json"
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy -p "$commands" --quiet \
    2> >(grep -v 'warnings generated\|warnings treated\|Suppressed\|Use -header-filter\|non-user code' >&2)
echo "Form: ${#files[@]} files, clang-tidy: ${#sources[@]} sources, nothing to mend."
