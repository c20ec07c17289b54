#!/usr/bin/env bash
# Builds the fuzzers with clang and the sanitizers, and runs each one on its corpus.
#
#   scripts/fuzz.sh [--seconds N] [--seed N] [NAME...]     15 seconds each; all of them without names
#
# With a seed, a run tries what the last one with it tried: whoever only wants to know whether a change
# broke something gets no finding by luck. Without one, each run looks elsewhere.
#
# NAME is that of fuzz/NAMEFuzzer.cpp and of its seeds, fuzz/corpus/NAME. What a fuzzer finds is left in
# build/fuzz/findings: mend the fault, then add the input to the seeds, so that it stays mended. New
# inputs of a run stay in build/fuzz/corpus/NAME.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=15
seed=0 # 0: another one each time
names=()
while [ $# -gt 0 ]; do
    case $1 in
    --seconds)
        seconds=${2:?--seconds needs a number}
        shift
        ;;
    --seed)
        seed=${2:?--seed needs a number}
        shift
        ;;
    -*)
        sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0" >&2
        exit 2
        ;;
    *) names+=("$1") ;;
    esac
    shift
done

scripts/install-deps.sh --check
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target fuzzers

if [ ${#names[@]} -eq 0 ]; then
    mapfile -t names < <(find fuzz -name '*Fuzzer.cpp' -exec basename {} Fuzzer.cpp \; | sort)
fi
if [ ${#names[@]} -eq 0 ]; then
    echo "fuzz: there is no fuzzer"
    exit 0
fi
findings=build/fuzz/findings
mkdir -p "$findings"

run_one() {
    local name=$1
    local corpus=build/fuzz/corpus/$name
    mkdir -p "$corpus"
    local seeds=()
    if [ -d "fuzz/corpus/$name" ]; then seeds=("fuzz/corpus/$name"); fi
    if "build/fuzz/fuzz/${name}Fuzzer" -max_total_time="$seconds" -seed="$seed" -timeout=10 -rss_limit_mb=2048 \
        -malloc_limit_mb=1024 -print_final_stats=1 -artifact_prefix="$findings/$name-" \
        "$corpus" "${seeds[@]}" >"$findings/$name.log" 2>&1; then
        echo "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$findings/$name.log") inputs"
    else
        echo "$name: FAILED" >&2
        tail -n 60 "$findings/$name.log" >&2
        return 1
    fi
}
export -f run_one
export seconds seed findings
export ASAN_OPTIONS=${ASAN_OPTIONS:-strict_string_checks=1}
export LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=testing/lsan.supp:print_suppressions=0}
export QT_QPA_PLATFORM=offscreen
printf '%s\0' "${names[@]}" | xargs -0 -n 1 -P "$(nproc)" bash -c 'run_one "$1"' run_one
