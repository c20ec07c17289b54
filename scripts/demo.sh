#!/usr/bin/env bash
# Walks the road from a table of samples to a project, an export and a map, and prints each command
# before it runs it.
#
#   scripts/demo.sh                      with a drill campaign that it makes up
#   scripts/demo.sh FILE --x X --y Y     with your table; further options go to `kelvane import`
#
# The results are in ./demo-output, or in $KELVANE_DEMO_DIR. What is missing on a Debian 12 machine is
# installed first, then the tool is built; the second run does neither.
set -euo pipefail
caller=$PWD
source_dir=$(cd "$(dirname "$0")/.." && pwd)
output=${KELVANE_DEMO_DIR:-$caller/demo-output}

case ${1-} in
-h | --help)
    sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0"
    exit 0
    ;;
-*)
    echo "$0: the file comes first: scripts/demo.sh FILE --x X --y Y" >&2
    exit 2
    ;;
esac
if [ $# -gt 0 ] && [ ! -f "$1" ]; then
    echo "$0: there is no file '$1'" >&2
    exit 1
fi

bold=''
plain=''
if [ -t 1 ]; then
    bold=$'\033[1m'
    plain=$'\033[0m'
fi
step() {
    printf '\n%s%s%s\n' "$bold" "$*" "$plain"
}

# Prints a command as it could be typed, then runs it.
run() {
    printf '\n$'
    for word in "$@"; do
        case $word in
        *[!a-zA-Z0-9_./:,=+-]* | '') printf " '%s'" "${word//\'/\'\\\'\'}" ;;
        *) printf ' %s' "$word" ;;
        esac
    done
    printf '\n'
    "$@"
}

build() {
    "$source_dir/scripts/install-deps.sh" --run
    local build_dir=$source_dir/build/demo
    if [ ! -f "$build_dir/build.ninja" ]; then
        step "Building the tool (once)"
        cmake -S "$source_dir" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release \
            -DCMAKE_CXX_FLAGS_RELEASE='-O2 -DNDEBUG' -DKELVANE_BUILD_TESTS=OFF >/dev/null
    fi
    if ! cmake --build "$build_dir" --target kelvane example_drill_campaign >"$build_dir/build.log"; then
        cat "$build_dir/build.log" >&2
        exit 3
    fi
    PATH=$build_dir/bin:$build_dir/examples/drill_campaign:$PATH
}

build
mkdir -p "$output"
if [ $# -gt 0 ]; then
    table=$(realpath "$1")
    shift
    import=("$@")
    cd "$output"
else
    cd "$output"
    step "A drill campaign, made up: holes on a loose grid, a sample every five metres"
    table=drill_campaign.csv
    run drill_campaign "$table"
    run head -4 "$table"
    import=(--x EASTING --y NORTHING --z ELEVATION --text SAMPLE --cs EPSG:2154)
fi
name=$(basename "$table")
name=${name%.*}
for ((i = 0; i + 1 < ${#import[@]}; i++)); do
    if [ "${import[i]}" = --name ]; then
        name=${import[i + 1]}
    fi
done

step "Import: the table becomes a dataset of a project"
run kelvane import "$table" --project project --name "$name" --replace "${import[@]}"

step "Info: what the project holds, for people and for programs"
run kelvane info project
printf '\n$ kelvane info project %q --json | head -24\n' "$name"
kelvane info project "$name" --json >info.json
head -24 info.json

if grep -q '"name": "AS_PPM"' info.json; then
    step "Space: what the numbers are, where the samples lie in the world, a table for a GPS"
    run kelvane set project "$name" --unit CU_PCT=%,AU_GPT=g/t,AS_PPM=ppm,ELEVATION=m
    printf '\n$ kelvane info project %q --cs EPSG:4326 | head -4\n' "$name"
    kelvane info project "$name" --cs EPSG:4326 >info-world.txt
    head -4 info-world.txt
    run kelvane export project "$name" world.csv --cs EPSG:4326 \
        --variables EASTING,NORTHING,ELEVATION,CU_PCT --units CU_PCT=ppm,ELEVATION=ft
    run head -4 world.csv
fi

if grep -q '"name": "AS_PPM"' info.json; then
    step "Select: rules narrow samples down, are kept by name, and make a mask"
    run kelvane select project "$name" --rule 'CU_PCT > 0.5' --rule 'ROCK in {breccia, schist}' \
        --combine 'R1 and not R2'
    run kelvane select project "$name" --rule 'CU_PCT > 0.5' --rule 'AU_GPT > 0.5' --save rich --replace
    run kelvane table project "$name" --filter rich --sort CU_PCT --descending --count 5
    run kelvane export project "$name" rich.csv --filter rich
    run kelvane select project "$name" --filter rich --mask --count
    run kelvane export project "$name" masked.csv --masked
    run cmp rich.csv masked.csv
    run kelvane select project "$name" --unmask
fi

step "Check: is every file of the project whole?"
run kelvane check project

step "Export: back to delimited text, without losing a digit"
run kelvane export project "$name" export.csv
run head -4 export.csv
printf '\nWith a decimal comma:\n'
run kelvane export project "$name" export-comma.csv --separator semicolon --decimal comma --undefined NA
run head -4 export-comma.csv

step "Map: the samples, coloured by a grade"
map=(kelvane map project "$name" map.png)
grep -q '"name": "CU_PCT"' info.json && map+=(--variable CU_PCT)
if grep -q '"role": "X_COORDINATE"' info.json; then
    run "${map[@]}"
else
    echo "No map: the table has no coordinates. Name them with --x and --y."
    map=()
fi

step "Pack: the project in one file, and out of it on another path"
run kelvane pack project project.tar.zst
run kelvane archive list project.tar.zst
run kelvane archive info project.tar.zst
run kelvane archive verify project.tar.zst
rm -rf elsewhere
run mkdir elsewhere
run kelvane unpack project.tar.zst elsewhere
run kelvane check elsewhere/project

step "The results are in $output"
echo "  project/          the project: one file a dataset"
echo "  export.csv        the export; export-comma.csv with decimal commas"
echo "  project.tar.zst   the project in one file; elsewhere/ holds it unpacked"
echo "  info.json         what the project holds"
[ ! -f rich.csv ] || echo "  rich.csv          the samples that pass rules; masked.csv the same by a mask"
[ ! -f world.csv ] || echo "  world.csv         the export in longitudes and latitudes, in other units"
[ ${#map[@]} -eq 0 ] || echo "  map.png           the map"
