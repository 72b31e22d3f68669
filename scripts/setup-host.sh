#!/usr/bin/env bash
# Installs what the 32-bit host build needs and is not yet on this machine.
# Idempotent: a machine that has everything is left untouched.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
deps="$root/build/deps"

packages=(
  g++-multilib lib32z1 cmake ninja-build
  android-libutils-dev:i386 android-liblog-dev:i386
  android-libcutils-dev:i386 android-libnativehelper-dev:i386
  libgtest-dev:i386 libbenchmark-dev:i386 nlohmann-json3-dev
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
command -v javac >/dev/null || missing+=(openjdk-17-jdk-headless)

apt_updated=
apt_update() {
  [ -n "$apt_updated" ] && return 0
  dpkg --print-foreign-architectures | grep -qx i386 || dpkg --add-architecture i386
  # A mirror that is mid-sync can fail one index; the packages we need come from the others.
  apt-get update -q || echo "setup: apt-get update reported errors; going on with the indexes it got" >&2
  apt_updated=1
}

if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  apt_update
  DEBIAN_FRONTEND=noninteractive apt-get install -y -q "${missing[@]}"
fi

# The i386 JVM and the i386 7z.so that libbacktrace needs are unpacked into the build
# tree rather than installed: both clash with the machine's amd64 packages.
unpack() {  # package marker
  local pkg=$1 marker=$2
  [ -e "$deps/root/$marker" ] && return 0
  apt_update
  mkdir -p "$deps/debs" "$deps/root"
  (cd "$deps/debs" && rm -f "${pkg%%:*}"_*.deb && apt-get download -q "$pkg")
  dpkg -x "$deps/debs/${pkg%%:*}"_*.deb "$deps/root"
}
unpack openjdk-17-jre-headless:i386 usr/lib/jvm/java-17-openjdk-i386/lib/server/libjvm.so
unpack p7zip-full:i386 usr/lib/p7zip/7z.so
"$deps/root/usr/lib/jvm/java-17-openjdk-i386/bin/java" -version 2>&1 | grep -q 'Server VM' \
  || { echo "setup: the unpacked i386 JVM does not start" >&2; exit 1; }
