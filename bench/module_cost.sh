#!/usr/bin/env bash
# What the virtual module costs the machine: its processor time against the
# wall time while it waits for an opening, while a program holds its running
# device open (it looks at the line speed every 20 ms then), and while
# servicebay-cli reads it in boot mode again and again; and the wall time of
# one such read (sample profile, 500 ms wait behind the opening included).
#
# Usage: bench/module_cost.sh [build-dir] [reads]
set -euo pipefail
build=${1:-build}
reads=${2:-10}
module="$build/bin/servicebay-module"
cli="$build/bin/servicebay-cli"
for program in "$module" "$cli"; do
  [ -x "$program" ] || { echo "no $program: build first" >&2; exit 1; }
done
source_dir=$(cd "$(dirname "$0")/.." && pwd)

work=$(mktemp -d)
pid=""
cleanup() {
  [ -n "$pid" ] && kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export SERVICEBAY_REGISTRY="$work/registry"

ticks() { awk '{ print $14 + $15 }' "/proc/$pid/stat"; }
now_ms() { date +%s%3N; }
hz=$(getconf CLK_TCK)

# Processor time of the module over what the command given does, as a
# percentage of one core.
cost() {
  local label=$1; shift
  local t0 w0 t1 w1
  t0=$(ticks); w0=$(now_ms)
  "$@"
  t1=$(ticks); w1=$(now_ms)
  awk -v t=$((t1 - t0)) -v w=$((w1 - w0)) -v hz="$hz" -v label="$label" \
    'BEGIN { printf "%-36s %6.2f %% of one core over %.1f s\n", label, 100 * t / hz / (w / 1000), w / 1000 }'
}

"$module" --quiet --profile "$source_dir/data/SampleModule.profile" --link "$work/link" >"$work/devices" &
pid=$!
for _ in $(seq 100); do [ -s "$work/devices" ] && break; sleep 0.05; done
running=$(head -1 "$work/devices")

cost "waiting for an opening" sleep 5
cost "running device held open" bash -c "exec 3<>'$running'; sleep 5"

"$cli" boot --port "$running" >/dev/null
read_all() {
  for _ in $(seq "$reads"); do "$cli" info --port "$work/link" >/dev/null; done
}
cost "$reads reads in boot mode" read_all

best=""
for _ in $(seq 5); do
  start=$(now_ms); "$cli" info --port "$work/link" >/dev/null; ms=$(( $(now_ms) - start ))
  if [ -z "$best" ] || [ "$ms" -lt "$best" ]; then best=$ms; fi
done
echo "one read of the sample profile (best of 5): $best ms"
