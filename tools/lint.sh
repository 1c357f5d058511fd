#!/usr/bin/env bash
# Checks the form of all C++ files, and their substance with clang-tidy (a quarter of an hour on two cores).
# tools/lint.sh --form checks the form alone, --fix mends it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t files < <(git ls-files '*.cpp' '*.h')
if [ "${1:-}" = --fix ]; then
    clang-format -i "${files[@]}"
    exit 0
fi
clang-format --dry-run --Werror "${files[@]}"
if [ "${1:-}" = --form ]; then
    echo "Form: ${#files[@]} files, nothing to mend."
    exit 0
fi

[ -f build/compile_commands.json ] || tools/build.sh release
# The engine and its programs; tests are held to the compiler's warnings.
mapfile -t sources < <(git ls-files 'base/*.cpp' 'coordinates/*.cpp' 'catalogue/*.cpp' 'platform/*.cpp' 'component/*.cpp' 'cli/*.cpp')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build --quiet 2> >(grep -v 'warnings generated\|warnings treated\|Suppressed\|Use -header-filter\|non-user code' >&2)
echo "Form and clang-tidy: ${#files[@]} files, nothing to mend."
