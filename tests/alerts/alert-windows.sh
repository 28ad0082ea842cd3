#!/usr/bin/env bash
# The alert windows on a real X server, driven by key presses as a user would.
# Usage: alert-windows.sh LARKFEN-HELPER [SCREENSHOT-FOLDER]
set -uo pipefail
helper=$1
shots=${2:-}
source "$(dirname "$0")/xvfb-session.sh"
export HOME=$sandbox/home XDG_DATA_HOME=$sandbox/data XDG_CONFIG_HOME=$sandbox/config \
    XDG_DATA_DIRS=$sandbox/dirs

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

stored() { grep -c "<key>$1</key>" "$XDG_CONFIG_HOME/com.ombrastel.larkfenhelper.plist" 2>/dev/null; }
# The verbs the companion received, once it has received N of them; the companion
# is started detached, so its line may come after the agent has quit.
verbs() {  # verbs N
    for _ in $(seq 100); do
        [ "$(cat "$sandbox/verbs" 2>/dev/null | grep -c .)" -ge "$1" ] && break
        sleep 0.1
    done
    [ "$1" -gt 0 ] || sleep 1  # nothing expected: give a stray verb the time to show
    [ -f "$sandbox/verbs" ] && tr '\n' ' ' <"$sandbox/verbs" | sed 's/ $//'
}

# Return launches from the size alert; the application alert follows it; Escape sends nothing.
prepare
timeout 60 "$helper" -TrashChanged 2>/dev/null &
agent=$!
press Return size-alert
check "size warning stored before the last alert closed" 0 "$(stored TrashLastWarnSizeTime)"
press Escape uninstall-alert
wait $agent
check "exit status" 0 $?
check "Return, then Escape" "SecureEmptyTrash" "$(verbs 1)"
check "size warning stored after both alerts" 1 "$(stored TrashLastWarnSizeTime)"

# A click on Settings; then Return on the application alert uninstalls.
prepare
timeout 60 "$helper" -TrashChanged 2>/dev/null &
agent=$!
click 60 115
press Return
wait $agent
check "Settings, then Return" "ShowSettings UninstallTrashedApps" "$(verbs 2)"

finish "alerts through the agent"
