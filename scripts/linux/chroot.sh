# Sourced: clean Debian systems in folders, made by debootstrap. Takes root.
# shellcheck shell=bash

# Where the systems that others are copied from, and the packages that they fetched, are kept between runs. Several runs may
# use it at once.
chroot_cache=${KEYVORA_CHROOTS:-${XDG_CACHE_HOME:-$HOME/.cache}/keyvora/chroots}
# KEYVORA_DEBIAN_MIRROR names another mirror than debootstrap's own.

# The name that Debian gives a release. usage: suite_of 12
suite_of() {
  case $1 in
    12) echo bookworm ;;
    13) echo trixie ;;
    *) die "Debian $1 is not known here; 12 and 13 are" ;;
  esac
}

# Makes a new system of a release in a folder that is not there yet. usage: chroot_make RELEASE FOLDER
chroot_make() {
  local suite base archives=$2/var/cache/apt/archives deb
  suite=$(suite_of "$1")
  base=$chroot_cache/$suite
  ((EUID == 0)) || die "only root makes Debian systems in folders"
  mkdir -p "$chroot_cache" "$chroot_cache/$suite-packages"
  (
    flock 9
    [[ ! -d $base ]] || exit 0
    command -v debootstrap >/dev/null || die "debootstrap is missing: apt-get install debootstrap"
    rm -rf "$base.part"
    debootstrap --variant=minbase --include=build-essential,ca-certificates,debhelper,fakeroot "$suite" "$base.part" \
      ${KEYVORA_DEBIAN_MIRROR:+"$KEYVORA_DEBIAN_MIRROR"} >"$base.log" 2>&1 || die "debootstrap failed: see $base.log"
    # No service starts there.
    printf '#!/bin/sh\nexit 101\n' >"$base.part/usr/sbin/policy-rc.d"
    chmod +x "$base.part/usr/sbin/policy-rc.d"
    mv "$base.part" "$base"
  ) 9>"$chroot_cache/$suite.lock" || exit 1
  cp -a "$base" "$2"
  cp -L /etc/resolv.conf "$2/etc/resolv.conf"
  # apt locks the folder of the packages that it fetches, so each system has its own.
  for deb in "$chroot_cache/$suite-packages"/*.deb; do
    [[ ! -e $deb ]] || ln -f "$deb" "$archives/" 2>/dev/null || cp "$deb" "$archives/"
  done
}

# Keeps the packages that a system fetched for the systems after it. usage: chroot_keep_packages FOLDER
chroot_keep_packages() {
  local packages deb
  packages=$chroot_cache/$(chroot_suite "$1")-packages
  for deb in "$1"/var/cache/apt/archives/*.deb; do
    [[ -e $deb && ! -e $packages/${deb##*/} ]] || continue
    # Another run sees a whole file or none.
    cp "$deb" "$packages/$$.part"
    mv "$packages/$$.part" "$packages/${deb##*/}"
  done
}

# Runs a command in a system, as root and with little environment; its processes and mounts end with it. Folders named by
# --bind are seen there as /mnt/NAME. usage: chroot_run FOLDER [--bind NAME=FOLDER]... COMMAND...
chroot_run() {
  local root=$1 binds=() result=0
  shift
  while [[ ${1:-} == --bind ]]; do
    binds+=("$2")
    shift 2
  done
  # shellcheck disable=SC2016  # expanded by the inner shell
  unshare --mount --pid --fork --kill-child --uts -- /bin/bash -euc '
    root=$1
    shift
    mount --make-rprivate /
    mount -t proc proc "$root/proc"
    mount -t sysfs -o ro sysfs "$root/sys"
    mount --rbind /dev "$root/dev"
    while [[ $1 != -- ]]; do
      mkdir -p "$root/mnt/${1%%=*}"
      mount --bind "${1#*=}" "$root/mnt/${1%%=*}"
      shift
    done
    shift
    exec chroot "$root" /usr/bin/env -i HOME=/root LANG=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
      PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin "$@"
  ' bash "$root" ${binds[@]+"${binds[@]}"} -- "$@" || result=$?
  chroot_keep_packages "$root"
  return "$result"
}

# Which release a system is of, by its Debian name.
chroot_suite() { sed -n 's/^VERSION_CODENAME=//p' "$1/etc/os-release"; }
