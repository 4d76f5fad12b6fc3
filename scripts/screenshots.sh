#!/usr/bin/env bash
# Pictures of the screens for the documentation: the window program under
# Xvfb with a virtual module, read, written, and each form opened, saved as
# PNG files (docs/screenshots, or the folder given).
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-docs/screenshots}")
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target servicebay servicebay-module
bin=$PWD/build/bin

mkdir -p "$out"
scripts/with-module.sh "$bin" \
  xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24" \
  "$bin/servicebay" --demo-screenshots "$out"
ls "$out"
