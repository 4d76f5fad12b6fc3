#!/usr/bin/env bash
# Checks the package as a newcomer meets it, by hand and as root (it needs a
# Debian mirror): in one fresh Debian 12 root it builds the package with
# scripts/package.sh, in a second one it installs the package with apt, runs
# the three programs, and removes it again.
#
#   scripts/package-check.sh [--root PRISTINE] [--work DIR] [--mirror URL]
#
# --root names a ready debootstrap (minbase, bookworm) root, which is copied,
# never changed; without it one is made with debootstrap in the work folder.
set -euo pipefail
cd "$(dirname "$0")/.."

pristine=""
work=/var/tmp/servicebay-package-check
mirror=http://deb.debian.org/debian
while [ $# -gt 0 ]; do
  case "$1" in
    --root) pristine=$2; shift 2 ;;
    --work) work=$2; shift 2 ;;
    --mirror) mirror=$2; shift 2 ;;
    *) echo "usage: $0 [--root PRISTINE] [--work DIR] [--mirror URL]" >&2; exit 1 ;;
  esac
done
[ "$(id -u)" -eq 0 ] || { echo "$0: run it as root (chroot, mount)" >&2; exit 1; }

mounted=()
unmount_all() {
  local i
  for ((i = ${#mounted[@]} - 1; i >= 0; i--)); do umount -l "${mounted[i]}" 2>/dev/null || true; done
  mounted=()
}
trap unmount_all EXIT

# A copy of the pristine root with /proc, /sys, its own pseudo-terminals and
# a tmpfs /tmp, as a machine has them.
fresh_root() {
  local root=$1
  rm -rf "$root"
  cp -a "$pristine" "$root"
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  mount -t proc proc "$root/proc"; mounted+=("$root/proc")
  mount -t sysfs sys "$root/sys"; mounted+=("$root/sys")
  mount -t devpts -o newinstance,ptmxmode=0666 devpts "$root/dev/pts"; mounted+=("$root/dev/pts")
  rm -f "$root/dev/ptmx"; ln -s pts/ptmx "$root/dev/ptmx"
  mount -t tmpfs tmpfs "$root/tmp"; mounted+=("$root/tmp")
}

in_root() {
  local root=$1; shift
  chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 bash -euo pipefail -c "$*"
}

mkdir -p "$work"
if [ -z "$pristine" ]; then
  pristine=$work/pristine
  if [ ! -x "$pristine/bin/bash" ]; then
    command -v debootstrap >/dev/null || apt-get install -y -qq debootstrap
    echo "== debootstrap --variant=minbase bookworm $pristine"
    debootstrap --variant=minbase bookworm "$pristine" "$mirror" >"$work/debootstrap.log"
  fi
fi

echo "== build root: scripts/package.sh"
build=$work/build
fresh_root "$build"
mkdir -p "$build/src/servicebay"
# The tracked files as they stand in this tree.
git ls-files -z | tar --null -T - -cf - | tar -xf - -C "$build/src/servicebay"
in_root "$build" "cd /src/servicebay && scripts/package.sh" >"$work/build.log" 2>&1 || {
  tail -40 "$work/build.log"; echo "== the build failed; all of it in $work/build.log" >&2; exit 1; }
sed -n '/^== .*\.deb (/,$p' "$work/build.log"
deb=$(ls "$build"/src/servicebay/build-package/servicebay_*.deb)
unmount_all

echo "== install root"
target=$work/install
fresh_root "$target"
cp "$deb" "$target/root/"
in_root "$target" '
  run() { echo "\$ $*"; "$@"; }
  cd /root
  apt-get update -qq
  echo "\$ apt-get install $(ls ./servicebay_*.deb)"
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq ./servicebay_*.deb >/tmp/install.log 2>&1 ||
    { cat /tmp/install.log; exit 1; }
  grep -E "^(Setting up|The following NEW)" /tmp/install.log | head -3
  dpkg -L servicebay | sort > /tmp/files

  run servicebay-cli --version
  run servicebay-cli decode /usr/share/servicebay/SampleCatalog.xml --config 0

  export XDG_RUNTIME_DIR=/tmp/run
  mkdir -m 700 -p "$XDG_RUNTIME_DIR"
  echo "\$ servicebay-module --profile /usr/share/servicebay/SampleModule.profile &"
  servicebay-module --quiet --profile /usr/share/servicebay/SampleModule.profile >/tmp/module.out &
  module=$!
  for i in $(seq 50); do [ -s /tmp/module.out ] && break; sleep 0.1; done
  run servicebay-cli ports
  running=$(head -1 /tmp/module.out)
  run servicebay-cli boot --port "$running"
  for i in $(seq 50); do [ "$(wc -l </tmp/module.out)" -ge 2 ] && break; sleep 0.1; done
  run servicebay-cli info --port "$(sed -n 2p /tmp/module.out)"
  kill $module; wait $module || true

  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends man-db >/dev/null 2>&1
  run man -w servicebay-cli
  QT_QPA_PLATFORM=offscreen run servicebay --version

  echo "\$ apt-get remove servicebay"
  DEBIAN_FRONTEND=noninteractive apt-get remove -y -qq servicebay >/tmp/remove.log 2>&1 || { cat /tmp/remove.log; exit 1; }
  left=0
  while read -r f; do
    if [ -e "$f" ] && [ ! -d "$f" ]; then echo "left behind: $f"; left=1; fi
  done </tmp/files
  DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq servicebay >/dev/null 2>&1
  status=$(dpkg-query -W -f="\${db:Status-Abbrev}" servicebay 2>/dev/null || true)
  case "$status" in "" | un*) ;; *) echo "still known to dpkg: $status"; left=1 ;; esac
  [ $left -eq 0 ] && echo "nothing of servicebay is left"
  exit $left
'
echo "== the package installs, runs and removes cleanly"
