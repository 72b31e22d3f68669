#!/usr/bin/env bash
# Installs what is missing, builds the host preset and runs the whole test suite.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
preset=${1:-host}
scripts/setup-host.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
