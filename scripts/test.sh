#!/usr/bin/env bash
# Builds everything and runs every test: the main build (unit, integration,
# gui, interop), the core's unit tests under address and undefined-behaviour
# sanitizers and each fuzz target for a bounded time; first of all it checks
# the size of the tests against the program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

# The tests stay at most a third of the program's size; the developers' tool
# that counts them sits beside the project in a development checkout.
ratio=../shared/tools/test-ratio.py
if [ -f "$ratio" ]; then
  echo "== test size"
  scripts/setup.sh python3
  python3 "$ratio" 0.33 || { echo "The tests outgrew a third of the program: make them leaner." >&2; exit 1; }
fi

jobs=$(nproc)
generator=(-G Ninja)

echo "== main build"
cmake -S . -B build "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs" -LE fuzz

echo "== sanitizer build of the core's unit tests"
cmake -S . -B build-asan "${generator[@]}" -DCMAKE_BUILD_TYPE=Debug \
  -DSB_WITH_QT=OFF -DSB_SANITIZE=ON -DSB_BENCH=OFF >/dev/null
cmake --build build-asan -j"$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j"$jobs" -L unit

if command -v clang++ >/dev/null 2>&1; then
  echo "== fuzz targets"
  cmake -S . -B build-fuzz "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER=clang++ -DSB_WITH_QT=OFF -DSB_FUZZ=ON -DSB_TESTS=OFF -DSB_BENCH=OFF >/dev/null
  cmake --build build-fuzz -j"$jobs"
  ctest --test-dir build-fuzz --output-on-failure -L fuzz
fi
echo "All tests passed."
