#!/usr/bin/env bash
# The shared library exports exactly the listed names, nothing missing and
# nothing internal leaking out. The list is what the public headers under a
# directory declare with ATAPI_EXPORT, or the lines of a file.
set -euo pipefail
library=$1
source=$2

if [ -d "$source" ]; then
    listed=$(grep -h 'ATAPI_EXPORT ' "$source"/atapi/*.h | grep -v '#define' |
        sed -e 's/[([;].*//' -e 's/.*[ *]//' | LC_ALL=C sort -u)
else
    listed=$(grep -v '^#' "$source" | LC_ALL=C sort -u)
fi
exported=$(nm -D --defined-only "$library" | awk '$3 != "" && $3 !~ /^ATAPI_/ {sub(/@.*/, "", $3); print $3}' |
    LC_ALL=C sort -u)

if [ "$listed" != "$exported" ]; then
    echo "listed but not exported:"; LC_ALL=C comm -23 <(echo "$listed") <(echo "$exported")
    echo "exported but not listed:"; LC_ALL=C comm -13 <(echo "$listed") <(echo "$exported")
    exit 1
fi
echo "$(echo "$exported" | wc -l) symbols, as listed in $source"
