#!/usr/bin/env bash
# Builds the Debian package, installing under /usr as Debian's packages do.
# Usage: tools/package.sh [build-folder]   (default: build-package)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-package}
tools/deps.sh
cmake -S . -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DLARKFEN_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"$(nproc)"
(cd "$build" && cpack -G DEB)
