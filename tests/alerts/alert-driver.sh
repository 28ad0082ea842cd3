#!/usr/bin/env bash
# Each alert on a real X server, opened by a small program with a host that
# records the commands, and driven by key presses, clicks and the close box.
# Usage: alert-driver.sh ALERT-DRIVER [SCREENSHOT-FOLDER]
set -uo pipefail
driver=$1
shots=${2:-}
source "$(dirname "$0")/xvfb-session.sh"
out=$sandbox/out err=$sandbox/err

# Opens an alert in the background: open size|uninstall TEXT [--throw]
open_alert() {
    "$driver" "$@" >"$out" 2>"$err" &
    opened=$!
    for _ in $(seq 100); do grep -q '^frame lblDescription' "$out" && return 0; sleep 0.1; done
    echo "FAIL: $1 alert did not report itself"; failed=$((failed + 1))
}
closed() { timeout 10 tail --pid="$opened" -f /dev/null; }
said() { sed -n "s/^$1 //p" "$out" | tr '\n' '|' | sed 's/|$//'; }
text() { sed -n "s/^text $1: //p" "$out"; }
frames() { grep '^frame' "$out" | tr '\n' '|'; }

# The texts as they show, word for word; a name that looks like markup, a
# mnemonic, a format or the placeholder itself shows as typed.
name='Viewer & <b>%s ^0</b>'
open_alert size "1.2 GB"
check "size header" "The Trash has reached 1.2 GB and can be emptied to recover disk space." "$(text lblHeader)"
check "size description" "Would you like Larkfen to securely erase the contents of the Trash?" "$(text lblDescription)"
check "launch caption" "Launch Larkfen" "$(text btnLaunch)"
check "cancel caption" "Cancel" "$(text btnCancel)"
check "settings caption" "Settings..." "$(text btnSettings)"
press Return size
closed
check "Return on the size alert" "1" "$(said command)"
check "the alert returns" "returned" "$(grep -x returned "$out")"

open_alert uninstall "$name"
check "uninstall header" "Uninstalling \"$name\" by dragging it to the Trash will leave preferences, caches, logs, and other items behind!" "$(text lblHeader)"
check "uninstall description" "Would you like to correctly uninstall this app and related files using Larkfen?" "$(text lblDescription)"
short=$(frames)
press Escape uninstall
closed
check "Escape sends nothing" "" "$(said command)"
check "Escape returns" "returned" "$(grep -x returned "$out")"

# However long the name, neither the header nor the window grows.
open_alert uninstall "$(printf 'Application %.0s' $(seq 40))"
check "frames with a long name" "$short" "$(frames)"
press Escape
closed

# Return and Escape act wherever the focus is, also on another button.
open_alert uninstall "Viewer"
press "Tab Tab Return"
closed
check "Return after Tab" "3" "$(said command)"
open_alert size "1.2 GB"
press "Tab Escape"
closed
check "Escape after Tab" "" "$(said command)"

# Settings sends 2 from either alert: a click at the middle of the button.
open_alert size "1.2 GB"
click 70 115
closed
check "Settings on the size alert" "2" "$(said command)"
open_alert uninstall "Viewer"
click 70 126
closed
check "Settings on the uninstall alert" "2" "$(said command)"

# The close box sends nothing.
open_alert uninstall "Viewer"
id=$(alert) && "$driver" close "$id"
gone "$id"
closed
check "close box sends nothing" "" "$(said command)"
check "close box returns" "returned" "$(grep -x returned "$out")"

# A command that fails goes to the last resort, and the alert stays open.
open_alert size "1.2 GB" --throw
id=$(alert) && xdotool windowfocus --sync "$id" key Return
eventually said unhandled
check "failed command handed on" "The companion did not answer." "$(said unhandled)"
check "alert open after the failure" "$id" "$(xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | grep -x "$id")"
press Escape
closed
check "one command, then Escape" "1" "$(said command)"

# Without a display, or with one that refuses: one line naming the alert, and on as after Cancel.
env -u DISPLAY -u WAYLAND_DISPLAY "$driver" size "1.2 GB" >"$out" 2>"$err"
check "no display: the log" "Could not show wndAlertTrashSize: no display is available." "$(cat "$err")"
check "no display: returns" "returned" "$(cat "$out")"
refusing=:$((300 + RANDOM % 100))
DISPLAY=$refusing "$driver" uninstall "Viewer" >"$out" 2>"$err"
check "refusing display: the log" "Could not show wndAlertTrashUninstall: no display is available." "$(cat "$err")"
check "refusing display: returns" "returned" "$(cat "$out")"

finish "alerts through the driver"
