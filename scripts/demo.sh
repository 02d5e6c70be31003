#!/usr/bin/env bash
# Installs what is needed, builds, and runs the demo: atsim and atserver in a
# private runtime directory, a few atcli calls, then a clean stop.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset default >/dev/null
# The library too, so that `cmake --install build/default` works after the demo.
cmake --build --preset default --target atapi atserver atsim atcli

bin=build/default
root=$(mktemp -d /tmp/atapi-demo.XXXXXX)
export ATAPI_ROOT="$root"
mkdir -p "$root/var/run/pidfile"

"$bin/server/atserver" --sim --report "$root/reports.log" 2>"$root/atserver.log" &
server=$!
cleanup() {
    kill -TERM "$server" 2>/dev/null || true
    wait "$server" 2>/dev/null || true
    rm -rf "$root"
}
trap cleanup EXIT

for _ in $(seq 100); do
    [ -e "$root/var/ats_ready.flg" ] && break
    sleep 0.1
done
[ -e "$root/var/ats_ready.flg" ] || { echo "atserver did not get ready:"; cat "$root/atserver.log"; exit 1; }

for cmd in "AT+CGMI" "AT+CGMM" "AT+CPIN?" "AT+CPIN=\"0000\"" "AT+CPIN=\"1234\"" "AT+CPIN?" \
           "AT+CSQ" "AT+CGDCONT?" "AT+COPS?"; do
    echo "\$ atcli raw '$cmd'"
    "$bin/tools/atcli" raw "$cmd" || true
    echo
done

echo "(waiting a few seconds for the modem's unsolicited reports)"
sleep 4
kill -TERM "$server"
wait "$server"
status=$?
trap - EXIT
leftovers=$(ls "$root/var/ats_ready.flg" "$root/var/run/pidfile/atserver.pid" 2>/dev/null || true)
echo "atserver stopped with status $status${leftovers:+; left behind: $leftovers}"
echo "unsolicited reports seen:"; cat "$root/reports.log" 2>/dev/null || true
rm -rf "$root"
