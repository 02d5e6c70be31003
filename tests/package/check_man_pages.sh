#!/usr/bin/env bash
# The installed manual pages format without a warning, and each has an item
# (a .TP tag) for every long option that its program's usage text names.
#   check_man_pages.sh PREFIX MAN_DIR LAUNCHER   (LAUNCHER: "" or e.g. qemu-arm)
set -euo pipefail
prefix=$1
mandir=$2
launcher=$3

status=0
for page in man8/atserver.8 man1/atsim.1 man1/atcli.1; do
    program=$(basename "$page" | cut -d. -f1)
    warnings=$(groff -man -ww -z "$mandir/$page" 2>&1)
    if [ -n "$warnings" ]; then
        echo "$page: $warnings"
        status=1
    fi
    usage=$($launcher "$prefix/bin/$program" --help 2>&1 || true)
    # Options as the usage offers them: "[--x", "(--x", "| --x" or an item's
    # first word; not those quoted in a description ("e.g. --sim-arg --no-urc").
    options=$(grep -oE '(^ *|[[(|] *)--[a-z][a-z-]*' <<<"$usage" | sed 's/^[[(| ]*//' | sort -u)
    if [ -z "$options" ]; then
        echo "$program printed no usage: $usage"
        status=1
    fi
    tags=$(awk 'previous == ".TP" { print } { previous = $0 }' "$mandir/$page" | sed 's/\\-/-/g')
    for option in $options; do
        if ! grep -qE -e "(^|[^a-z-])$option([^a-z-]|\$)" <<<"$tags"; then
            echo "$page does not describe $option"
            status=1
        fi
    done
done
[ $status -eq 0 ] && echo "manual pages format cleanly and name every option"
exit $status
