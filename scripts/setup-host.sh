#!/usr/bin/env bash
# Installs what the 32-bit host build needs and is not yet on this machine.
# Idempotent: a machine that has everything is left untouched.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/setup-common.sh"

need_arch i386
install_missing \
  g++-multilib lib32z1 cmake ninja-build \
  android-libutils-dev:i386 android-liblog-dev:i386 \
  android-libcutils-dev:i386 android-libnativehelper-dev:i386 \
  libgtest-dev:i386 libbenchmark-dev:i386 nlohmann-json3-dev blueprint-tools \
  libgtest-dev:amd64 libbenchmark-dev:amd64
command -v javac >/dev/null || install_missing openjdk-17-jdk-headless

# The i386 JVM and the i386 7z.so that libbacktrace needs are unpacked into the build
# tree rather than installed: both clash with the machine's amd64 packages.
deps="$root/build/deps/root"
unpack "$deps" openjdk-17-jre-headless:i386 usr/lib/jvm/java-17-openjdk-i386/lib/server/libjvm.so
unpack "$deps" p7zip-full:i386 usr/lib/p7zip/7z.so
"$deps/usr/lib/jvm/java-17-openjdk-i386/bin/java" -version 2>&1 | grep -q 'Server VM' \
  || { echo "setup: the unpacked i386 JVM does not start" >&2; exit 1; }

# The race-checking build ("tsan" preset) is x86-64: the amd64 Android libraries, unpacked
# beside the i386 ones (the machine's own amd64 JDK and 7z.so serve it).
for lib in log utils cutils nativehelper backtrace base; do
  unpack "$root/build/deps/amd64/root" "android-lib$lib:amd64" \
    "usr/lib/x86_64-linux-gnu/android/lib$lib.so.0"
done
