#!/usr/bin/env bash
# Builds Halvane and runs every test (windows run offscreen, no display needed),
# then the sanitizer build's tests and the fuzz targets (sanitize-test.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure
../scripts/package-test.sh .
../scripts/sanitize-test.sh
