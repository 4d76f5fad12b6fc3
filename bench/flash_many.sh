#!/usr/bin/env bash
# flash --all of one firmware file (1 MiB) into N virtual modules in boot
# mode at the same time, against the same into one: the wall time of the
# whole command (each module's 500 + 500 + 1000 ms of prescribed waits
# included) and the ratio. Each figure is the median of several runs.
#
# Usage: bench/flash_many.sh [build-dir] [modules] [runs]
set -euo pipefail
build=${1:-build}
many=${2:-16}
runs=${3:-3}
module="$build/bin/servicebay-module"
cli="$build/bin/servicebay-cli"
for program in "$module" "$cli"; do
  [ -x "$program" ] || { echo "no $program: build first" >&2; exit 1; }
done

work=$(mktemp -d)
pids=()
stop_modules() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  pids=()
}
trap 'stop_modules; rm -rf "$work"' EXIT
export SERVICEBAY_REGISTRY="$work/registry"
head -c $((1024 * 1024)) /dev/urandom >"$work/firmware.cod"

start_modules() {  # $1: how many
  for i in $(seq "$1"); do
    printf 'UsbSerial = BENCH%04d\n' "$i" >"$work/module$i.profile"
    "$module" --boot --quiet --profile "$work/module$i.profile" --name "bench$i" >"$work/module$i.out" 2>&1 &
    pids+=($!)
  done
  for _ in $(seq 200); do
    [ "$(ls "$SERVICEBAY_REGISTRY" 2>/dev/null | wc -l)" -ge "$1" ] && return 0
    sleep 0.05
  done
  echo "the modules did not come up" >&2; exit 1
}

# Milliseconds of one flash --all into $1 modules.
one_run() {
  start_modules "$1"
  local t0 t1
  t0=$(date +%s%N)
  "$cli" flash "$work/firmware.cod" --all >"$work/out" 2>"$work/err" || { cat "$work/out" "$work/err" >&2; exit 1; }
  t1=$(date +%s%N)
  stop_modules
  grep -q "$1 of $1 modules programmed" "$work/out" || { cat "$work/out" >&2; exit 1; }
  echo $(( (t1 - t0) / 1000000 ))
}

median() { printf '%s\n' "$@" | sort -n | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }'; }

declare -a t_one t_many
for _ in $(seq "$runs"); do
  t_one+=("$(one_run 1)")
  t_many+=("$(one_run "$many")")
done
one=$(median "${t_one[@]}")
all=$(median "${t_many[@]}")
echo "load before: $(cut -d' ' -f1-3 /proc/loadavg)"
echo "1 MiB into 1 module: ${t_one[*]} ms (median $one)"
echo "1 MiB into $many modules: ${t_many[*]} ms (median $all)"
awk -v a="$all" -v o="$one" -v n="$many" 'BEGIN { printf "ratio %d modules / 1: %.2f (goal <= 1.5)\n", n, a / o }'
