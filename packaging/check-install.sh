#!/usr/bin/env bash
# Installs a build into a staging folder and checks what a package would ship:
# the desktop entry, the systemd user units, the man page and the pictures.
# Usage: packaging/check-install.sh BUILD-FOLDER
set -euo pipefail
build=$(cd "$1" && pwd)
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
prefix=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$build/CMakeCache.txt")
DESTDIR="$stage" cmake --install "$build" >/dev/null
root="$stage$prefix"
failed=0
fail() { echo "FAIL: $*" >&2; failed=1; }

for file in "$root"/bin/larkfen-helper "$root"/share/larkfen-helper/picAppIcon.png \
    "$root"/share/larkfen-helper/picAppIcon@2x.png \
    "$root"/share/icons/hicolor/64x64/apps/larkfen-helper.png \
    "$root"/share/icons/hicolor/128x128/apps/larkfen-helper.png; do
    [ -e "$file" ] || fail "not installed: ${file#"$stage"}"
done

for entry in "$root"/share/applications/*.desktop; do
    output=$(desktop-file-validate "$entry" 2>&1) || fail "desktop-file-validate: $output"
    [ -z "$output" ] || fail "desktop-file-validate: $output"
done

if command -v systemd-analyze >/dev/null; then
    runtime=$(mktemp -d)
    output=$(cd "$root/lib/systemd/user" && XDG_RUNTIME_DIR="$runtime" \
        MANPATH="$root/share/man" systemd-analyze verify --user \
        ./*.path ./*.timer ./*.service 2>&1) || true
    rm -rf "$runtime"
    # The units name the binary where it will be installed; here it is staged.
    if [ -x "$root/bin/larkfen-helper" ]; then
        output=$(echo "$output" | grep -v "Command $prefix/bin/larkfen-helper is not executable" || true)
    fi
    # verify reports problems on its output while still exiting 0.
    [ -z "$output" ] || fail "systemd-analyze: $output"
else
    echo "SKIP: systemd-analyze is not installed; the units were not verified" >&2
fi

output=$(LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -l "$root/share/man/man1/larkfen-helper.1" \
    2>&1 >/dev/null) || fail "man: $output"
[ -z "$output" ] || fail "man: $output"

[ "$failed" -eq 0 ] && echo "install checks passed"
exit "$failed"
