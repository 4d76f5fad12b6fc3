#!/usr/bin/env bash
# flash --all of one firmware file (1 MiB) into 1, 16 and 64 virtual modules
# in boot mode at the same time. For each count:
#  - the wall time of the whole command (each module's 500 + 500 + 1000 ms of
#    prescribed waits included) and its ratio to one module;
#  - the processor time of the command and its download programs, per
#    module, against lrzsz's sx -k sending the same file into one module
#    (perf stat's task-clock of the whole process tree);
#  - the memory of each download program in progress that is its own: the
#    largest Pss of /proc/PID/smaps_rollup seen while it ran (libraries
#    shared by the programs count a share each).
# Each figure is the median of several runs.
#
# Usage: bench/flash_many.sh [build-dir] [runs] [counts...]   (default: build 3 1 16 64)
set -euo pipefail
build=${1:-build}
runs=${2:-3}
shift $(($# < 2 ? $# : 2))
counts=("$@")
[ ${#counts[@]} -gt 0 ] || counts=(1 16 64)
module="$build/bin/servicebay-module"
cli="$build/bin/servicebay-cli"
for program in "$module" "$cli"; do
  [ -x "$program" ] || { echo "no $program: build first" >&2; exit 1; }
done
for tool in sx perf; do
  command -v "$tool" >/dev/null || { echo "$tool is missing (lrzsz, linux-perf)" >&2; exit 1; }
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
    "$module" --boot --quiet --profile "$work/module$i.profile" --name "bench$i" --link "$work/port$i" \
      >"$work/module$i.out" 2>&1 &
    pids+=($!)
  done
  for _ in $(seq 200); do
    [ "$(ls "$SERVICEBAY_REGISTRY" 2>/dev/null | wc -l)" -ge "$1" ] && return 0
    sleep 0.05
  done
  echo "the modules did not come up" >&2; exit 1
}

# The largest Pss in kB of each child of process $1 while it runs, one a line.
watch_children() {
  declare -A most=()
  while kill -0 "$1" 2>/dev/null; do
    for child in $(pgrep -P "$1" || true); do
      kb=$(awk '/^Pss:/ { print $2 }' "/proc/$child/smaps_rollup" 2>/dev/null || true)
      [ -n "$kb" ] && [ "$kb" -gt "${most[$child]:-0}" ] && most[$child]=$kb
    done
    sleep 0.2
  done
  for kb in "${most[@]}"; do echo "$kb"; done
}

median() { printf '%s\n' "$@" | sort -g | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }'; }

# Processor ms of the process tree that perf stat wrote into file $1.
task_ms() { awk -F, '$3 == "task-clock" { print $1 }' "$1"; }

# One flash --all into $1 modules: "wall-ms cpu-ms-per-module pss-kB-median".
one_run() {
  start_modules "$1"
  local t0 t1
  t0=$(date +%s%N)
  perf stat -e task-clock -x, -o "$work/perf" "$cli" flash "$work/firmware.cod" --all >"$work/out" 2>"$work/err" &
  local timed=$!
  sleep 0.1
  watch_children "$(pgrep -P "$timed" | head -n 1)" >"$work/pss" &
  local watcher=$!
  wait "$timed" || { cat "$work/out" "$work/err" >&2; exit 1; }
  t1=$(date +%s%N)
  wait "$watcher"
  stop_modules
  grep -q "$1 of $1 modules programmed" "$work/out" || { cat "$work/out" >&2; exit 1; }
  awk -v n="$1" -v w=$(( (t1 - t0) / 1000000 )) -v c="$(task_ms "$work/perf")" -v pss="$(median $(cat "$work/pss"))" \
    'BEGIN { printf "%d %.1f %s\n", w, c / n, pss }'
}

# sx -k of the same file into one module, and one download program as a
# line starts it: "sx-ms ours-ms", each program alone from its start to its end.
alone_run() {
  start_modules 1
  cat >"$work/sx.sh" <<'SEND'
exec 3<>"$1"
stty -F "$1" raw -echo
printf '\rBOOT\r' >&3
sleep 0.5
perf stat -e task-clock -x, -o "$3" sx -k "$2" <&3 >&3 2>/dev/null
SEND
  bash "$work/sx.sh" "$work/port1" "$work/firmware.cod" "$work/sx.perf" || { echo "sx -k failed" >&2; exit 1; }
  stop_modules
  start_modules 1
  perf stat -e task-clock -x, -o "$work/ours.perf" \
    "$cli" flash --port "$work/port1" "$work/firmware.cod" --json --progress-json >"$work/out" 2>&1 ||
    { cat "$work/out" >&2; exit 1; }
  stop_modules
  echo "$(task_ms "$work/sx.perf") $(task_ms "$work/ours.perf")"
}

sx=() ours=()
for _ in $(seq $((runs * 3))); do
  read -r s o < <(alone_run)
  sx+=("$s") ours+=("$o")
done
sx_ms=$(median "${sx[@]}")
ours_ms=$(median "${ours[@]}")
echo "load before: $(cut -d' ' -f1-3 /proc/loadavg)"
echo "1 MiB into one module, processor ms, each program alone (median of $((runs * 3))):"
awk -v s="$sx_ms" -v o="$ours_ms" 'BEGIN {
  printf "  sx -k %.1f, servicebay-cli flash --port --progress-json %.1f: %.2f x sx -k (goal <= 2)\n", s, o, o / s }'
one=""
for n in "${counts[@]}"; do
  walls=() cpus=() psss=()
  for _ in $(seq "$runs"); do
    read -r wall cpu pss < <(one_run "$n")
    walls+=("$wall") cpus+=("$cpu") psss+=("$pss")
  done
  wall=$(median "${walls[@]}")
  [ -n "$one" ] || one=$wall
  awk -v n="$n" -v w="$wall" -v o="$one" -v c="$(median "${cpus[@]}")" -v p="$(median "${psss[@]}")" \
    -v all="${walls[*]}" 'BEGIN {
      printf "%2d modules: wall %s ms (median %d, %.2f x the first count; goal <= 1.5)\n", n, all, w, w / o
      printf "            processor per module, the line'"'"'s own share in it: %.1f ms; Pss per download program %.1f MB (goal <= 8)\n", c, p / 1024
    }'
done
