#!/usr/bin/env bash
# Compares the program's archive listing with Info-ZIP's "unzip -l" over the
# same 500 archives: the same members in the same order, and the time each
# takes. Usage: bench/archives.sh [build folder]   (default: build)
set -euo pipefail

build=${1:-build}
bench="$build/bin/halvane_bench"
[ -x "$bench" ] || { echo "build $bench first" >&2; exit 1; }
command -v unzip >/dev/null || { echo "unzip is not installed" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$bench" make-archives "$work/baseq3" 500 2>/dev/null

start=$(date +%s%N)
"$bench" list-archives "$work/baseq3" 2>/dev/null >"$work/ours.txt"
middle=$(date +%s%N)
# unzip -l prints a header of three lines, then length, date, time and name
# in fixed columns (the name from column 31), then two trailer lines.
(cd "$work/baseq3" && LC_ALL=C ls -1 | LC_ALL=C sort -f | while read -r archive; do
    unzip -l "$archive" | sed -e '1,3d' | head -n -2 | cut -c31- | sed -e "s|^|$archive\t|"
done) >"$work/unzip.txt"
end=$(date +%s%N)

ours=$(wc -l <"$work/ours.txt")
theirs=$(wc -l <"$work/unzip.txt")
echo "halvane listing: $ours members in $(( (middle - start) / 1000000 )) ms (process start included)"
echo "unzip -l:        $theirs members in $(( (end - middle) / 1000000 )) ms (500 processes)"
if diff -q "$work/ours.txt" "$work/unzip.txt" >/dev/null; then
    echo "same members in the same order"
else
    echo "listings differ:"
    diff "$work/ours.txt" "$work/unzip.txt" | head -20
    exit 1
fi
