#!/bin/sh
# Instructions and heap blocks per reply of the parse benchmark's reply set
# (parse, read every field, free), counted by callgrind and memcheck.
#   bench/callgrind_parse.sh [build dir] [passes]
set -eu
build=${1:-build/default}
passes=${2:-200}
driver=$build/bench/parse_callgrind
[ -x "$driver" ] || { echo "build $driver first (ATAPI_BUILD_BENCH=ON)" >&2; exit 1; }
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

"$driver" "$passes" >"$out/shape"
cat "$out/shape"
replies=$(awk '/^replies/ {print $2}' "$out/shape")
fields=$(awk '/^replies/ {print $4}' "$out/shape")

valgrind --tool=callgrind --callgrind-out-file="$out/cg" \
    --toggle-collect='*RunReplySetPasses*' "$driver" "$passes" >/dev/null 2>"$out/cg.log"
ir=$(awk '/^summary:/ {print $2}' "$out/cg")
awk -v ir="$ir" -v p="$passes" -v r="$replies" -v f="$fields" 'BEGIN {
    printf "instructions per reply %.0f per field %.0f\n", ir / (p * r), ir / (p * f) }'

# Every heap block of the process, the allocator's own view: the difference
# between a run of the given passes and a run without passes.
heap() {
    valgrind --tool=memcheck "$driver" "$1" 2>&1 >/dev/null |
        awk '/total heap usage/ {gsub(",", "", $5); print $5}'
}
with=$(heap "$passes")
without=$(heap 0)
awk -v a="$with" -v b="$without" -v p="$passes" -v r="$replies" -v f="$fields" 'BEGIN {
    printf "heap blocks per reply %.2f per field %.2f\n", (a - b) / (p * r), (a - b) / (p * f) }'
