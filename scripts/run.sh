#!/usr/bin/env bash
# Builds Halvane and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build
exec build/bin/halvane "$@"
