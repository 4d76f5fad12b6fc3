#!/usr/bin/env bash
# The screen benchmark beside a virtual module: the offline run of 5,000
# options, one check-box click, and "Read info" of the sample catalog, each
# up to the filled tree, on Qt's offscreen platform.
# Usage: bench/screens_bench.sh [BUILD_DIR]   (default: build)
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
bin=$(realpath "${1:-$top/build}")/bin
export QT_QPA_PLATFORM=offscreen
exec "$top/scripts/with-module.sh" "$bin" "$bin/servicebay-bench-screens"
