#!/usr/bin/env bash
# The shared library exports exactly what the public headers declare with
# ATAPI_EXPORT: nothing missing, nothing internal leaking out.
set -euo pipefail
library=$1
include_dir=$2

declared=$(grep -h 'ATAPI_EXPORT ' "$include_dir"/atapi/*.h | grep -v '#define' |
    sed -e 's/[([;].*//' -e 's/.*[ *]//' | sort -u)
exported=$(nm -D --defined-only "$library" | awk '$3 != "" && $3 !~ /^ATAPI_/ {sub(/@.*/, "", $3); print $3}' | sort -u)

if [ "$declared" != "$exported" ]; then
    echo "declared but not exported:"; comm -23 <(echo "$declared") <(echo "$exported")
    echo "exported but not declared:"; comm -13 <(echo "$declared") <(echo "$exported")
    exit 1
fi
echo "$(echo "$exported" | wc -l) symbols, as declared"
