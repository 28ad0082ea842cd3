# Shared by the window tests: an X server of their own, checks that count, and
# helpers that wait for the alert of a program and act on it as a user would.
# Sourced; expects nothing but bash. Exits 0 with SKIP when a tool is missing.
for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 0; }
done

sandbox=$(mktemp -d)
# The server picks a free display itself and names it once it takes connections,
# so two window tests started at once never meet on one display.
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$sandbox/display" >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; wait $xvfb 2>/dev/null; rm -rf "$sandbox"' EXIT
for _ in $(seq 100); do grep -q . "$sandbox/display" 2>/dev/null && break; sleep 0.1; done
grep -q . "$sandbox/display" || { echo "FAIL: Xvfb did not start"; exit 1; }
export DISPLAY=:$(head -n 1 "$sandbox/display") NO_AT_BRIDGE=1
unset WAYLAND_DISPLAY

passed=0 failed=0
check() {  # check NAME EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then passed=$((passed + 1)); else
        failed=$((failed + 1)); echo "FAIL: $1: expected [$2], got [$3]"; fi
}
# Waits up to ten seconds for a command to print something.
eventually() {  # eventually COMMAND...
    for _ in $(seq 100); do [ -n "$("$@")" ] && return 0; sleep 0.1; done
    return 1
}
finish() {  # finish SUITE
    echo "$1: $passed passed, $failed failed"
    [ "$failed" -eq 0 ]
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

# The alert that is up, once it has shown; fails the run when none comes up.
alert() {
    local id
    id=$(windows 1 | tail -n 1) || { echo "FAIL: no alert came up"; failed=$((failed + 1)); return 1; }
    sleep 0.3
    echo "$id"
}

# Waits until the window is gone: the next alert may only come up after it.
gone() {
    for _ in $(seq 100); do
        xdotool search --onlyvisible --class larkfen-helper 2>/dev/null | grep -qx "$1" || return 0
        sleep 0.1
    done
    return 1
}

# Presses keys on the alert that is up; with a second argument, takes a screenshot
# into $shots under that name first.
press() {
    local id
    id=$(alert) || return 1
    [ -n "${shots:-}" ] && [ -n "${2:-}" ] && import -window root "$shots/$2.png"
    xdotool windowfocus --sync "$id" 2>/dev/null
    xdotool key $1
    gone "$id"
}

# Clicks the alert that is up at a point of its layout (the window is 500 points wide).
click() {
    local id geometry x y width
    id=$(alert) || return 1
    geometry=$(xdotool getwindowgeometry --shell "$id")
    x=$(echo "$geometry" | sed -n 's/^X=//p'); y=$(echo "$geometry" | sed -n 's/^Y=//p')
    width=$(echo "$geometry" | sed -n 's/^WIDTH=//p')
    xdotool mousemove $((x + $1 * width / 500)) $((y + $2 * width / 500)) click 1
    gone "$id"
}
