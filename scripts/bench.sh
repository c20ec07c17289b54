#!/usr/bin/env bash
# Builds the benchmarks optimised and runs them, then prints one line for each comparison: what was
# measured, our time, the peer's time, and the ratio peer / ours (above 1 we are faster).
#
#   scripts/bench.sh                    all of them
#   scripts/bench.sh KueCsvBench ...    these programs
#   scripts/bench.sh --smoke            just sees that each one runs
set -euo pipefail
cd "$(dirname "$0")/.."

arguments=()
names=()
for argument in "$@"; do
    case $argument in
    --smoke) arguments+=(--benchmark_min_time=0.001) ;;
    -h | --help)
        sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0"
        exit 0
        ;;
    -*) arguments+=("$argument") ;;
    *) names+=("$argument") ;;
    esac
done

scripts/install-deps.sh --bench
cmake --preset release >/dev/null
cmake --build --preset release --target benchmarks

if [ ${#names[@]} -eq 0 ]; then
    mapfile -t names < <(find bench -name '*Bench.cpp' -exec basename {} .cpp \; | sort)
fi
results=build/release/bench-results
mkdir -p "$results"
ran=()
for name in "${names[@]}"; do
    result=$results/$name.json
    QT_QPA_PLATFORM=offscreen "build/release/bench/$name" --benchmark_out_format=json --benchmark_out="$result" \
        "${arguments[@]}"
    ran+=("$result")
done
python=/usr/bin/python3
[ -x $python ] || python=python3
$python scripts/bench-ratios.py "${ran[@]}"
