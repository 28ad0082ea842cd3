#!/usr/bin/env bash
# Builds everything and runs every test: unit, end-to-end and window tests.
# Usage: tools/test.sh [build-folder]   (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}

tools/deps.sh
werror=OFF
[ "${CI:-}" = "true" ] && werror=ON
cmake -S . -B "$build" -DLARKFEN_WERROR="$werror" >/dev/null
cmake --build "$build" -j"$(nproc)"
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
