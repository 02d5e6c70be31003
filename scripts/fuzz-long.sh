#!/usr/bin/env bash
# Runs every fuzz target (or the named ones) for SECONDS each, by hand, then
# reports per target the inputs executed, the edges and features reached, and
# the corpus size, followed by the source-line coverage that the grown corpora
# reach in the library and atserver.
#
#   scripts/fuzz-long.sh SECONDS [TARGET...]
#
# Grown corpora stay in build/fuzz/long/<target> between runs (the committed
# seeds in fuzz/corpus are only read). Coverage comes from a separate build
# (build/fuzz-coverage) instrumented for it, replaying the corpora.
set -euo pipefail
cd "$(dirname "$0")/.."
src=$(pwd)

if [ $# -lt 1 ] || ! [[ $1 =~ ^[0-9]+$ ]]; then
    echo "usage: scripts/fuzz-long.sh SECONDS [TARGET...]" >&2
    exit 64
fi
seconds=$1
shift

targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for source in fuzz/fuzz_*.cpp; do targets+=("$(basename "$source" .cpp)"); done
fi
# Only the targets: the coverage build's shared library would lack the
# fuzzer's runtime.
for preset in fuzz fuzz-coverage; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$(nproc)" --target "${targets[@]}" >/dev/null
done

# The traces of injected allocation failures would drown the fuzzers' output.
export ATAPI_TRACE_LEVEL=0
long=$src/build/fuzz/long
profiles=$src/build/fuzz-coverage/profiles
rm -rf "$profiles"
mkdir -p "$long" "$profiles"
printf '%-24s %12s %8s %8s %8s\n' target executions edges features corpus
for target in "${targets[@]}"; do
    corpus=$long/$target
    mkdir -p "$corpus"
    max_len=2048
    [ "$target" = fuzz_server_lines ] && max_len=4608
    log=$long/$target.log
    "$src/build/fuzz/fuzz/$target" -max_total_time="$seconds" -max_len="$max_len" \
        -print_final_stats=1 -jobs=1 -close_fd_mask=3 "$corpus" "$src/fuzz/corpus/$target" \
        >"$log" 2>&1 || { echo "$target failed: see $log" >&2; exit 1; }
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    read -r edges features < <(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -1 | awk '{print $2, $4}')
    printf '%-24s %12s %8s %8s %8s\n' "$target" "$executions" "$edges" "$features" \
        "$(find "$corpus" -type f | wc -l)"
    LLVM_PROFILE_FILE="$profiles/$target.profraw" "$src/build/fuzz-coverage/fuzz/$target" \
        -runs=0 -max_len="$max_len" "$corpus" "$src/fuzz/corpus/$target" >/dev/null 2>&1
done

llvm-profdata merge -sparse "$profiles"/*.profraw -o "$profiles/all.profdata"
objects=()
for target in "${targets[@]}"; do objects+=(-object "$src/build/fuzz-coverage/fuzz/$target"); done
echo
echo "source lines reached by the corpora (library and atserver):"
llvm-cov report "${objects[@]:1}" -instr-profile="$profiles/all.profdata" \
    -ignore-filename-regex='(/usr/|/tests/|/fuzz/|/sim/|/tools/)' | awk 'NR == 1 || /TOTAL/ || /(parse|text|server|usim|adapt)\//'
