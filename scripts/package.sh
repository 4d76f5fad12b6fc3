#!/usr/bin/env bash
# Builds the Debian package build-package/servicebay_<version>_amd64.deb from
# this tree, checks it with lintian, desktop-file-validate and appstreamcli,
# and prints its control fields.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh dpkg-dev lintian desktop-file-utils appstream file

out=build-package
# The hardening flags of Debian's own builds; CMake reads CXXFLAGS and
# LDFLAGS from the environment when it first configures.
eval "$(dpkg-buildflags --export=sh)"
export CXXFLAGS="$CXXFLAGS $CPPFLAGS"

launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
cmake -S . -B "$out" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
  -DSB_TESTS=OFF -DSB_BENCH=OFF "${launcher[@]}"
cmake --build "$out" -j"$(nproc)"
rm -f "$out"/servicebay_*.deb
(cd "$out" && cpack -G DEB)

deb=$(ls "$out"/servicebay_*.deb)
echo "== $deb ($(du -k "$deb" | cut -f1) KiB)"
dpkg-deb --field "$deb" Package Version Architecture Installed-Size Depends

# What the package's files must pass.
unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
dpkg-deb -x "$deb" "$unpacked"
desktop-file-validate "$unpacked"/usr/share/applications/servicebay.desktop
appstreamcli validate --no-net --explain "$unpacked"/usr/share/metainfo/*.metainfo.xml
echo "== lintian"
# Errors fail the build; warnings are printed for the reader.
lintian --fail-on error --info "$deb"
echo "== $deb"
