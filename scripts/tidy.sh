#!/usr/bin/env bash
# Runs clang-tidy over sources, with a compile database of its own: made for clang and without
# precompiled headers, for clang-tidy cannot read those of GCC.
#
#   scripts/tidy.sh             sources that differ from main, or are not committed yet
#   scripts/tidy.sh FILE...     these sources
#   scripts/tidy.sh --all       every source (long)
set -euo pipefail
cd "$(dirname "$0")/.."
build=build/tidy

if [ "${1:-}" = --all ]; then
    mapfile -t files < <(git ls-files --cached --others --exclude-standard \
        'basic/*.cpp' 'geos/*.cpp' 'util/*.cpp' 'apps/*.cpp')
elif [ $# -gt 0 ]; then
    files=("$@")
else
    base=main
    git rev-parse --quiet --verify "$base^{commit}" >/dev/null || base=HEAD~1
    mapfile -t files < <(
        {
            git diff --name-only --diff-filter=d --merge-base "$base" -- '*.cpp'
            git ls-files --others --exclude-standard '*.cpp'
        } | grep -vE '^(bench|fuzz|examples/installed)/' | sort -u)
fi
if [ ${#files[@]} -eq 0 ]; then
    echo "tidy: no source to look at"
    exit 0
fi

cmake --preset dev -B "$build" -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DCMAKE_AUTOGEN_ORIGIN_DEPENDS=OFF >/dev/null
# Sources may include what moc writes; that is quick to make and needs no compilation.
cmake --build "$build" --target kelvane_basic_autogen kelvane_geos_autogen kelvane_util_autogen >/dev/null
printf '%s\0' "${files[@]}" |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p "$build" 2> >(grep -v "warnings generated" >&2)
echo "tidy: ${#files[@]} sources looked at"
