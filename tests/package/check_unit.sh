#!/usr/bin/env bash
# systemd accepts the installed atserver unit. systemd-analyze verify reports
# unknown keys and bad values but still exits 0, so any output fails; the
# unit's Documentation= must find the installed manual page.
#   check_unit.sh UNIT_FILE MAN_DIR
set -euo pipefail
unit=$1
mandir=$2

if ! command -v systemd-analyze >/dev/null; then
    echo "systemd-analyze not found: scripts/install-deps.sh installs systemd"
    exit 1
fi
if ! out=$(MANPATH=$mandir systemd-analyze verify "$unit" 2>&1) || [ -n "$out" ]; then
    echo "systemd-analyze verify $unit:"
    echo "$out"
    exit 1
fi
echo "systemd accepts $unit"
