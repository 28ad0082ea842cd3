#!/usr/bin/env bash
# Builds the fuzzers with clang and runs each for a while on a copy of its seed corpus.
# Usage: fuzz/run.sh [seconds-per-fuzzer] [build-folder]   (defaults: 60, build-fuzz)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
build=${2:-build-fuzz}

tools/deps.sh clang libclang-rt-14-dev
CC=clang CXX=clang++ cmake -S . -B "$build" -DLARKFEN_FUZZ=ON -DLARKFEN_BUILD_TESTS=OFF \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)" --target fuzzers

status=0
mkdir -p "$build/fuzz/logs" "$build/fuzz/artifacts"
for name in fuzz_timestamp fuzz_property_list fuzz_filesize fuzz_desktop_entry; do
    corpus="$build/fuzz/corpus-run/${name#fuzz_}"
    log="$build/fuzz/logs/$name.log"
    mkdir -p "$corpus"
    cp -n fuzz/corpus/"${name#fuzz_}"/* "$corpus"/ 2>/dev/null || true
    echo "== $name for ${seconds}s"
    if ! "$build/fuzz/$name" -max_total_time="$seconds" -print_final_stats=1 -timeout=10 \
        -rss_limit_mb=2048 -artifact_prefix="$build/fuzz/artifacts/$name-" "$corpus" \
        >"$log" 2>&1; then
        echo "$name FAILED; see $log" >&2
        tail -n 40 "$log" >&2
        status=1
    fi
    grep -E '^(stat::number_of_executed_units|stat::new_units_added|stat::peak_rss_mb)' "$log" |
        tr '\n' ' '
    echo
done
exit $status
