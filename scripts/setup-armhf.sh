#!/usr/bin/env bash
# Installs what the 32-bit ARM (armhf) cross build and its test run under qemu-arm need,
# on top of the host set-up. Idempotent: a machine that has everything is left untouched.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
. "$root/scripts/setup-common.sh"

# Debian's GCC cross compiler would remove gcc-multilib, which the i386 build needs: clang
# and lld cross-compile instead, with the C and C++ runtimes of the architecture-independent
# cross packages (libc6-dev:armhf can ask for a linux-libc-dev a syncing mirror lacks).
need_arch armhf
install_missing \
  clang lld qemu-user qemu-user-binfmt \
  libc6-dev-armhf-cross libgcc-12-dev-armhf-cross libstdc++-12-dev-armhf-cross \
  binutils-arm-linux-gnueabihf \
  android-libutils-dev:armhf android-liblog-dev:armhf \
  android-libcutils-dev:armhf android-libnativehelper-dev:armhf \
  libgtest-dev:armhf libbenchmark-dev:armhf zlib1g:armhf libatomic1:armhf

# The armhf JVM and 7z.so, unpacked as for i386 (libbacktrace needs the armhf 7z.so).
deps="$root/build/deps/armhf/root"
unpack "$deps" openjdk-17-jre-headless:armhf usr/lib/jvm/java-17-openjdk-armhf/lib/server/libjvm.so
unpack "$deps" p7zip-full:armhf usr/lib/p7zip/7z.so

# A death test re-executes the test binary; the kernel can only run an ARM binary through
# qemu-arm once binfmt_misc knows it. Register it when we may (root, a kernel that lets us);
# otherwise the armhf tests fall back to death tests that fork without re-executing.
binfmt=/proc/sys/fs/binfmt_misc
if [ ! -e $binfmt/qemu-arm ]; then
  [ -e $binfmt/register ] || mount -t binfmt_misc binfmt_misc $binfmt 2>/dev/null || true
  if [ -w $binfmt/register ]; then
    grep -v '^#' /usr/lib/binfmt.d/qemu-arm.conf > $binfmt/register 2>/dev/null || true
  fi
fi
if [ -e $binfmt/qemu-arm ]; then
  echo 1 > $binfmt/qemu-arm 2>/dev/null || true
fi
if ! grep -qx enabled $binfmt/qemu-arm 2>/dev/null; then
  echo "setup: qemu-arm is not registered with binfmt_misc; armhf death tests will fork" \
       "instead of re-executing the test binary" >&2
fi
