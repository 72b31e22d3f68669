#!/usr/bin/env bash
# Fuzzes one target for a given time: scripts/fuzz.sh TARGET [SECONDS] [libFuzzer options]
# Targets are the tests/fuzz/*_fuzz.cpp files (e.g. dvbt_scan_maps_fuzz); 60 s by default.
# Installs what is missing, builds the "fuzz" preset (clang, libFuzzer, AddressSanitizer),
# fuzzes from the committed seeds plus what earlier runs found (build/fuzz/corpus/TARGET),
# and ends with libFuzzer's figures: executions per second and coverage. A crash leaves
# its input in build/fuzz/artifacts/ and makes this script fail.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

if [ $# -lt 1 ] || [ ! -f "tests/fuzz/$1.cpp" ]; then
  echo "usage: scripts/fuzz.sh TARGET [SECONDS] [libFuzzer options]" >&2
  echo "targets: $(cd tests/fuzz && ls *_fuzz.cpp | sed 's/\.cpp$//' | tr '\n' ' ')" >&2
  exit 2
fi
target=$1
seconds=${2:-60}
shift $(( $# >= 2 ? 2 : 1 ))

scripts/setup-host.sh
runtime=/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.fuzzer-i386.a
if ! command -v clang++-14 >/dev/null || [ ! -e "$runtime" ]; then
  echo "fuzz: installing clang-14 libclang-rt-14-dev"
  flock /tmp/orvella-apt.lock env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q clang-14 libclang-rt-14-dev
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "$target"

corpus=build/fuzz/corpus/$target
artifacts=build/fuzz/artifacts
mkdir -p "$corpus" "$artifacts"
# HotSpot takes SIGSEGV, SIGBUS, SIGILL, SIGFPE and SIGUSR2 for itself: neither libFuzzer
# nor the sanitizer may treat them as crashes.
export ASAN_OPTIONS=handle_segv=0:allow_user_segv_handler=1:detect_leaks=0
exec "build/fuzz/tests/fuzz/$target" -max_total_time="$seconds" -timeout=10 \
  -handle_segv=0 -handle_bus=0 -handle_ill=0 -handle_fpe=0 -handle_usr1=0 -handle_usr2=0 \
  -print_final_stats=1 -artifact_prefix="$artifacts/$target-" "$@" \
  "$corpus" "tests/fuzz/corpus/$target"
