#!/usr/bin/env bash
# Installs what building and testing atapi needs on a Debian machine: the
# native toolchain and test libraries, systemd-analyze and groff for the
# checks of the systemd unit and the manual pages, and the armhf cross
# toolchain with the armhf multiarch test libraries and runtimes that qemu-arm
# runs the cross-built tests with.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          clang libclang-rt-14-dev clang-format procps util-linux passwd
          systemd groff-base
          g++-arm-linux-gnueabihf qemu-user libc6:armhf libstdc++6:armhf
          libgtest-dev:armhf libgmock-dev:armhf)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
dpkg --print-foreign-architectures | grep -qx armhf || "${sudo_cmd[@]}" dpkg --add-architecture armhf
# A mirror that is mid-sync can fail one index; what the others list is
# enough, and the install below fails loudly if a package is really missing.
for attempt in 1 2 3; do
    "${sudo_cmd[@]}" apt-get update && break
    echo "apt-get update failed (attempt $attempt); going on with the lists it got" >&2
    sleep 5
done
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
