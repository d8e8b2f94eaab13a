#!/usr/bin/env bash
# Builds Halvane, starts it on a virtual display with a fresh user (the free
# game prepared as on a first run, so no dialog stops it) and saves a picture
# of the main window as docs/screenshot.png.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh ioquake3-server openarena-server xvfb xauth x11-utils imagemagick
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME="$home" XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share"
export XDG_RUNTIME_DIR="$home/run" && mkdir -m 700 "$XDG_RUNTIME_DIR"
build/bin/halvane --prepare-first-run

xvfb-run -a -s "-screen 0 1024x768x24 -dpi 96" bash -c '
    set -euo pipefail
    build/bin/halvane &
    program=$!
    window=""
    for _ in $(seq 1 100); do
        window=$(xwininfo -root -tree | awk "/\"Halvane\": \(\"halvane\"/ && \$0 !~ /1x1/ {print \$1; exit}")
        [ -n "$window" ] && break
        sleep 0.1
    done
    if [ -z "$window" ]; then
        echo "Halvane did not show its window" >&2
        kill "$program"
        exit 1
    fi
    sleep 1
    import -window "$window" docs/screenshot.png
    kill "$program"
    wait "$program" || true
'
echo "saved docs/screenshot.png"
