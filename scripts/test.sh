#!/usr/bin/env bash
# Installs what is missing, builds, and runs the tests.
#
#   scripts/test.sh                     everything
#   scripts/test.sh --asan              with AddressSanitizer and UndefinedBehaviorSanitizer
#   scripts/test.sh --label unit        tests of one label: unit, integration, slow
#   scripts/test.sh -R KudDatasetModif  further arguments go to ctest
#
# Tests run with the locale of the caller; CI runs them all under de_DE.UTF-8 as well.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=dev
arguments=()
while [ $# -gt 0 ]; do
    case $1 in
    --asan) preset=asan-ubsan ;;
    --label)
        arguments+=(-L "^${2:?--label needs a label}\$")
        shift
        ;;
    -h | --help)
        sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0"
        exit 0
        ;;
    *) arguments+=("$1") ;;
    esac
    shift
done

scripts/install-deps.sh --test
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset" -j "$(nproc)" --no-tests=error "${arguments[@]}"
