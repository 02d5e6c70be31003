#!/usr/bin/env bash
# The shared library exports the whole interface and nothing else: its
# dynamic symbols against the list in tests/data/interface.txt.
set -euo pipefail
library=$1
interface=$2

listed=$(grep -v '^#' "$interface" | LC_ALL=C sort -u)
exported=$(nm -D --defined-only "$library" | awk '$3 != "" && $3 !~ /^ATAPI_/ {sub(/@.*/, "", $3); print $3}' |
    LC_ALL=C sort -u)

if [ "$listed" != "$exported" ]; then
    echo "in the interface but not exported:"; LC_ALL=C comm -23 <(echo "$listed") <(echo "$exported")
    echo "exported but not in the interface:"; LC_ALL=C comm -13 <(echo "$listed") <(echo "$exported")
    exit 1
fi
echo "$(echo "$exported" | wc -l) symbols: the whole interface"
