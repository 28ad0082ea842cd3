#!/usr/bin/env bash
# Shows the agent's main job to a newcomer: in a throwaway home it installs the
# stand-in companion, turns its alerts on, fills the Trash with 60 MB and an
# application, and runs `larkfen-helper -TrashChanged`. Both alerts come up on
# your display; the commands the companion receives are printed here. Without a
# display it runs on Xvfb, answers the alerts itself and saves screenshots.
# Usage: tools/demo.sh [build-folder]   (default: build; built when missing)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}

tools/deps.sh
if [ ! -x "$build/larkfen-helper" ] || [ ! -x "$build/larkfen-standin" ]; then
    cmake -S . -B "$build" -DLARKFEN_BUILD_TESTS=OFF >/dev/null
    cmake --build "$build" -j"$(nproc)" --target larkfen-helper larkfen-standin >/dev/null
fi
helper=$(cd "$build" && pwd)/larkfen-helper
standin=$(cd "$build" && pwd)/larkfen-standin

home=$(mktemp -d /tmp/larkfen-demo-XXXXXX)
export HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config \
    XDG_DATA_DIRS=$home/companion:/usr/local/share:/usr/share
mkdir -p "$HOME/Desktop" "$XDG_DATA_HOME/Trash/files" "$XDG_CONFIG_HOME"

echo "== A throwaway home: $home"
"$standin" --install "$home/companion" --log "$home/commands.txt"
cat >"$XDG_CONFIG_HOME/com.ombrastel.larkfen.plist" <<'PLIST'
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>AlertTrashFull</key><true/>
<key>AlertUninstallApps</key><true/>
</dict></plist>
PLIST
head -c 60000000 /dev/urandom >"$XDG_DATA_HOME/Trash/files/old-videos.bin"
mkdir -p "$XDG_DATA_HOME/Trash/files/Sketchbook.app/Contents"
cat >"$XDG_DATA_HOME/Trash/files/Sketchbook.app/Contents/Info.plist" <<'PLIST'
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>CFBundleName</key><string>Sketchbook</string>
<key>CFBundleIdentifier</key><string>org.example.sketchbook</string>
</dict></plist>
PLIST
echo "== The Trash holds 60 MB and Sketchbook.app; both alerts are switched on."

answer() {  # presses keys on the alerts when nobody is there to
    local shots=$1
    for key in Return Return; do
        for _ in $(seq 100); do
            id=$(xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | tail -n 1) && [ -n "$id" ] && break
            sleep 0.1
        done
        [ -n "${id:-}" ] || return 0
        sleep 0.5
        n=$((${n:-0} + 1))
        import -window root "$shots/alert-$n.png"
        echo "== Screenshot: $shots/alert-$n.png; pressing $key"
        xdotool key "$key"
        for _ in $(seq 100); do xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | grep -qx "$id" || break; sleep 0.1; done
        id=
    done
}

echo "== Running: larkfen-helper -TrashChanged"
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    echo "== Answer the alerts as you like."
    dbus-run-session -- "$helper" -TrashChanged
else
    display=:$((120 + RANDOM % 50))
    Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb=$!
    trap 'kill $xvfb 2>/dev/null || true' EXIT
    sleep 1
    export DISPLAY=$display NO_AT_BRIDGE=1
    echo "== No display here: the alerts open on Xvfb ($display) and are answered with Return."
    answer "$home" &
    answering=$!
    dbus-run-session -- "$helper" -TrashChanged 2>&1 | grep -v -e dbus-daemon -e 'fd limit' || true
    wait "$answering"
fi

echo "== Commands the companion received:"
sed 's/^/   /' "$home/commands.txt" 2>/dev/null || echo "   none"
echo "== What the agent remembers: $XDG_CONFIG_HOME/com.ombrastel.larkfenhelper.plist"
