#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite: first on the i386 host
# build, then on the 32-bit ARM (armhf) cross build under qemu-arm. Given preset names
# (host, asan, armhf, ...), builds and runs just those.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(host armhf)
scripts/setup-host.sh
for preset in "${presets[@]}"; do
  [ "$preset" = armhf ] && scripts/setup-armhf.sh
  echo "== $preset: build and test"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
