#!/usr/bin/env bash
# The soak, by hand: THREADS x COMMANDS exchanges through atserver and atsim
# (default 64 x 10000) with random modem delays and unsolicited lines, nothing
# lost, misrouted or leaked; prints commands per second and latency.
#
#   bench/soak.sh [THREADS [COMMANDS]]     (after building the default preset)
set -euo pipefail
cd "$(dirname "$0")/.."
ATAPI_SOAK_THREADS=${1:-64} ATAPI_SOAK_COMMANDS=${2:-10000} \
    exec build/default/tests/e2e_tests --gtest_filter=SoakTest.*
