#!/usr/bin/env bash
# The alert windows on a real X server, driven by key presses as a user would.
# Usage: alert-windows.sh LARKFEN-HELPER [SCREENSHOT-FOLDER]
set -uo pipefail
helper=$1
shots=${2:-}
for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 0; }
done

sandbox=$(mktemp -d)
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$sandbox"' EXIT
export DISPLAY=$display NO_AT_BRIDGE=1 HOME=$sandbox/home XDG_DATA_HOME=$sandbox/data \
    XDG_CONFIG_HOME=$sandbox/config XDG_DATA_DIRS=$sandbox/dirs
for _ in $(seq 50); do xdotool getmouselocation >/dev/null 2>&1 && break; sleep 0.1; done

passed=0 failed=0
check() {  # check NAME EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then passed=$((passed + 1)); else
        failed=$((failed + 1)); echo "FAIL: $1: expected [$2], got [$3]"; fi
}

# A fresh sandbox: a companion that records its verbs, both alerts wanted, a
# Trash of 60 MiB and a newly trashed application.
prepare() {
    rm -rf "$sandbox"/{home,data,config,dirs,verbs}
    mkdir -p "$HOME/Desktop" "$XDG_DATA_HOME/Trash/files" "$XDG_CONFIG_HOME" "$XDG_DATA_DIRS" \
        "$XDG_DATA_HOME/applications"
    {
        printf '[Desktop Entry]\nType=Application\nName=Larkfen\nExec=true\n'
        for verb in SecureEmptyTrash ShowSettings UninstallTrashedApps; do
            printf '\n[Desktop Action %s]\nName=%s\nExec=sh -c "echo %s >> %s/verbs"\n' \
                "$verb" "$verb" "$verb" "$sandbox"
        done
    } >"$XDG_DATA_HOME/applications/com.ombrastel.larkfen.desktop"
    printf '<?xml version="1.0"?><plist version="1.0"><dict><key>AlertTrashFull</key><true/><key>AlertUninstallApps</key><true/></dict></plist>\n' \
        >"$XDG_CONFIG_HOME/com.ombrastel.larkfen.plist"
    truncate -s 60M "$XDG_DATA_HOME/Trash/files/big.bin"
    mkdir -p "$XDG_DATA_HOME/Trash/files/Viewer & Co.app/Contents"
    printf '<?xml version="1.0"?><plist version="1.0"><dict><key>CFBundleName</key><string>Viewer</string></dict></plist>\n' \
        >"$XDG_DATA_HOME/Trash/files/Viewer & Co.app/Contents/Info.plist"
}

# Waits until n windows of the agent are visible; prints their ids.
windows() {
    for _ in $(seq 100); do
        ids=$(xdotool search --onlyvisible --class larkfen-helper 2>/dev/null)
        [ "$(echo "$ids" | grep -c .)" -ge "$1" ] && { echo "$ids"; return 0; }
        sleep 0.1
    done
    return 1
}

# Presses keys on the alert that is up, after it has shown.
press() {
    local id
    id=$(windows 1 | tail -n 1) || { echo "FAIL: no alert came up"; failed=$((failed + 1)); return 1; }
    sleep 0.3
    [ -n "$shots" ] && [ -n "${3:-}" ] && import -window root -crop 1280x800+0+0 "$shots/$3.png"
    xdotool windowfocus --sync "$id" 2>/dev/null
    xdotool key $2
    # The next alert may only come up once this one is gone.
    for _ in $(seq 100); do xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | grep -qx "$id" || break; sleep 0.1; done
}

# Clicks the alert that is up at a point of its layout (the window is 500 points wide).
click() {
    local id geometry x y width
    id=$(windows 1 | tail -n 1) || { echo "FAIL: no alert came up"; failed=$((failed + 1)); return 1; }
    sleep 0.3
    geometry=$(xdotool getwindowgeometry --shell "$id")
    x=$(echo "$geometry" | sed -n 's/^X=//p'); y=$(echo "$geometry" | sed -n 's/^Y=//p')
    width=$(echo "$geometry" | sed -n 's/^WIDTH=//p')
    xdotool mousemove $((x + $1 * width / 500)) $((y + $2 * width / 500)) click 1
    for _ in $(seq 100); do xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | grep -qx "$id" || break; sleep 0.1; done
}

stored() { grep -c "<key>$1</key>" "$XDG_CONFIG_HOME/com.ombrastel.larkfenhelper.plist" 2>/dev/null; }
verbs() { sleep 0.5; [ -f "$sandbox/verbs" ] && tr '\n' ' ' <"$sandbox/verbs" | sed 's/ $//'; }

# Return launches from the size alert; the application alert follows it; Escape sends nothing.
prepare
timeout 60 "$helper" -TrashChanged 2>/dev/null &
agent=$!
press 1 Return size-alert
check "size warning stored before the last alert closed" 0 "$(stored TrashLastWarnSizeTime)"
press 1 Escape uninstall-alert
wait $agent
check "exit status" 0 $?
check "Return, then Escape" "SecureEmptyTrash" "$(verbs)"
check "size warning stored after both alerts" 1 "$(stored TrashLastWarnSizeTime)"

# A click on Settings; then Return on the application alert uninstalls.
prepare
timeout 60 "$helper" -TrashChanged 2>/dev/null &
agent=$!
click 60 115
press 1 Return
wait $agent
check "Settings, then Return" "ShowSettings UninstallTrashedApps" "$(verbs)"

# Escape on both alerts sends nothing at all.
prepare
timeout 60 "$helper" -TrashChanged 2>/dev/null &
agent=$!
press 1 Escape
press 1 Escape
wait $agent
check "Escape twice" "" "$(verbs)"

echo "alerts: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
