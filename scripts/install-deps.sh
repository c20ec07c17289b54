#!/usr/bin/env bash
# Installs the Debian 12 packages that Kelvane needs, and only those that are missing: on a machine
# that has them all, this asks dpkg once and ends.
#
#   scripts/install-deps.sh                  everything (the same as --all)
#   scripts/install-deps.sh --run            what building the libraries and the tool takes
#   scripts/install-deps.sh --test --bench   groups add up; each one includes --run
#   scripts/install-deps.sh --list --test    prints the packages and installs nothing
set -euo pipefail

run=(g++ cmake ninja-build pkg-config ccache
    qtbase5-dev qtbase5-dev-tools libboost-dev libproj-dev proj-data libzstd-dev libxxhash-dev
    zlib1g-dev)
test=(git libgtest-dev libgmock-dev python3 python3-numpy python3-zstandard python3-dask
    python3-distributed zstd libarchive-tools locales units
    fonts-dejavu-core)
bench=(libbenchmark-dev libsqlite3-dev python3 python3-numpy python3-zstandard zstd
    libarchive-tools)
check=(git python3 clang clang-format clang-tidy libclang-rt-14-dev doxygen
    python3-pycodestyle)

usage() {
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0"
}

wanted=()
want_locale=false
list_only=false
add_group() {
    wanted+=("${run[@]}")
    case $1 in
    run) ;;
    test)
        wanted+=("${test[@]}")
        want_locale=true
        ;;
    bench) wanted+=("${bench[@]}") ;;
    check) wanted+=("${check[@]}") ;;
    esac
}
for argument in "$@"; do
    case $argument in
    --run | --test | --bench | --check) add_group "${argument#--}" ;;
    --all) for group in test bench check; do add_group "$group"; done ;;
    --list) list_only=true ;;
    -h | --help)
        usage
        exit 0
        ;;
    *)
        echo "$0: unknown option '$argument'" >&2
        usage >&2
        exit 2
        ;;
    esac
done
if [ ${#wanted[@]} -eq 0 ]; then
    for group in test bench check; do add_group "$group"; done
fi
mapfile -t wanted < <(printf '%s\n' "${wanted[@]}" | sort -u)
if $list_only; then
    printf '%s\n' "${wanted[@]}"
    exit 0
fi

# One dpkg-query for the whole list; a package it does not know prints nothing.
installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null |
    sed -n 's/^installed //p' | sort -u || true)
mapfile -t missing < <(comm -23 <(printf '%s\n' "${wanted[@]}") <(printf '%s\n' "$installed"))

# The second run of the tests is under a locale with a decimal comma.
locale_missing() {
    $want_locale && ! locale -a 2>/dev/null | grep -qiE '^de_DE\.utf-?8$'
}

if [ ${#missing[@]} -eq 0 ] && ! locale_missing; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "$0: missing: ${missing[*]:-} $(locale_missing && echo 'locale de_DE.UTF-8')" >&2
        echo "Run this script as root, or install sudo." >&2
        exit 1
    fi
    as_root=(sudo)
fi
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
fi
if locale_missing; then
    echo "Generating locale de_DE.UTF-8"
    "${as_root[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi
