#!/usr/bin/env bash
# Checks that the C++ files are as clang-format would write them, and that the Python package keeps
# PEP 8 with lines of 100 columns.
#
#   scripts/format-check.sh             files that differ from main, or are not committed yet
#   scripts/format-check.sh BASE        files that differ from the commit BASE
#   scripts/format-check.sh --all       every file
#   scripts/format-check.sh --fix ...   formats them instead
set -euo pipefail
cd "$(dirname "$0")/.."

arguments=(--dry-run -Werror)
base=main
all=false
for argument in "$@"; do
    case $argument in
    --all) all=true ;;
    --fix) arguments=(-i) ;;
    -*)
        sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0" >&2
        exit 2
        ;;
    *) base=$argument ;;
    esac
done

if $all; then
    mapfile -t files < <(git ls-files --cached --others --exclude-standard '*.h' '*.cpp')
else
    git rev-parse --quiet --verify "$base^{commit}" >/dev/null || base=HEAD~1
    mapfile -t files < <(
        {
            git diff --name-only --diff-filter=d --merge-base "$base" -- '*.h' '*.cpp'
            git ls-files --others --exclude-standard '*.h' '*.cpp'
        } | sort -u)
fi
existing=()
for file in "${files[@]}"; do
    if [ -f "$file" ]; then existing+=("$file"); fi
done
if [ ${#existing[@]} -gt 0 ]; then
    printf '%s\0' "${existing[@]}" |
        xargs -0 -n 16 -P "$(nproc)" clang-format --style=file "${arguments[@]}"
fi
if /usr/bin/python3 -c 'import pycodestyle' 2>/dev/null; then
    /usr/bin/python3 -m pycodestyle --max-line-length=100 python examples/python
else
    echo "format-check: python3-pycodestyle is not installed, Python was not looked at"
fi
echo "format-check: ${#existing[@]} files looked at"
