#!/usr/bin/env bash
# Builds the Debian package of a build and checks that it holds exactly what the
# install step installs, and that its dependencies are generated.
# Usage: packaging/check-package.sh BUILD-FOLDER
set -euo pipefail
build=$(cd "$1" && pwd)
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
command -v dpkg-deb >/dev/null || { echo "SKIP: dpkg-deb is not installed"; exit 0; }

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$out" >/dev/null
deb=$(ls "$out"/*.deb)
DESTDIR="$out/stage" cmake --install "$build" >/dev/null

packaged=$(dpkg-deb --contents "$deb" | awk '{print $6}' | grep -v '/$' | sed 's|^\./|/|' | sort)
installed=$(cd "$out/stage" && find . -type f -o -type l | sed 's|^\./|/|' | sort)
failed=0
if [ "$packaged" != "$installed" ]; then
    echo "FAIL: the package and the install step differ:"
    diff <(echo "$packaged") <(echo "$installed") || true
    failed=1
fi
depends=$(dpkg-deb -f "$deb" Depends)
for library in libwxgtk3.2 libplist libdate-tz libglib2.0; do
    case "$depends" in *"$library"*) ;; *) echo "FAIL: Depends lacks $library: $depends"; failed=1 ;; esac
done
[ "$failed" -eq 0 ] && echo "package checks passed: $(basename "$deb")"
exit "$failed"
