#!/usr/bin/env bash
# One "-TrashChanged" of the built agent on a Trash of many items: wall time and
# peak memory (GNU time), against "du -s" on the same Trash, which is the least a
# look at the Trash's size costs. Three Trash shapes:
#   flat     all items at the top level (every one is visited, named and recorded)
#   nested   the items in folders of 100 (the size walk descends, the history is short)
#   apps     the flat Trash with one item in 100 a desktop entry of an application
# Each shape is run twice: the first run stores the history, the second reads it back.
# The sandboxes are made once under bench/data and reused.
# Usage: bench/run-trash-changed.sh [build-folder] [items]   (default: build-bench, 100000)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-bench}
items=${2:-100000}
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DLARKFEN_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target larkfen-helper >/dev/null
agent="$(pwd)/$build/larkfen-helper"

make_sandbox() {  # shape folder
    local shape=$1 root=$2 trash=$2/data/Trash/files
    [ -e "$root/ready" ] && return 0
    rm -rf "$root"
    mkdir -p "$trash" "$root/data/applications" "$root/config" "$root/home/Desktop"
    printf '[Desktop Entry]\nType=Application\nName=Larkfen\nExec=true\n' \
        >"$root/data/applications/com.ombrastel.larkfen.desktop"
    case $shape in
    flat | apps)
        (cd "$trash" && seq -f 'item-%06g.bin' 1 "$items" | xargs truncate -s 4096)
        if [ "$shape" = apps ]; then
            for i in $(seq -f '%06g' 1 100 "$items"); do
                rm "$trash/item-$i.bin"
                printf '[Desktop Entry]\nType=Application\nName=App %s\nExec=app\n' "$i" \
                    >"$trash/item-$i.desktop"
            done
        fi
        ;;
    nested)
        for folder in $(seq -f 'folder-%04g' 1 $((items / 100))); do
            mkdir "$trash/$folder"
            (cd "$trash/$folder" && seq -f 'item-%03g.bin' 1 100 | xargs truncate -s 4096)
        done
        ;;
    esac
    touch "$root/ready"
}

measure() {  # label command...
    local label=$1 report
    shift
    report=$(/usr/bin/time -f '%e %M' "$@" 2>&1 >/dev/null | tail -n 1)
    echo "$label $report"
}

printf '%-8s %-6s %10s %12s %10s %12s %10s %10s\n' shape run agent-s agent-KiB du-s du-KiB time-x memory-x
for shape in flat nested apps; do
    root="$(pwd)/bench/data/trash-changed-$shape-$items"
    make_sandbox "$shape" "$root"
    rm -f "$root/config/com.ombrastel.larkfenhelper.plist"
    read -r _ du_s du_kib < <(measure du du -s "$root/data/Trash/files")
    for run in first second; do
        read -r _ agent_s agent_kib < <(measure agent env -i HOME="$root/home" \
            XDG_DATA_HOME="$root/data" XDG_CONFIG_HOME="$root/config" \
            XDG_DATA_DIRS="$root/dirs" "$agent" -TrashChanged)
        awk -v shape="$shape" -v run="$run" -v as="$agent_s" -v ak="$agent_kib" \
            -v ds="$du_s" -v dk="$du_kib" 'BEGIN {
                printf "%-8s %-6s %10.2f %12d %10.2f %12d %10.1f %10.1f\n",
                    shape, run, as, ak, ds, dk, as / (ds > 0.01 ? ds : 0.01), ak / dk }'
    done
done
