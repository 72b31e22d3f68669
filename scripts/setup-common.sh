# Sourced by the set-up scripts: installing Debian packages and unpacking the ones that
# cannot be installed beside the machine's own, idempotently and alongside other apt users.

# Several people (and CI steps) may run apt on one machine at once: queue behind each other
# on a shared lock file, and let apt wait for dpkg's own lock rather than fail on it.
apt_lock=${ORVELLA_APT_LOCK:-/tmp/orvella-apt.lock}
apt_get() {
  flock -w 1800 "$apt_lock" apt-get -q -o DPkg::Lock::Timeout=600 "$@"
}

# Adds a foreign architecture once; a new one needs a fresh index.
apt_updated=
need_arch() {  # arch
  if ! dpkg --print-foreign-architectures | grep -qx "$1"; then
    dpkg --add-architecture "$1"
    apt_updated=
  fi
}

apt_update() {
  [ -n "$apt_updated" ] && return 0
  # A mirror that is mid-sync can fail one index; the packages we need come from the others.
  apt_get update || echo "setup: apt-get update reported errors; going on with the indexes it got" >&2
  apt_updated=1
}

# Installs those of the given packages that are not installed yet.
install_missing() {  # package...
  local missing=() p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "setup: installing ${missing[*]}"
  apt_update
  DEBIAN_FRONTEND=noninteractive apt_get install -y "${missing[@]}"
}

# Unpacks a package into a private root unless the marker file is already there. Used for
# what would clash with the machine's own architecture if installed (a JVM, 7z.so).
unpack() {  # root package marker
  local root=$1 pkg=$2 marker=$3
  [ -e "$root/$marker" ] && return 0
  apt_update
  local debs="$root/../debs"
  mkdir -p "$debs" "$root"
  (cd "$debs" && rm -f "${pkg%%:*}"_*"_${pkg##*:}".deb && apt_get download "$pkg")
  dpkg -x "$debs/${pkg%%:*}"_*"_${pkg##*:}".deb "$root"
  [ -e "$root/$marker" ] || { echo "setup: $pkg did not provide $marker" >&2; return 1; }
}
