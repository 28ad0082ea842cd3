#!/usr/bin/env bash
# Builds and runs the size benchmark: SizeZRV against du, gdu and the floor loop.
# The first run makes its trees under bench/data (about 320,000 sparse files; a
# minute or so); later runs reuse them.
# Usage: bench/run-size.sh [build-folder]   (default: build-bench)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-bench}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DLARKFEN_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target bench_size
"$build/bench/bench_size"
