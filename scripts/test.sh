#!/usr/bin/env bash
# Runs the whole test suite: the default, ASan+UBSan and TSan builds with all
# suites under ctest -j, the armhf cross build's whole suite under qemu-arm,
# the cross-ABI exchange both ways (each build's library against the other
# build's atserver and atsim), the default suites once more as a non-root user
# when started as root, and a short libFuzzer run of every fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."
src=$(pwd)
jobs=$(nproc)

scripts/install-deps.sh

# run_preset PRESET [CTEST_ARGS...] [-- CMAKE_CACHE_ARGS...]
run_preset() {
    local preset=$1
    shift
    local ctest_args=() cache_args=()
    while [ $# -gt 0 ] && [ "$1" != "--" ]; do ctest_args+=("$1"); shift; done
    [ $# -gt 0 ] && shift && cache_args=("$@")
    echo "=== $preset ==="
    cmake --preset "$preset" "${cache_args[@]}" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs" --timeout 300 "${ctest_args[@]}"
}

# The native interop test needs the armhf build: it runs after that build.
run_preset default -LE interop -- \
    "-DATAPI_PEER_BUILD_DIR=$src/build/armhf" -DATAPI_PEER_LAUNCHER=qemu-arm
run_preset asan
TSAN_OPTIONS="halt_on_error=1" run_preset tsan
run_preset fuzz

# The 32-bit ARM build, every test under qemu-arm; its interop test runs the
# armhf library against the native atserver and atsim.
run_preset armhf -- "-DATAPI_PEER_BUILD_DIR=$src/build/default"
echo "=== interop: native library, armhf atserver and atsim ==="
ctest --test-dir build/default -L interop --timeout 300 --output-on-failure

# Tests must pass without privileges too. When the tree is not reachable by
# an unprivileged user, they run on a copy under /tmp.
if [ "$(id -u)" -eq 0 ]; then
    user=atapi-test
    id "$user" >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin "$user"
    echo "=== default, as $user ==="
    if runuser -u "$user" -- test -r "$src/CMakeLists.txt" -a -x "$src/build/default"; then
        chmod -R a+rwX "$src/build/default"
        runuser -u "$user" -- ctest --test-dir "$src/build/default" -j "$jobs" --timeout 300 --output-on-failure
    else
        copy=$(mktemp -d /tmp/atapi-nonroot.XXXXXX)
        tar -C "$src" --exclude=./build -cf - . | tar -C "$copy" -xf -
        chown -R "$user" "$copy"
        chmod 755 "$copy"
        runuser -u "$user" -- bash -c "cd '$copy' && cmake --preset default >/dev/null && \
            cmake --build --preset default -j $jobs && \
            ctest --preset default -j $jobs --timeout 300"
        rm -rf "$copy"
    fi
fi
echo "all suites passed"
