#!/usr/bin/env bash
# Starts the installed atserver, which starts the installed atsim with its
# default scenario, in a private runtime root; runs each consumer program
# against it and checks that it printed the simulated modem's manufacturer.
#   [LAUNCHER=qemu-arm] run_consumers.sh PREFIX PROGRAM...
# LAUNCHER runs the programs, atserver and atsim of a cross build.
set -euo pipefail
prefix=$1
shift
launcher=${LAUNCHER:-}
run=(${launcher:+"$launcher"})
root=$(mktemp -d "${TMPDIR:-/tmp}/atapi-package.XXXXXX")
export ATAPI_ROOT=$root
mkdir -p "$root/var/run/pidfile"

"${run[@]}" "$prefix/bin/atserver" --sim ${launcher:+--atsim-launcher "$launcher"} \
    --log "$root/atserver.log" &
server=$!
trap 'kill -TERM $server 2>/dev/null || true; wait $server 2>/dev/null || true; rm -rf "$root"' EXIT

flag=$root/var/ats_ready.flg
for _ in $(seq 300); do
    # atserver may end early
    if [ -e "$flag" ] || ! kill -0 "$server" 2>/dev/null; then break; fi
    sleep 0.1
done
if [ ! -e "$flag" ]; then
    echo "atserver did not get ready:"
    cat "$root/atserver.log"
    exit 1
fi

for program in "$@"; do
    if ! out=$(timeout 60 "${run[@]}" "$program" 2>"$root/stderr") ||
        [ "$out" != "Atsim Modems" ]; then
        echo "$program printed \"$out\", not the manufacturer of the default scenario;"
        echo "its standard error:"
        cat "$root/stderr"
        echo "atserver's log:"
        cat "$root/atserver.log"
        exit 1
    fi
    echo "$(basename "$program"): $out"
done
