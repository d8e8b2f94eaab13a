#!/usr/bin/env bash
# The sanitizer half of the test command (scripts/test.sh runs it last):
# builds Halvane and every test with AddressSanitizer and
# UndefinedBehaviorSanitizer (clang, in build-asan), runs the whole test
# suite there, the real-server test included, then runs each fuzz target on
# its corpus for HALVANE_FUZZ_SECONDS (20) seconds. Any finding fails the run;
# a fuzz finding leaves its input in build-asan/fuzz/findings/<target>/.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
scripts/deps.sh clang-14 libclang-rt-14-dev
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER=clang++-14 -DHALVANE_SANITIZE=ON
cmake --build build-asan

# Leaks of system libraries are suppressed by name, each with its reason.
export LSAN_OPTIONS="suppressions=$root/tests/sanitizers/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen
(cd build-asan && ctest --output-on-failure)

targets=()
for file in build-asan/tests/fuzz/fuzz_*; do
    [ -f "$file" ] && [ -x "$file" ] && targets+=("$file")
done
if [ ${#targets[@]} -eq 0 ]; then
    echo "no fuzz targets were built: the compiler lacks libFuzzer" >&2
    exit 1
fi
seconds=${HALVANE_FUZZ_SECONDS:-20}
failed=0
for target in "${targets[@]}"; do
    name=$(basename "$target")
    name=${name#fuzz_}
    work=build-asan/fuzz/corpus/$name
    findings=build-asan/fuzz/findings/$name
    log=build-asan/fuzz/$name.log
    mkdir -p "$work" "$findings"
    echo "fuzzing $name for ${seconds} s on tests/fuzz/corpus/$name"
    # New inputs go to the build folder's corpus; the kept seeds stay as they are.
    if ! "$target" -max_total_time="$seconds" -artifact_prefix="$findings/" \
        "$work" "tests/fuzz/corpus/$name" >"$log" 2>&1; then
        # LeakSanitizer's own tracer can crash while it stops the process's
        # threads for a leak check; the input it leaves is then no finding
        # when it replays clean, and the run goes on.
        mapfile -t replayed < <(find "$findings" -type f)
        if grep -q "LeakSanitizer has encountered a fatal error" "$log" &&
            [ ${#replayed[@]} -gt 0 ] && "$target" "${replayed[@]}" >"$log.replay" 2>&1; then
            echo "LeakSanitizer's tracer failed in $name (a fault of the tool);" \
                "the input it left replays clean: ${replayed[*]}"
            continue
        fi
        tail -n 40 "$log"
        echo "FUZZ FINDING in $name: the input is in $findings/; replay it with" \
            "$target $findings/<file>" >&2
        failed=1
    else
        grep -E "^Done [0-9]+ runs" "$log" || true
    fi
done
exit $failed
