#!/usr/bin/env bash
# Installs every Debian package the project needs that is not there yet, and
# the packages named as arguments (scripts/package.sh names its own).
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-serialport-dev libgl-dev
  qt6-qpa-plugins fonts-dejavu-core
  libpugixml-dev libcli11-dev nlohmann-json3-dev libudev-dev libarchive-dev
  umockdev libumockdev-dev libarchive-tools
  libgtest-dev libgmock-dev libbenchmark-dev
  clang libclang-rt-14-dev
  lrzsz socat xvfb xauth x11-apps imagemagick
)
packages+=("$@")

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || {
    echo "Run this once as root (su -c '$0'), or install sudo: apt-get needs root to install them." >&2
    exit 1
  }
  as_root=(sudo "${as_root[@]}")
fi
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
