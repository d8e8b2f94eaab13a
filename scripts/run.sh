#!/usr/bin/env bash
# Builds Halvane and starts it. On a first run (no game location stored yet)
# it points Halvane at the free OpenArena game from Debian's packages, so
# "Launch the Server" starts a real dedicated server at once.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh ioquake3-server openarena-server
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
# Only what running needs: the program and the map catalogue it is
# delivered with (the tests and benchmarks are built by scripts/test.sh).
cmake --build build --target halvane halvane_instmaps
build/bin/halvane --prepare-first-run || true
exec build/bin/halvane "$@"
