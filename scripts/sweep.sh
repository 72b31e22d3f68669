#!/usr/bin/env bash
# The whole fault sweep: every middleware call of each standard's scan lifecycle refused in
# turn (the test suite runs one call of each kind). Installs what is missing, builds, runs
# the sweep and prints its table: per standard the calls swept and their outcomes, then
# per function and site. `scripts/sweep.sh asan` runs it under the sanitizers.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
preset=${1:-host}
scripts/setup-host.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target scan_sweep_test
log="build/$preset/fault-sweep.log"
status=0
# The host test preset leaves the full sweep out; the sanitizers need the preset's options.
export ASAN_OPTIONS=${ASAN_OPTIONS:-handle_segv=0:allow_user_segv_handler=1:detect_leaks=0}
ctest --test-dir "build/$preset" -L full-sweep --verbose >"$log" 2>&1 || status=$?
grep -o 'fault sweep site: .*' "$log" || true
# The table: one row per standard's lifecycle.
echo "| Row | Calls | Status as specified | Logged and survived | Ignored and survived | Fixed | Prescribed crash |"
echo "|---|---|---|---|---|---|---|"
grep -o 'fault sweep table: .*' "$log" | sed -E 's/fault sweep table: ([^:]*): ([0-9]+) calls swept, [a-z ]+ ([0-9]+), [a-z ]+ ([0-9]+), [a-z ]+ ([0-9]+), [a-z ]+ ([0-9]+), [a-z ]+ ([0-9]+)/| \1 | \2 | \3 | \4 | \5 | \6 | \7 |/' || true
tail -n 4 "$log"
exit "$status"
