#!/usr/bin/env bash
# Builds the programs and runs the main job.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target servicebay-cli
build/bin/servicebay-cli decode data/SampleCatalog.xml --config 0
