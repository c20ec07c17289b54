#!/usr/bin/env bash
# Builds the benchmarks optimised and runs them, then prints their ratio lines: our time over the
# peer's, beside the limit. Fails when a limit is missed.
#
#   scripts/bench.sh                    all of them
#   scripts/bench.sh KueCsvBench ...    these programs
#   scripts/bench.sh --smoke            just sees that each one runs, whatever the ratios
#   scripts/bench.sh --benchmark_repetitions=5 ...    options of Google Benchmark
set -euo pipefail
cd "$(dirname "$0")/.."

arguments=()
names=()
smoke=false
for argument in "$@"; do
    case $argument in
    --smoke)
        smoke=true
        arguments+=(--benchmark_min_time=0.001)
        ;;
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
missed=()
for name in "${names[@]}"; do
    printf '\n== %s\n' "$name"
    status=0
    QT_QPA_PLATFORM=offscreen "build/release/bench/$name" "${arguments[@]}" |
        tee "$results/$name.txt" || status=$?
    # 1 is a missed limit: no verdict of a run that short.
    if [ $status -gt 1 ]; then exit $status; fi
    if [ $status -eq 1 ] && ! $smoke; then missed+=("$name"); fi
done

printf '\n== ratios: our time over the peer'"'"'s\n'
for name in "${names[@]}"; do
    sed -n "s/^ratio/$name/p" "$results/$name.txt"
done
if [ ${#missed[@]} -gt 0 ]; then
    echo "bench: a limit is missed in ${missed[*]}" >&2
    exit 1
fi
