#!/usr/bin/env bash
# Static analysis: installs what is missing, configures the host preset and runs clang-tidy
# and cppcheck over the library, the simulator and the host platform. Fails on any finding.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
scripts/setup-host.sh
. scripts/setup-common.sh
install_missing clang-tidy cppcheck
cmake --preset host >/dev/null
cmake --build --preset host --target static_analysis
